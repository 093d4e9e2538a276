#pragma once

namespace stagehost {

/// Whether standard input can have a program or somebody at a terminal at its other end, who will leave it at some
/// time: not so of a file or of /dev/null, whose end means nothing.   [any]
bool HasInputOtherSide();

/// Whether nobody is there any more, and nothing of what they have said is left to read.   [any]
bool IsInputLeft();

/// From now on, reading a terminal that has given its input to another program fails instead of halting this
/// one.   [host main]
void LetTerminalRefuse();

} // namespace stagehost
