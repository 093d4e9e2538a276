#pragma once

#include <cstdint>

namespace stagehost {

/// @file
/// A keeper stands between this process and a program that it starts: a process that waits, and ends what the program
/// leaves behind, in whatever session or group that may be. It ends as the program has ended, behind all that the
/// program has started, and ends all of them when this process has gone, however that came.

/// Makes the calling process a keeper, and returns in a new one that is to become the program. Between fork and exec:
/// does what may be done there, and nothing else. @param parent the process that has forked.   [a child, before exec]
void GoOnUnderKeeper(std::int64_t parent);

/// Has a keeper ask the program, and what it has started, to end, or end all of it. Ctrl-C at the terminal does
/// neither. @param keeper a child of this process that nobody has waited for yet; 0 for none.   [any]
enum class KeptEnd { Asked, Forced };
void EndKept(std::int64_t keeper, KeptEnd how);

} // namespace stagehost
