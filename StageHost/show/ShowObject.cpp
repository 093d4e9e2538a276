#include "ShowObject.h"

#include "HostCodes.h"
#include "WholeNumber.h"

namespace stagehost {

ShowObject::ShowObject(ObjectKind kind, std::string name, Conduct conduct)
    : m_kind(kind)
    , m_name(std::move(name))
    , m_conduct(conduct) {}

std::optional<std::string> ShowObject::Property(const std::string& property) const {
    for (auto& known : Properties()) {
        if (known.name == property)
            return std::move(known.value);
    }
    return std::nullopt;
}

std::optional<std::int32_t> ShowObject::PropertyAsInt(const std::string& property) const {
    const auto text = Property(property);
    return text ? std::optional(ParseWholeNumber(*text).value_or(0)) : std::nullopt;
}

KXPCode ShowObject::SetProperty(const std::string& property, const std::string&) {
    return Property(property) ? kReadOnly : kNoSuchProperty;
}

KXPCode ShowObject::SetPropertyAsInt(const std::string& property, std::int32_t value) {
    return SetProperty(property, std::to_string(value));
}

void ShowObject::Perform(const std::string&, const Parameters&, const Answer& answer) {
    answer({kNoSuchAction});
}

} // namespace stagehost
