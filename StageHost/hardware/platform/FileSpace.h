#pragma once

#include <cstdint>

namespace stagehost {

/// Gives back to the disk what a file holds before an offset, and leaves the file as long as it is: who appends to it
/// goes on undisturbed.
/// @param descriptor of the file, open for writing. @return false where the file system cannot do that.   [any]
bool FreeFileBefore(int descriptor, std::int64_t offset);

} // namespace stagehost
