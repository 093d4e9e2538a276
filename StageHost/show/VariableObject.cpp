#include "VariableObject.h"

#include "DataTypes.h"
#include "HostCodes.h"

namespace stagehost {

namespace {

constexpr const char* kValue = "Value";

KXPCode Taken(bool taken) {
    return taken ? KXP_OK : KXPCode{kBadValue};
}

} // namespace

VariableObject::VariableObject(std::shared_ptr<HostValue> variable)
    : ShowObject(ObjectKind::Variable, variable->Name(), Conduct::Normal)
    , m_variable(std::move(variable)) {}

std::vector<ObjectProperty> VariableObject::Properties() const {
    std::vector<ObjectProperty> all{
        {kValue, m_variable->Text()}, {"Type", ValueText()}, {"InstanceID", std::to_string(m_variable->InstanceId())}};
    for (const auto& [name, value] : m_variable->Properties())
        all.push_back({name, value});
    return all;
}

std::optional<std::int32_t> VariableObject::PropertyAsInt(const std::string& property) const {
    return property == kValue ? std::optional(m_variable->Int()) : ShowObject::PropertyAsInt(property);
}

KXPCode VariableObject::SetProperty(const std::string& property, const std::string& value) {
    return property == kValue ? Taken(m_variable->SetText(value)) : ShowObject::SetProperty(property, value);
}

KXPCode VariableObject::SetPropertyAsInt(const std::string& property, std::int32_t value) {
    return property == kValue ? Taken(m_variable->SetInt(value)) : ShowObject::SetPropertyAsInt(property, value);
}

void VariableObject::Perform(const std::string& action, const Parameters& parameters, const Answer& answer) {
    const bool sets = action == "SetValue";
    if (!sets && action != "GetValue")
        return answer({kNoSuchAction});
    const auto value = parameters.Text(kValue);
    if (sets != value.has_value() || !parameters.AreAmong({kValue}))
        return answer({kBadParameters});
    if (sets && !m_variable->SetText(*value))
        return answer({kBadValue});
    answer({KXP_OK, m_variable->Text()});
}

std::string VariableObject::ValueText() const {
    return FindDataType(m_variable->Type())->elementName;
}

} // namespace stagehost
