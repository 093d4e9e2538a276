#pragma once

#include "ShowObject.h"

namespace stagehost {

/// Name of the group that stands for all that a device may see: the whole show.
inline constexpr const char* kGrantedGroup = "GrantedRootGroup";

/// A user group: names of objects, and groups in it. It never changes.
class UserGroup final : public ShowObject {
public:
    explicit UserGroup(UserGroupSpec spec);

    const std::vector<std::string>& Members() const { return m_members; }
    const std::vector<std::shared_ptr<UserGroup>>& Groups() const { return m_groups; }

    /// Whether a variable is in the group or in one below it: by its own name, or by that of its device.
    bool HasVariable(const std::string& variable) const;

    /// "Members": the count of members, groups among them.
    std::vector<ObjectProperty> Properties() const override;

private:
    const std::vector<std::string> m_members;
    std::vector<std::shared_ptr<UserGroup>> m_groups;
};

} // namespace stagehost
