#include "PlainObject.h"

#include "HostCodes.h"

namespace stagehost {

PlainObject::PlainObject(ObjectSpec spec, const std::string& holder, ChangeFeed& feed)
    : ShowObject(ObjectKind::Object, holder.empty() ? spec.name : holder + "." + spec.name, spec.conduct)
    , feed_(feed) {
    for (auto& [name, value] : spec.properties)
        properties_.push_back({name, value});
    for (auto& object : spec.objects)
        objects_.push_back(std::make_shared<PlainObject>(std::move(object), Name(), feed));
}

std::vector<ObjectProperty> PlainObject::Properties() const {
    const std::lock_guard<std::mutex> hold(lock_);
    return properties_;
}

KXPCode PlainObject::SetProperty(const std::string& property, const std::string& value) {
    const std::lock_guard<std::mutex> hold(lock_);
    for (auto& known : properties_) {
        if (known.name != property)
            continue;
        if (known.value != value)
            feed_.Tell(ObjectKind::Object, Name(), property, value);
        known.value = value;
        return KXP_OK;
    }
    return kNoSuchProperty;
}

} // namespace stagehost
