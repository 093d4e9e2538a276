#pragma once

namespace stagehost {

/// Whether a program or somebody at a terminal is at the other end of standard input and will leave it at some time:
/// not so of a file or of /dev/null, whose end means nothing.   [any]
bool HasInputOtherSide();

/// From now on, reading a terminal that has given its input to another program fails instead of halting this
/// one.   [host main]
void LetTerminalRefuse();

} // namespace stagehost
