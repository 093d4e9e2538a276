#include "ScriptInfo.h"

#include <algorithm>

#include <QHash>

#include "DriverTables.h"
#include "ScriptMembers.h"
#include "ScriptScan.h"
#include "StoppableLoop.h"

namespace {

/// An enumeration with more items is not read to its end.
constexpr quint32 kMostItems = 65536;

bool IsPlain(const QScriptValue& value) {
    return value.isValid() && !value.isNull() && !value.isObject();
}

template <typename Records>
QHash<QString, int> PlacesOf(const Records& records) {
    QHash<QString, int> places;
    int place = 0;
    for (const auto& record : records) {
        if (!places.contains(record.name))
            places.insert(record.name, place);
        ++place;
    }
    return places;
}

/// Calls apply(record, entry) for each entry of the object that is named like a record.
template <typename Records, typename Apply>
void ForEachNamed(const QScriptValue& entries, Records& records, Apply apply) {
    if (!entries.isObject())
        return;
    const QHash<QString, int> places = PlacesOf(records);
    for (const ScriptMember& entry : MembersOf(entries)) {
        const auto found = places.constFind(entry.name);
        if (found != places.constEnd() && entry.value.isObject())
            apply(*(records.begin() + *found), entry.value);
    }
}

void TakeProperties(const QScriptValue& entry, PropertyOwner owner, const QString& type, ScriptProperties& properties) {
    for (const ScriptMember& member : MembersOf(entry))
        if (IsPlain(member.value))
            StoreProperty(properties, owner, type, member.name, member.value.toString());
}

void TakeType(const QScriptValue& entry, QString& type) {
    const QScriptValue named = OwnMember(entry, QStringLiteral("Type"));
    const DataKind* kind = IsPlain(named) ? FindDataKindOfInfo(named.toString()) : nullptr;
    if (kind != nullptr)
        type = QLatin1String(kind->element);
}

QStringList TakeItems(const QScriptValue& entry, const QString& type) {
    QStringList items;
    const QScriptValue array = OwnMember(entry, QStringLiteral("Items"));
    if (!array.isArray() || type != QLatin1String("EnumData"))
        return items;
    const quint32 count = std::min(array.property(QStringLiteral("length")).toUInt32(), kMostItems);
    StoppableLoop loop(array.engine());
    for (quint32 i = 0; i < count && loop.GoesOn(); ++i)
        items.append(ScriptText(OwnMember(array, QString::number(i))));
    return items;
}

void ApplyToVariable(MScriptVariable& variable, const QScriptValue& entry) {
    TakeType(entry, variable.type);
    TakeProperties(entry, PropertyOwner::Variable, variable.type, variable.properties);
    variable.enumItems = TakeItems(entry, variable.type);
}

void ApplyToSetting(MScriptSetting& setting, const QScriptValue& entry) {
    TakeType(entry, setting.type);
    TakeProperties(entry, PropertyOwner::Setting, setting.type, setting.properties);
    setting.items = TakeItems(entry, setting.type);
    const int widget = WidgetKindOf(FindProperty(setting.properties, QStringLiteral("Widget")));
    setting.widget = widget >= 0 ? widget : FindDataKind(setting.type)->widget;
}

void ApplyToParam(MScriptCommandParam& param, const QScriptValue& entry) {
    TakeType(entry, param.type);
    TakeProperties(entry, PropertyOwner::Variable, param.type, param.properties);
    param.items = TakeItems(entry, param.type);
}

/// A stored command without a name or a status is none, so neither can be empty.
bool IsCommandProperty(const QString& name, const QString& text) {
    if (name == QLatin1String("Name"))
        return !text.isEmpty() && !IsBuiltInCommand(text);
    return name != QLatin1String("Status") || !text.isEmpty();
}

void ApplyToCommand(MScriptCommand& command, const QScriptValue& entry) {
    for (const ScriptMember& member : MembersOf(entry)) {
        if (!IsPlain(member.value))
            continue;
        const QString text = member.value.toString();
        if (IsCommandProperty(member.name, text))
            StoreProperty(command.properties, PropertyOwner::Command, QString(), member.name, text);
    }
    ForEachNamed(OwnMember(entry, QStringLiteral("Params")), command.params, &ApplyToParam);
}

} // namespace

QScriptValue FindInfo(const QScriptValue& published) {
    const QScriptValue info = OwnMember(published, QStringLiteral("Info"));
    return info.isObject() ? info : QScriptValue();
}

std::optional<bool> ReadInfoOptions(const QScriptValue& info) {
    const QScriptValue option =
        OwnMember(OwnMember(info, QStringLiteral("Options")), QStringLiteral("RemoveDefaultCommandsAndVariables"));
    return option.isBool() ? std::optional<bool>(option.toBool()) : std::nullopt;
}

void ApplyInfo(const QScriptValue& info, ScanResult& result) {
    ForEachNamed(OwnMember(info, QStringLiteral("Variables")), result.variables, &ApplyToVariable);
    ForEachNamed(OwnMember(info, QStringLiteral("Setup")), result.settings, &ApplyToSetting);
    ForEachNamed(OwnMember(info, QStringLiteral("Commands")), result.functions, &ApplyToCommand);
}
