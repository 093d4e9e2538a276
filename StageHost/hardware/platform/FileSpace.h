#pragma once

#include <cstdint>

namespace stagehost {

/// Gives back to the disk what a file holds before an offset, and leaves the file as long as it is: who appends to it
/// goes on undisturbed.
/// @param descriptor of the file, open for writing. @return false where the file system cannot do that.   [any]
bool FreeFileBefore(int descriptor, std::int64_t offset);

/// From now on a write beyond the size that files may have (ulimit -f) fails, as on a full disk, and does not end the
/// process. Programs that it starts inherit that.   [host main]
void FailWhereFilesMayNotGrow();

} // namespace stagehost
