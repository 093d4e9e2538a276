#pragma once

#include <cstdint>
#include <string_view>

namespace stagehost {

/// The kinds of objects that a show consists of, in the order in which a name is looked up that may mean any of them.
enum class ObjectKind { Device, Task, Cue, UserScreen, UserGroup, Variable, Object, Show };

/// One kind: its name in object texts and its number in GetObjectList.
struct ObjectKindRow {
    ObjectKind kind;
    const char* name;
    std::uint32_t type;
};

/// Number 0 of GetObjectList stands for all kinds.
inline constexpr std::uint32_t kEveryType = 0;

inline constexpr ObjectKindRow kObjectKinds[] = {
    {ObjectKind::Device, "Device", 1},
    {ObjectKind::Task, "Task", 3},
    {ObjectKind::Cue, "Cue", 28},
    {ObjectKind::UserScreen, "UserScreen", 8},
    {ObjectKind::UserGroup, "UserGroup", 27},
    {ObjectKind::Variable, "Variable", 6},
    {ObjectKind::Object, "Object", 100},
    {ObjectKind::Show, "Show", 1000},
};

constexpr bool InEnumOrder() {
    int index = 0;
    for (const auto& row : kObjectKinds) {
        if (static_cast<int>(row.kind) != index++)
            return false;
    }
    return true;
}
static_assert(InEnumOrder(), "the table is indexed by the kind");

constexpr const ObjectKindRow& RowOf(ObjectKind kind) {
    return kObjectKinds[static_cast<int>(kind)];
}

} // namespace stagehost
