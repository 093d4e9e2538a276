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
    , variable_(std::move(variable)) {}

std::vector<ObjectProperty> VariableObject::Properties() const {
    std::vector<ObjectProperty> all{
        {kValue, variable_->Text()}, {"Type", ValueText()}, {"InstanceID", std::to_string(variable_->InstanceId())}};
    for (const auto& [name, value] : variable_->Properties())
        all.push_back({name, value});
    return all;
}

std::optional<std::int32_t> VariableObject::PropertyAsInt(const std::string& property) const {
    return property == kValue ? std::optional(variable_->Int()) : ShowObject::PropertyAsInt(property);
}

KXPCode VariableObject::SetProperty(const std::string& property, const std::string& value) {
    return property == kValue ? Taken(variable_->SetText(value)) : ShowObject::SetProperty(property, value);
}

KXPCode VariableObject::SetPropertyAsInt(const std::string& property, std::int32_t value) {
    return property == kValue ? Taken(variable_->SetInt(value)) : ShowObject::SetPropertyAsInt(property, value);
}

void VariableObject::Perform(const std::string& action, const Parameters& parameters, const Answer& answer) {
    const bool sets = action == "SetValue";
    if (!sets && action != "GetValue")
        return answer({kNoSuchAction});
    const auto value = parameters.Text(kValue);
    if (sets != value.has_value() || !parameters.AreAmong({kValue}))
        return answer({kBadParameters});
    if (sets && !variable_->SetText(*value))
        return answer({kBadValue});
    answer({KXP_OK, variable_->Text()});
}

std::string VariableObject::ValueText() const {
    return FindDataType(variable_->Type())->elementName;
}

} // namespace stagehost
