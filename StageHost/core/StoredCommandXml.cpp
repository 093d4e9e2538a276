#include "StoredCommandXml.h"

#include <algorithm>

#include "BorderText.h"
#include "DataTypes.h"
#include "DefinitionReader.h"
#include "ValueFactory.h"

namespace stagehost {

namespace {

constexpr const char* kRoot = "StoredCommand";
constexpr const char* kCommand = "Command";
constexpr const char* kParams = "ObjectParams";
constexpr const char* kParam = "ObjectParam";
constexpr const char* kBinding = "Binding";
constexpr const char* kVariable = "Variable";

const DataType* TypeOf(const XmlElement& element) {
    return FindDataTypeOfElement(element.name.toStdString());
}

/// The value element of a parameter, or null.
XmlElement* ValueOf(XmlElement& param) {
    const auto found = std::find_if(param.children.begin(), param.children.end(),
                                    [](const auto& child) { return TypeOf(child) != nullptr; });
    return found == param.children.end() ? nullptr : &*found;
}

/// Calls for each parameter of a stored command with its number.
template <typename Call>
void ForEachParam(XmlElement& params, Call call) {
    std::size_t number = 0;
    for (auto& child : params.children) {
        if (child.name == QLatin1String(kParam))
            call(number++, child);
    }
}

/// The value as the element keeps it: the index of an enumeration, the text of everything else.
QString ContentOf(const ValueSpec& parameter, const std::string& text) {
    const auto value = MakeValue(parameter);
    value->SetText(text);
    return parameter.type == KXP_ENUM_DATA ? QString::number(value->Int()) : FromBorderText(value->Text());
}

void Give(XmlElement& param, const ValueSpec& parameter, const ActionParameter& given) {
    if (given.isVariable) {
        param.Add(kBinding).Set(kVariable, FromBorderText(given.text));
        return;
    }
    XmlElement* value = ValueOf(param);
    if (value != nullptr)
        value->Set(TypeOf(*value)->contentAttribute, ContentOf(parameter, given.text));
}

} // namespace

StoredCommandXml::StoredCommandXml(XmlElement root)
    : m_root(std::move(root)) {}

std::optional<StoredCommandXml> StoredCommandXml::Read(const QString& xml, QString* problem) {
    auto root = XmlElement::Parse(xml, problem);
    if (!root)
        return std::nullopt;
    StoredCommandXml stored(std::move(*root));
    *problem = stored.Take();
    return problem->isEmpty() ? std::optional(stored) : std::nullopt;
}

std::optional<StoredCommandXml> StoredCommandXml::Make(const std::string& device, const std::string& definition,
                                                       std::int32_t id,
                                                       const std::vector<ActionParameter>& parameters) {
    QString problem;
    const auto described = XmlElement::Parse(FromOutsideText(definition), &problem);
    const XmlElement* commands = described ? described->Child("Commands") : nullptr;
    const XmlElement* command = commands != nullptr ? commands->ChildWith("ID", QString::number(id)) : nullptr;
    if (command == nullptr)
        return std::nullopt;
    XmlElement root;
    root.name = QLatin1String(kRoot);
    root.Set("Name", FromBorderText(device));
    root.children.push_back(*command);
    StoredCommandXml stored(std::move(root));
    if (!stored.Take().isEmpty())
        return std::nullopt;
    const std::vector<ValueSpec> specs = stored.m_command.parameters;
    ForEachParam(stored.m_root.Need(kCommand).Need(kParams), [&](std::size_t number, XmlElement& param) {
        for (const auto& given : parameters) {
            if (given.name == specs[number].name || given.name == std::to_string(number))
                Give(param, specs[number], given);
        }
    });
    return stored.Take().isEmpty() ? std::optional(stored) : std::nullopt;
}

/// Reads what the element says.
/// @return what is wrong with it; empty when nothing is.
QString StoredCommandXml::Take() {
    XmlElement* command = m_root.Child(kCommand);
    if (command == nullptr || m_root.Attribute("Name").isEmpty())
        return QStringLiteral("expected an element with the name of a device, and in it \"Command\"");
    XmlElement definition;
    definition.name = QStringLiteral("Device");
    definition.Add("Commands").children.push_back(*command);
    DefinitionReader reader;
    const auto read = reader.Read(ToBorderText(definition.Print()).c_str());
    if (!read)
        return FromBorderText(reader.Error());
    m_command = read->commands.front();
    m_bindings.clear();
    ForEachParam(command->Need(kParams), [this](std::size_t number, XmlElement& param) {
        if (const XmlElement* binding = param.Child(kBinding))
            m_bindings.emplace_back(number, ToBorderText(binding->Attribute(kVariable)));
    });
    return {};
}

std::string StoredCommandXml::Device() const {
    return ToBorderText(m_root.Attribute("Name"));
}

ActionSpec StoredCommandXml::Action() const {
    ActionSpec action;
    action.device = Device();
    action.command = std::to_string(m_command.id);
    for (std::size_t number = 0; number < m_command.parameters.size(); ++number) {
        const ValueSpec& parameter = m_command.parameters[number];
        const auto bound = std::find_if(m_bindings.begin(), m_bindings.end(),
                                        [&](const auto& binding) { return binding.first == number; });
        if (bound != m_bindings.end())
            action.parameters.push_back({std::to_string(number), bound->second, true});
        else if (!IsOutParameter(parameter))
            action.parameters.push_back({std::to_string(number), MakeValue(parameter)->Text(), false});
    }
    return action;
}

} // namespace stagehost
