#pragma once

namespace stagehost {

/// Keeps an open file for one writer until it is closed; readers are not hindered. A file system that has no locks lets
/// everybody write.
/// @return false when another descriptor keeps it already.   [any]
bool KeepForOneWriter(int descriptor);

} // namespace stagehost
