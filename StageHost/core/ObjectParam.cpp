#include "ObjectParam.h"

#include <cstring>

namespace stagehost {

ObjectParam::ObjectParam(std::shared_ptr<HostValue> own, std::shared_ptr<HostValue> bound)
    : m_own(std::move(own))
    , m_bound(std::move(bound)) {}

KXPCode ObjectParam::QueryInterface(const char* name, void** out) {
    if (name == nullptr || out == nullptr || std::strcmp(name, "IObjectParam") != 0)
        return m_own->Face()->QueryInterface(name, out);
    *out = static_cast<IObjectParam*>(this);
    return KXP_OK;
}

KXPCode ObjectParam::SetProperty(const char* name, const char* value, std::uint32_t reserved1,
                                 std::uint32_t reserved2) {
    return m_own->Face()->SetProperty(name, value, reserved1, reserved2);
}

void ObjectParam::SetIntValue(std::int32_t value, std::uint32_t reserved1, std::uint32_t reserved2) {
    m_own->Face()->SetIntValue(value, reserved1, reserved2);
}

void ObjectParam::SetRealValue(double value, std::uint32_t reserved1, std::uint32_t reserved2) {
    m_own->Face()->SetRealValue(value, reserved1, reserved2);
}

void ObjectParam::SetValueFromString(const char* text, std::uint32_t reserved1, std::uint32_t reserved2) {
    m_own->Face()->SetValueFromString(text, reserved1, reserved2);
}

IData* ObjectParam::GetValue(std::uint32_t) {
    return m_bound ? m_bound->Face() : nullptr;
}

} // namespace stagehost
