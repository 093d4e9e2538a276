#include "ResourceObject.h"

#include <algorithm>

#include "HostCodes.h"

namespace stagehost {

ResourceObject::ResourceObject(std::string name, Behind behind)
    : ShowObject(ObjectKind::Resource, std::move(name), Conduct::Normal)
    , m_behind(std::move(behind)) {}

std::vector<ObjectProperty> ResourceObject::Properties() const {
    return m_behind.read();
}

KXPCode ResourceObject::SetProperty(const std::string& property, const std::string& value) {
    if (m_behind.writes != nullptr && property == m_behind.writes)
        return SetValue(value);
    return Property(property) ? kReadOnly : kNoSuchProperty;
}

KXPCode ResourceObject::SetValue(const std::string& value) {
    if (m_behind.writes == nullptr)
        return kReadOnly;
    return m_behind.write(value) ? KXPCode{KXP_OK} : KXPCode{kBadValue};
}

KXPCode ResourceObject::Ramp(std::int32_t to, std::chrono::milliseconds time) {
    if (!m_behind.ramp)
        return kReadOnly;
    return m_behind.ramp(to, time) ? KXPCode{KXP_OK} : KXPCode{kBadValue};
}

std::string ResourceObject::Standing() const {
    const auto value = Property("Value");
    return value ? *value : Property("State").value_or(std::string());
}

} // namespace stagehost
