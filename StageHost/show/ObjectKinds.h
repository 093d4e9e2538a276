#pragma once

#include <cstdint>
#include <string_view>

namespace stagehost {

/// The kinds of objects that a show consists of, in the order in which a name is looked up that may mean any of them.
enum class ObjectKind { Device, Task, Cue, UserScreen, UserGroup, Variable, Object, Show, Resource };

/// One kind: its name in object texts and its number in GetObjectList.
struct ObjectKindRow {
    const char* name;
    std::uint32_t type;
    ObjectKind kind;
};

/// Number 0 of GetObjectList stands for all kinds.
inline constexpr std::uint32_t kEveryType = 0;

inline constexpr ObjectKindRow kObjectKinds[] = {
    {"Device", 1, ObjectKind::Device},
    {"Task", 3, ObjectKind::Task},
    {"Cue", 28, ObjectKind::Cue},
    {"UserScreen", 8, ObjectKind::UserScreen},
    {"UserGroup", 27, ObjectKind::UserGroup},
    {"Variable", 6, ObjectKind::Variable},
    {"Object", 100, ObjectKind::Object},
    {"Show", 1000, ObjectKind::Show},
    {"Resource", 101, ObjectKind::Resource},
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
