#include "ScriptNotes.h"

#include <algorithm>
#include <iterator>

#include <QHash>

#include "DriverTables.h"
#include "ScriptInfo.h"
#include "ScriptMembers.h"
#include "ScriptScan.h"

namespace {

constexpr const char* kInfoMembers[] = {"Title",   "Author",    "Version", "Description",
                                        "Options", "Variables", "Setup",   "Commands"};
constexpr const char* kRemoveDefaults = "RemoveDefaultCommandsAndVariables";

bool IsInfoMember(const QString& name) {
    return std::any_of(std::begin(kInfoMembers), std::end(kInfoMembers),
                       [&](const char* known) { return name == QLatin1String(known); });
}

/// Records by their names, of one name the first.
template <typename Records>
auto ByName(const Records& records) {
    QHash<QString, const typename Records::value_type*> places;
    for (const auto& record : records)
        if (!places.contains(record.name))
            places.insert(record.name, &record);
    return places;
}

bool SaysNothing(const QScriptValue& value) {
    return value.isNull() || value.isFunction();
}

QString Quoted(const QScriptValue& value, const char* complaint) {
    return QLatin1Char('"') + ScriptText(value) + QStringLiteral("\" ") + QLatin1String(complaint);
}

class NoteTaker {
public:
    explicit NoteTaker(const ScanResult& result)
        : m_variables(ByName(result.variables))
        , m_settings(ByName(result.settings))
        , m_functions(ByName(result.functions)) {}

    QList<ScriptNote> Take(const QScriptValue& published) {
        for (const ScriptMember& member : MembersOf(published)) {
            PublishGroup group = PublishGroup::Host;
            if (member.value.isFunction())
                LookAtFunction(member.name);
            else if (member.name == QLatin1String("Info") && member.value.isObject())
                LookAtInfo(member.value);
            else if (member.value.isObject() && FindPublishGroup(member.name, group))
                LookAtGroup(member, group);
        }
        return std::move(m_notes);
    }

private:
    void Note(const QString& where, const QString& text) { m_notes.append({where, text}); }
    void Note(const QString& where, const char* text) { Note(where, QString::fromLatin1(text)); }

    void LookAtFunction(const QString& name) {
        if (!name.startsWith(QLatin1Char('_')) && !m_functions.contains(name))
            Note(name, "no command is made of it: hosts cannot carry the name");
    }

    void LookAtGroup(const ScriptMember& object, PublishGroup group) {
        for (const ScriptMember& member : MembersOf(object.value)) {
            const QString where = object.name + QLatin1Char('.') + member.name;
            if (SaysNothing(member.value))
                continue;
            if (group == PublishGroup::Setup && !m_settings.contains(member.name))
                Note(where, "no setting is made of it");
            if (group == PublishGroup::Device && !member.value.isObject() && !m_variables.contains(member.name))
                Note(where, IsDefaultVariable(member.name) ? "no variable is made of it: every device has one"
                                                           : "no variable is made of it");
        }
    }

    void LookAtInfo(const QScriptValue& info) {
        for (const ScriptMember& member : MembersOf(info)) {
            const QString where = QStringLiteral("Info.") + member.name;
            if (!IsInfoMember(member.name) && !SaysNothing(member.value))
                Note(where, "means nothing here");
            else if (member.name == QLatin1String("Options"))
                LookAtOptions(where, member.value);
            else if (member.name == QLatin1String("Variables"))
                LookAtEntries(where, member.value, m_variables, &NoteTaker::LookAtVariable);
            else if (member.name == QLatin1String("Setup"))
                LookAtEntries(where, member.value, m_settings, &NoteTaker::LookAtSetting);
            else if (member.name == QLatin1String("Commands"))
                LookAtEntries(where, member.value, m_functions, &NoteTaker::LookAtCommand);
        }
    }

    void LookAtOptions(const QString& where, const QScriptValue& options) {
        for (const ScriptMember& member : MembersOf(options)) {
            const QString place = where + QLatin1Char('.') + member.name;
            if (member.name != QLatin1String(kRemoveDefaults))
                Note(place, "means nothing here");
            else if (!member.value.isBool())
                Note(place, "is neither true nor false");
        }
    }

    template <typename Record>
    void LookAtEntries(const QString& where, const QScriptValue& entries, const QHash<QString, const Record*>& records,
                       void (NoteTaker::*look)(const QString&, const Record&, const QScriptValue&)) {
        for (const ScriptMember& entry : MembersOf(entries)) {
            const QString place = where + QLatin1Char('.') + entry.name;
            const Record* record = records.value(entry.name, nullptr);
            if (record == nullptr)
                Note(place, "nothing of that name is published");
            else if (!entry.value.isObject())
                Note(place, "is no object");
            else
                (this->*look)(place, *record, entry.value);
        }
    }

    void LookAtVariable(const QString& where, const MScriptVariable& variable, const QScriptValue& entry) {
        LookAtTyped(where, PropertyOwner::Variable, variable.type, entry);
    }

    void LookAtParam(const QString& where, const MScriptCommandParam& param, const QScriptValue& entry) {
        LookAtTyped(where, PropertyOwner::Variable, param.type, entry);
    }

    void LookAtSetting(const QString& where, const MScriptSetting& setting, const QScriptValue& entry) {
        LookAtTyped(where, PropertyOwner::Setting, setting.type, entry);
        const QScriptValue widget = OwnMember(entry, QStringLiteral("Widget"));
        if (widget.isString() && WidgetKindOf(widget.toString()) < 0)
            Note(where + QStringLiteral(".Widget"), Quoted(widget, "is no field"));
    }

    void LookAtCommand(const QString& where, const MScriptCommand& command, const QScriptValue& entry) {
        for (const ScriptMember& member : MembersOf(entry)) {
            const QString place = where + QLatin1Char('.') + member.name;
            if (member.name == QLatin1String("Params"))
                LookAtEntries(place, member.value, ByName(command.params), &NoteTaker::LookAtParam);
            else if (!SaysNothing(member.value))
                LookAtProperty(place, PropertyOwner::Command, QString(), member);
        }
        const QScriptValue name = OwnMember(entry, QStringLiteral("Name"));
        if (name.isString() && IsBuiltInCommand(name.toString()))
            Note(where + QStringLiteral(".Name"), "is the name of a command that every device has");
    }

    void LookAtTyped(const QString& where, PropertyOwner owner, const QString& type, const QScriptValue& entry) {
        for (const ScriptMember& member : MembersOf(entry)) {
            const QString place = where + QLatin1Char('.') + member.name;
            if (SaysNothing(member.value))
                continue;
            if (member.name == QLatin1String("Type"))
                LookAtType(place, member.value);
            else if (member.name == QLatin1String("Items"))
                LookAtItems(place, type, member.value);
            else
                LookAtProperty(place, owner, type, member);
        }
    }

    void LookAtType(const QString& where, const QScriptValue& value) {
        if (value.isObject() || FindDataKindOfInfo(value.toString()) == nullptr)
            Note(where, Quoted(value, "is no type"));
    }

    void LookAtItems(const QString& where, const QString& type, const QScriptValue& value) {
        if (!value.isArray())
            Note(where, "is no array");
        else if (type != QLatin1String("EnumData"))
            Note(where, "counts for the type Enum alone");
    }

    void LookAtProperty(const QString& where, PropertyOwner owner, const QString& type, const ScriptMember& member) {
        ScriptProperties scratch;
        if (!AllowedProperties(owner, type).contains(member.name))
            Note(where, owner == PropertyOwner::Variable ? "means nothing for its type" : "means nothing here");
        else if (member.value.isObject())
            Note(where, "is no plain value");
        else if (!StoreProperty(scratch, owner, type, member.name, member.value.toString()))
            Note(where, Quoted(member.value, "is no number that fits"));
    }

    const QHash<QString, const MScriptVariable*> m_variables;
    const QHash<QString, const MScriptSetting*> m_settings;
    const QHash<QString, const MScriptCommand*> m_functions;
    QList<ScriptNote> m_notes;
};

} // namespace

QList<ScriptNote> FindNotes(const QScriptValue& published, const ScanResult& result) {
    return NoteTaker(result).Take(published);
}
