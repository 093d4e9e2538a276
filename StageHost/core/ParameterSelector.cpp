#include "ParameterSelector.h"

#include <algorithm>

#include "IObjectFactory.h"
#include "IPropertySelector.h"
#include "ValueFactory.h"

namespace stagehost {

namespace {

constexpr const char* kSelectorProperty = "DataDescriptor::IPropertySelector";

IPropertySelector* MakeSelector(const FactoryManager& factories, const ValueSpec& parameter) {
    const auto name = parameter.properties.find(kSelectorProperty);
    IObjectFactory* factory = name == parameter.properties.end() ? nullptr : factories.Find(name->second);
    IMInterface* made = factory != nullptr ? factory->CreateObject(name->second.c_str()) : nullptr;
    auto* selector = QueryFace<IPropertySelector>(made, "IPropertySelector");
    if (selector == nullptr && made != nullptr)
        made->Release();
    return selector;
}

} // namespace

ParameterSelector::ParameterSelector(const FactoryManager& factories, const ValueSpec& parameter)
    : m_parameter(parameter.name)
    , m_selector(MakeSelector(factories, parameter)) {}

ParameterSelector::~ParameterSelector() {
    if (m_selector != nullptr)
        m_selector->Release();
}

std::string ParameterSelector::Name() const {
    const char* name = m_selector != nullptr ? m_selector->GetName() : nullptr;
    return name != nullptr ? name : "";
}

std::optional<std::string> ParameterSelector::Ask(const CommandDefinition& command,
                                                  const std::vector<ParameterInput>& inputs) const {
    ObjectParams params(command.properties);
    std::shared_ptr<HostValue> asked;
    for (const ValueSpec& parameter : command.parameters) {
        std::shared_ptr<HostValue> value = MakeValue(parameter);
        const auto input = std::find_if(inputs.begin(), inputs.end(),
                                        [&](const ParameterInput& other) { return other.name == parameter.name; });
        if (input != inputs.end())
            value->SetText(input->text);
        if (parameter.name == m_parameter)
            asked = value;
        params.Add(std::move(value), input != inputs.end() ? input->variable : nullptr);
    }
    if (m_selector == nullptr || !asked || m_selector->Select(nullptr, &params, m_parameter.c_str(), nullptr) == 0)
        return std::nullopt;
    return asked->Text();
}

} // namespace stagehost
