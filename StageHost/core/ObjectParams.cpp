#include "ObjectParams.h"

#include <cstring>

namespace stagehost {

ObjectParams::ObjectParams(std::map<std::string, std::string> properties)
    : m_properties(std::move(properties)) {}

void ObjectParams::Add(std::shared_ptr<HostValue> own, std::shared_ptr<HostValue> bound) {
    m_params.push_back(std::make_unique<ObjectParam>(std::move(own), std::move(bound)));
}

KXPCode ObjectParams::QueryInterface(const char* name, void** out) {
    if (name == nullptr || out == nullptr)
        return KXP_BAD_INTERFACE_ARG;
    const bool offered = std::strcmp(name, "IMInterface") == 0 || std::strcmp(name, "IObjectParams") == 0;
    *out = offered ? this : nullptr;
    return offered ? KXP_OK : KXP_NO_INTERFACE;
}

KXPCode ObjectParams::SetProperty(const char* name, const char* value, std::uint32_t, std::uint32_t) {
    if (name == nullptr)
        return KXP_NULL_ARGUMENT;
    const std::lock_guard<std::mutex> hold(m_lock);
    m_properties[name] = value == nullptr ? "" : value;
    return KXP_OK;
}

const char* ObjectParams::GetProperty(const char* name) {
    const std::lock_guard<std::mutex> hold(m_lock);
    const auto found = name == nullptr ? m_properties.end() : m_properties.find(name);
    return found == m_properties.end() ? nullptr : found->second.c_str();
}

IObjectParam* ObjectParams::GetParam(std::uint32_t index) {
    return index < m_params.size() ? m_params[index].get() : nullptr;
}

} // namespace stagehost
