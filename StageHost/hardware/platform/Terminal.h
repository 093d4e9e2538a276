#pragma once

namespace stagehost {

/// The standard channels of a process that people read.
enum class Channel { Output = 1, Error = 2 };

/// Whether somebody sits before a terminal at the other end.   [any]
bool IsTerminal(Channel channel);

} // namespace stagehost
