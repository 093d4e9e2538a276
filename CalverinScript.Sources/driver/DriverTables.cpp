#include "DriverTables.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

struct PublishingObject {
    const char* name;
    PublishGroup group;
};
constexpr PublishingObject kPublishingObjects[] = {
    {"Calverin", PublishGroup::Host},   {"CalverinR", PublishGroup::Host},  {"CalverinW", PublishGroup::Host},
    {"CalverinRW", PublishGroup::Host}, {"Device", PublishGroup::Device},   {"DeviceR", PublishGroup::Device},
    {"DeviceW", PublishGroup::Device},  {"DeviceRW", PublishGroup::Device}, {"Setup", PublishGroup::Setup},
};
static_assert(std::size(kPublishingObjects) == 9, "four of the host, four of the device, and the setup");

constexpr DataKind kDataKinds[] = {
    {"StringData", "String", KXP_STRING_DATA, 0, "String", "DefaultString"},
    {"IntegerData", "Integer", KXP_INTEGER_DATA, 2, "Value", "DefaultValue"},
    {"RealData", "Real", KXP_REAL_DATA, 3, "Value", "DefaultValue"},
    {"EnumData", "Enum", KXP_ENUM_DATA, 4, "Current", "DefaultCurrent"},
    {"DateData", "Date", KXP_DATE_DATA, 5, "Value", nullptr},
    {"TimeData", "Time", KXP_TIME_DATA, 6, "Time", "DefaultTime"},
};
static_assert(std::size(kDataKinds) == 6, "one for each type of value that a script may publish");

/// What a property's text has to be: readers of a definition refuse it as a whole for one number that is none.
enum class PropertyText { Any, Number, Whole };

struct PropertyRow {
    const char* type; ///< null for every type
    const char* name;
    PropertyOwner owner;
    PropertyText text;
};
constexpr PropertyRow kProperties[] = {
    {"IntegerData", "MinValue", PropertyOwner::Variable, PropertyText::Number},
    {"IntegerData", "MaxValue", PropertyOwner::Variable, PropertyText::Number},
    {"StringData", "MaxLength", PropertyOwner::Variable, PropertyText::Whole},
    {"RealData", "MinValue", PropertyOwner::Variable, PropertyText::Number},
    {"RealData", "MaxValue", PropertyOwner::Variable, PropertyText::Number},
    {"RealData", "Precision", PropertyOwner::Variable, PropertyText::Whole},
    {"TimeData", "TimeCodeType", PropertyOwner::Variable, PropertyText::Whole},
    {nullptr, "Name", PropertyOwner::Command, PropertyText::Any},
    {nullptr, "Version", PropertyOwner::Command, PropertyText::Any},
    {nullptr, "Status", PropertyOwner::Command, PropertyText::Any},
    {nullptr, "GroupName", PropertyOwner::Command, PropertyText::Any},
    {nullptr, "GroupOrder", PropertyOwner::Command, PropertyText::Any},
    {nullptr, "GroupCmdOrder", PropertyOwner::Command, PropertyText::Any},
    {nullptr, "Name", PropertyOwner::Setting, PropertyText::Any},
    {nullptr, "Widget", PropertyOwner::Setting, PropertyText::Any},
    {nullptr, "Hint", PropertyOwner::Setting, PropertyText::Any},
    {nullptr, "Prefix", PropertyOwner::Setting, PropertyText::Any},
    {nullptr, "Suffix", PropertyOwner::Setting, PropertyText::Any},
    {nullptr, "MinValue", PropertyOwner::Setting, PropertyText::Number},
    {nullptr, "MaxValue", PropertyOwner::Setting, PropertyText::Number},
    {nullptr, "Precision", PropertyOwner::Setting, PropertyText::Whole},
    {nullptr, "MaxLength", PropertyOwner::Setting, PropertyText::Whole},
    {nullptr, "Width", PropertyOwner::Setting, PropertyText::Whole},
    {nullptr, "TimeCodeType", PropertyOwner::Setting, PropertyText::Whole},
};

constexpr const char* kWidgets[] = {"LineEdit",   "TextEdit", "SpinBox",  "RealSpinBox", "ComboBox", "DateEdit",
                                    "TimeEdit",   "Color",    "CheckBox", "List",        "Slider",   "Knob",
                                    "Label",      "Divider",  "Serial",   "DMXIn",       "DMXOut",   "DigitalIn",
                                    "DigitalOut", "AnalogIn", "AnalogOut"};
static_assert(std::size(kWidgets) == kLastResourceWidget + 1, "the resources come last");

constexpr const char* kBuiltInCommands[] = {"Load From File", "Load From Text", "Execute Function",
                                            "Execute Function With Params"};

bool Equal(const QString& text, const char* known) {
    return text == QLatin1String(known);
}

template <typename Names>
bool Contains(const Names& names, const QString& text) {
    return std::any_of(std::begin(names), std::end(names), [&](const char* name) { return Equal(text, name); });
}

template <typename Condition>
const DataKind* FindKind(Condition condition) {
    const auto* found = std::find_if(std::begin(kDataKinds), std::end(kDataKinds), condition);
    return found != std::end(kDataKinds) ? found : nullptr;
}

bool Belongs(const PropertyRow& row, PropertyOwner owner, const QString& type) {
    return row.owner == owner && (row.type == nullptr || Equal(type, row.type));
}

bool Fits(PropertyText wanted, const QString& text) {
    if (wanted == PropertyText::Any)
        return true;
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    return isNumber && std::isfinite(number) && (wanted == PropertyText::Number || std::trunc(number) == number);
}

} // namespace

bool FindPublishGroup(const QString& objectName, PublishGroup& group) {
    for (const PublishingObject& object : kPublishingObjects) {
        if (!Equal(objectName, object.name))
            continue;
        group = object.group;
        return true;
    }
    return false;
}

const DataKind* FindDataKind(const QString& element) {
    return FindKind([&](const DataKind& kind) { return Equal(element, kind.element); });
}

const DataKind* FindDataKindOfInfo(const QString& infoName) {
    return FindKind([&](const DataKind& kind) { return Equal(infoName, kind.infoName); });
}

const DataKind* FindDataKindOfCode(std::uint32_t code) {
    return FindKind([&](const DataKind& kind) { return kind.code == code; });
}

QStringList AllowedProperties(PropertyOwner owner, const QString& type) {
    QStringList names;
    for (const PropertyRow& row : kProperties)
        if (Belongs(row, owner, type))
            names.append(QLatin1String(row.name));
    return names;
}

bool StoreProperty(ScriptProperties& properties, PropertyOwner owner, const QString& type, const QString& name,
                   const QString& text) {
    const auto* row = std::find_if(std::begin(kProperties), std::end(kProperties), [&](const PropertyRow& candidate) {
        return Belongs(candidate, owner, type) && Equal(name, candidate.name);
    });
    if (row == std::end(kProperties) || !Fits(row->text, text))
        return false;
    for (auto& property : properties) {
        if (property.first != name)
            continue;
        property.second = text;
        return true;
    }
    properties.append({name, text});
    return true;
}

QString FindProperty(const ScriptProperties& properties, const QString& name) {
    for (const auto& property : properties)
        if (property.first == name)
            return property.second;
    return QString();
}

int WidgetKindOf(const QString& nameOrNumber) {
    for (std::size_t kind = 0; kind < std::size(kWidgets); ++kind)
        if (Equal(nameOrNumber, kWidgets[kind]))
            return static_cast<int>(kind);
    bool isNumber = false;
    const int number = nameOrNumber.toInt(&isNumber);
    return isNumber && WidgetName(number) != nullptr ? number : -1;
}

const char* WidgetName(int kind) {
    return kind >= 0 && kind < static_cast<int>(std::size(kWidgets)) ? kWidgets[kind] : nullptr;
}

bool IsDefaultVariable(const QString& name) {
    return Contains(kDefaultVariables, name);
}

bool IsBuiltInCommand(const QString& name) {
    return Contains(kBuiltInCommands, name);
}

const char* DirectionText(ParamDirection direction) {
    return direction == ParamDirection::Out ? "mddOut" : "mddIn";
}
