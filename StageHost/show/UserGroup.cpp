#include "UserGroup.h"

#include <algorithm>

namespace stagehost {

UserGroup::UserGroup(UserGroupSpec spec)
    : ShowObject(ObjectKind::UserGroup, spec.name, spec.conduct)
    , m_members(std::move(spec.members)) {
    for (auto& group : spec.groups)
        m_groups.push_back(std::make_shared<UserGroup>(std::move(group)));
}

bool UserGroup::HasVariable(const std::string& variable) const {
    const std::string device = variable.substr(0, variable.find('.'));
    const bool direct = std::any_of(m_members.begin(), m_members.end(),
                                    [&](const auto& member) { return member == variable || member == device; });
    return direct || std::any_of(m_groups.begin(), m_groups.end(),
                                 [&](const auto& group) { return group->HasVariable(variable); });
}

std::vector<ObjectProperty> UserGroup::Properties() const {
    return {{"Members", std::to_string(m_members.size() + m_groups.size())}};
}

} // namespace stagehost
