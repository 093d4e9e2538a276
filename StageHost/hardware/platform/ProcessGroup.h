#pragma once

#include <cstdint>

namespace stagehost {

/// Makes the process that calls the first of a group of its own, which its children belong to. Between fork and exec:
/// touches nothing else.   [any]
void BeginProcessGroup();

/// Asks all processes of a group to end, or ends them. A group that has nobody left is left alone.
/// @param first the process that began the group.   [any]
enum class GroupEnd { Asked, Forced };
void EndProcessGroup(std::int64_t first, GroupEnd how);

} // namespace stagehost
