#pragma once

#include "HostValue.h"
#include "ShowObject.h"

namespace stagehost {

/// A variable as an object of the show.
class VariableObject final : public ShowObject {
public:
    /// @param variable never null.
    explicit VariableObject(std::shared_ptr<HostValue> variable);

    /// "Value" (can be set), "Type", "InstanceID", and the descriptor properties.
    std::vector<ObjectProperty> Properties() const override;
    std::optional<std::int32_t> PropertyAsInt(const std::string& property) const override;
    KXPCode SetProperty(const std::string& property, const std::string& value) override;
    KXPCode SetPropertyAsInt(const std::string& property, std::int32_t value) override;
    /// "GetValue" and "SetValue" (Value); the result text is the value.
    void Perform(const std::string& action, const Parameters& parameters, const Answer& answer) override;
    /// "IntegerData" and so on.
    std::string ValueText() const override;

private:
    const std::shared_ptr<HostValue> m_variable;
};

} // namespace stagehost
