#pragma once

namespace stagehost {

/// What a process does before it becomes the program that it was started for, when nobody but its parent is to end it:
/// Ctrl-C at the terminal does not reach it, and it is asked to end when its parent has gone.   [a child, before exec]
void BelongToParentAlone();

} // namespace stagehost
