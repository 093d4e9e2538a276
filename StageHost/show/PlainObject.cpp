#include "PlainObject.h"

#include "HostCodes.h"

namespace stagehost {

PlainObject::PlainObject(ObjectSpec spec, const std::string& holder, ChangeFeed& feed)
    : ShowObject(ObjectKind::Object, holder.empty() ? spec.name : holder + "." + spec.name, spec.conduct)
    , m_feed(feed) {
    for (auto& [name, value] : spec.properties)
        m_properties.push_back({name, value});
    for (auto& object : spec.objects)
        m_objects.push_back(std::make_shared<PlainObject>(std::move(object), Name(), feed));
}

std::vector<ObjectProperty> PlainObject::Properties() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_properties;
}

KXPCode PlainObject::SetProperty(const std::string& property, const std::string& value) {
    const std::lock_guard<std::mutex> hold(m_lock);
    for (auto& known : m_properties) {
        if (known.name != property)
            continue;
        if (known.value != value)
            m_feed.Tell(ObjectKind::Object, Name(), property, value);
        known.value = value;
        return KXP_OK;
    }
    return kNoSuchProperty;
}

} // namespace stagehost
