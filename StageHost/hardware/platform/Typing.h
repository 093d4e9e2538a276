#pragma once

namespace stagehost {

/// Whether somebody types standard input at a terminal, and sees there what is printed.   [any]
bool IsTyped();

} // namespace stagehost
