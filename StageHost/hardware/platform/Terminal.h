#pragma once

namespace stagehost {

/// The standard channels of a process, through which people and programs speak to it.
enum class StandardChannel { Input = 0, Output = 1, Error = 2 };

/// Whether somebody sits before a terminal at the other end.   [any]
bool IsTerminal(StandardChannel channel);

} // namespace stagehost
