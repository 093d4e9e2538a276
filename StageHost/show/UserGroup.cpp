#include "UserGroup.h"

#include <algorithm>

namespace stagehost {

UserGroup::UserGroup(UserGroupSpec spec)
    : ShowObject(ObjectKind::UserGroup, spec.name, spec.conduct)
    , members_(std::move(spec.members)) {
    for (auto& group : spec.groups)
        groups_.push_back(std::make_shared<UserGroup>(std::move(group)));
}

bool UserGroup::HasVariable(const std::string& variable) const {
    const std::string device = variable.substr(0, variable.find('.'));
    const bool direct = std::any_of(members_.begin(), members_.end(),
                                    [&](const auto& member) { return member == variable || member == device; });
    return direct ||
           std::any_of(groups_.begin(), groups_.end(), [&](const auto& group) { return group->HasVariable(variable); });
}

std::vector<ObjectProperty> UserGroup::Properties() const {
    return {{"Members", std::to_string(members_.size() + groups_.size())}};
}

} // namespace stagehost
