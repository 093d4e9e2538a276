#include "ScriptNotes.h"

#include <QHash>
#include <QSet>

#include "DriverTables.h"
#include "ScriptInfo.h"
#include "ScriptMembers.h"
#include "ScriptScan.h"
#include "ScriptSource.h"

namespace {

constexpr const char* kInfoMembers[] = {"Title",   "Author",    "Version", "Description",
                                        "Options", "Variables", "Setup",   "Commands"};
constexpr const char* kRemoveDefaults = "RemoveDefaultCommandsAndVariables";

constexpr int kMostParameters = 8; ///< that a device hands to a function

QStringList InfoMembers() {
    QStringList names;
    for (const char* name : kInfoMembers)
        names.append(QLatin1String(name));
    return names;
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

/// "Only A, B and C count there": what goes behind a name that means nothing.
QString WhatCounts(const QStringList& names) {
    return names.isEmpty() ? QStringLiteral("nothing counts there")
                           : QStringLiteral("what counts is ") + names.join(QStringLiteral(", "));
}

QStringList TypeNames() {
    QStringList names;
    for (const std::uint32_t code :
         {KXP_STRING_DATA, KXP_INTEGER_DATA, KXP_REAL_DATA, KXP_DATE_DATA, KXP_TIME_DATA, KXP_ENUM_DATA})
        names.append(QLatin1String(FindDataKindOfCode(code)->infoName));
    return names;
}

QStringList WidgetNames() {
    QStringList names;
    for (int kind = 0; WidgetName(kind) != nullptr; ++kind)
        names.append(QLatin1String(WidgetName(kind)));
    return names;
}

QString ShownName(const MScriptCommand& command) {
    const QString name = FindProperty(command.properties, QStringLiteral("Name"));
    return name.isNull() ? command.name : name;
}

/// The beginning of a list, for a sentence.
QString FirstItems(const QStringList& items) {
    constexpr int kMost = 8;
    const QString text = QStringList(items.mid(0, kMost)).join(QStringLiteral(", "));
    return items.size() > kMost ? text + QStringLiteral(", ...") : text;
}

class NoteTaker {
public:
    NoteTaker(const ScanResult& result, const ScriptSource& source)
        : m_result(result)
        , m_source(source)
        , m_variables(ByName(result.variables))
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
        LookAtCommands();
        LookAtValues();
        LookAtStart(published);
        LookAtWrittenObjects();
        return std::move(m_notes);
    }

private:
    using Path = QStringList;

    /// @param place where the line is to be looked for when the path itself is not written out.
    void Note(NoteCode code, const Path& path, const QStringList& details = {}, const Path& place = {}) {
        const int line = m_source.LineOf(path);
        m_notes.append(MakeNote(code, line > 0 ? line : m_source.LineOf(place), path.join(QLatin1Char('.')), details));
    }

    void LookAtFunction(const QString& name) {
        if (!name.startsWith(QLatin1Char('_')) && !m_functions.contains(name))
            Note(NoteCode::UnusableName, {name});
        LookAtStartName(name);
    }

    /// Names that are nearly those of the two functions that a device calls by itself.
    void LookAtStartName(const QString& name) {
        struct Row {
            const char* name;
            const char* when;
        };
        for (const Row& row : {Row{"_mStart", "start"}, Row{"_mStop", "stop"}}) {
            const QLatin1String right(row.name);
            const bool isNear = name.compare(right, Qt::CaseInsensitive) == 0 ||
                                name.compare(QLatin1String(row.name + 1), Qt::CaseInsensitive) == 0;
            if (isNear && name != right)
                Note(NoteCode::StartName, {name}, {QLatin1String(row.when), right});
        }
    }

    /// A start function that is declared and not published.
    void LookAtStart(const QScriptValue& published) {
        for (const SourceFunction& function : m_source.Functions()) {
            const bool isStart = function.name == QLatin1String("_mStart") || function.name == QLatin1String("_mStop");
            if (isStart && function.isDeclared && !published.property(function.name).isFunction())
                m_notes.append(MakeNote(NoteCode::StartNotPublished, LineAt(function.keyword), function.name));
        }
    }

    int LineAt(int place) const { return m_source.Words()[static_cast<std::size_t>(place)].line; }

    /// Members that are written out twice, of which the language keeps the last without a word.
    void LookAtWrittenObjects() {
        for (int open = 0; open < m_source.Count(); ++open)
            if (m_source.IsObject(open))
                LookAtWrittenObject(open);
    }

    void LookAtWrittenObject(int open) {
        QSet<QString> seen;
        const int close = m_source.Words()[static_cast<std::size_t>(open)].partner;
        for (int place = open + 1; place < close; ++place) {
            const SourceWord& word = m_source.Words()[static_cast<std::size_t>(place)];
            if (word.partner > place) {
                place = word.partner;
                continue;
            }
            if (!m_source.IsKey(place))
                continue;
            if (seen.contains(word.text))
                m_notes.append(MakeNote(NoteCode::SameMember, word.line, word.text));
            seen.insert(word.text);
        }
    }

    void LookAtCommands() {
        QHash<QString, QString> shown;
        for (const MScriptCommand& command : m_result.functions) {
            int count = 0;
            for (const MScriptCommandParam& param : command.params)
                count += param.direction == ParamDirection::In ? 1 : 0;
            if (count > kMostParameters)
                Note(NoteCode::TooManyParameters, {command.name}, {QString::number(count)});
            const QString name = ShownName(command);
            if (shown.contains(name))
                Note(NoteCode::SameCommandName, {command.name}, {name, shown.value(name)});
            shown.insert(name, command.name);
        }
    }

    /// Limits, items, and whether the value with which all begins is among them.
    void LookAtValues() {
        for (const MScriptVariable& variable : m_result.variables)
            LookAtValue(QStringLiteral("Variables"), FirstGroupOf(variable.name), variable, variable.enumItems);
        for (const MScriptSetting& setting : m_result.settings)
            LookAtValue(QStringLiteral("Setup"), QStringLiteral("Setup"), setting, setting.items);
        for (const MScriptCommand& command : m_result.functions)
            for (const MScriptCommandParam& param : command.params) {
                const Path path{QStringLiteral("Info"), QStringLiteral("Commands"), command.name,
                                QStringLiteral("Params"), param.name};
                LookAtLimits(path, param.properties);
                LookAtEnum(path, param.type, param.items);
            }
    }

    /// The object in which a variable of the device stands.
    QString FirstGroupOf(const QString& name) const {
        for (const char* group : {"Device", "DeviceR", "DeviceW", "DeviceRW"})
            if (m_groupOf.value(name) == QLatin1String(group))
                return QLatin1String(group);
        return QStringLiteral("Device");
    }

    template <typename Record>
    void LookAtValue(const QString& infoMember, const QString& group, const Record& record, const QStringList& items) {
        const Path info{QStringLiteral("Info"), infoMember, record.name};
        LookAtLimits(info, record.properties);
        const Path path{group, record.name};
        if (LookAtEnum(info, record.type, items))
            return LookAtDefaultItem(path, record.value, items);
        const QString longest = FindProperty(record.properties, QStringLiteral("MaxLength"));
        if (record.type == QLatin1String("StringData") && !longest.isNull() && record.value.size() > longest.toDouble())
            Note(NoteCode::DefaultTooLong, path, {QString::number(record.value.size()), longest});
        LookAtDefaultNumber(path, record.type, record.value, record.properties);
    }

    void LookAtLimits(const Path& path, const ScriptProperties& properties) {
        const QString least = FindProperty(properties, QStringLiteral("MinValue"));
        const QString most = FindProperty(properties, QStringLiteral("MaxValue"));
        if (!least.isNull() && !most.isNull() && least.toDouble() > most.toDouble())
            Note(NoteCode::MinAboveMax, path, {least, most});
    }

    /// @return whether it is an Enum with items. Items of a variable may come while the script runs.
    bool LookAtEnum(const Path& path, const QString& type, const QStringList& items) {
        if (type != QLatin1String("EnumData"))
            return false;
        const bool mayCome = path.at(1) == QLatin1String("Variables") && m_source.Mentions("EnumAdd");
        if (items.isEmpty() && !mayCome)
            Note(NoteCode::EnumWithoutItems, path);
        return !items.isEmpty();
    }

    void LookAtDefaultItem(const Path& path, const QString& value, const QStringList& items) {
        bool isNumber = false;
        const double index = value.toDouble(&isNumber);
        if (items.contains(value) || (isNumber && index >= 0 && index < items.size()))
            return;
        Note(NoteCode::DefaultIsNoItem, path, {value, FirstItems(items)});
    }

    void LookAtDefaultNumber(const Path& path, const QString& type, const QString& value,
                             const ScriptProperties& properties) {
        bool isNumber = false;
        const double number = value.toDouble(&isNumber);
        if (!isNumber || (type != QLatin1String("IntegerData") && type != QLatin1String("RealData")))
            return;
        const QString least = FindProperty(properties, QStringLiteral("MinValue"));
        const QString most = FindProperty(properties, QStringLiteral("MaxValue"));
        const bool isSound = least.isNull() || most.isNull() || least.toDouble() <= most.toDouble();
        if (isSound && !least.isNull() && number < least.toDouble())
            Note(NoteCode::DefaultBeyondLimit, path, {value, QStringLiteral("below MinValue %1").arg(least)});
        else if (isSound && !most.isNull() && number > most.toDouble())
            Note(NoteCode::DefaultBeyondLimit, path, {value, QStringLiteral("above MaxValue %1").arg(most)});
    }

    void LookAtGroup(const ScriptMember& object, PublishGroup group) {
        for (const ScriptMember& member : MembersOf(object.value)) {
            m_groupOf.insert(member.name, object.name);
            const Path path{object.name, member.name};
            if (SaysNothing(member.value))
                continue;
            if (group == PublishGroup::Setup && !m_settings.contains(member.name))
                Note(NoteCode::NoSetting, path);
            if (group == PublishGroup::Device && !member.value.isObject() && !m_variables.contains(member.name))
                Note(IsDefaultVariable(member.name) ? NoteCode::DefaultVariableName : NoteCode::NoVariable, path);
        }
    }

    void LookAtInfo(const QScriptValue& info) {
        static const QStringList known = InfoMembers();
        for (const ScriptMember& member : MembersOf(info)) {
            const Path path{QStringLiteral("Info"), member.name};
            if (!known.contains(member.name) && !SaysNothing(member.value))
                Note(NoteCode::MeansNothing, path, {WhatCounts(known)});
            else if (member.name == QLatin1String("Options"))
                LookAtOptions(path, member.value);
            else if (member.name == QLatin1String("Variables"))
                LookAtEntries(path, member.value, m_variables, &NoteTaker::LookAtVariable);
            else if (member.name == QLatin1String("Setup"))
                LookAtEntries(path, member.value, m_settings, &NoteTaker::LookAtSetting);
            else if (member.name == QLatin1String("Commands"))
                LookAtEntries(path, member.value, m_functions, &NoteTaker::LookAtCommand);
        }
    }

    void LookAtOptions(const Path& path, const QScriptValue& options) {
        for (const ScriptMember& member : MembersOf(options)) {
            if (member.name != QLatin1String(kRemoveDefaults))
                Note(NoteCode::MeansNothing, path + Path{member.name}, {WhatCounts({QLatin1String(kRemoveDefaults)})});
            else if (!member.value.isBool())
                Note(NoteCode::NoBoolean, path + Path{member.name});
        }
    }

    template <typename Record>
    void LookAtEntries(const Path& path, const QScriptValue& entries, const QHash<QString, const Record*>& records,
                       void (NoteTaker::*look)(const Path&, const Record&, const QScriptValue&)) {
        for (const ScriptMember& entry : MembersOf(entries)) {
            const Path place = path + Path{entry.name};
            const Record* record = records.value(entry.name, nullptr);
            if (record == nullptr)
                Note(NoteCode::NotPublished, place);
            else if (!entry.value.isObject())
                Note(NoteCode::NoObject, place);
            else
                (this->*look)(place, *record, entry.value);
        }
    }

    void LookAtVariable(const Path& path, const MScriptVariable& variable, const QScriptValue& entry) {
        LookAtTyped(path, PropertyOwner::Variable, variable.type, entry);
    }

    void LookAtParam(const Path& path, const MScriptCommandParam& param, const QScriptValue& entry) {
        LookAtTyped(path, PropertyOwner::Variable, param.type, entry);
    }

    void LookAtSetting(const Path& path, const MScriptSetting& setting, const QScriptValue& entry) {
        LookAtTyped(path, PropertyOwner::Setting, setting.type, entry);
        const QScriptValue widget = OwnMember(entry, QStringLiteral("Widget"));
        if (widget.isString() && WidgetKindOf(widget.toString()) < 0)
            Note(NoteCode::UnknownWidget, path + Path{QStringLiteral("Widget")},
                 {ScriptText(widget), WidgetNames().join(QStringLiteral(", "))});
    }

    void LookAtCommand(const Path& path, const MScriptCommand& command, const QScriptValue& entry) {
        for (const ScriptMember& member : MembersOf(entry)) {
            if (member.name == QLatin1String("Params"))
                LookAtEntries(path + Path{member.name}, member.value, ByName(command.params), &NoteTaker::LookAtParam);
            else if (!SaysNothing(member.value))
                LookAtProperty(path, PropertyOwner::Command, QString(), member);
        }
        const QScriptValue name = OwnMember(entry, QStringLiteral("Name"));
        if (name.isString() && IsBuiltInCommand(name.toString()))
            Note(NoteCode::BuiltInName, path + Path{QStringLiteral("Name")});
    }

    void LookAtTyped(const Path& path, PropertyOwner owner, const QString& type, const QScriptValue& entry) {
        for (const ScriptMember& member : MembersOf(entry)) {
            const Path place = path + Path{member.name};
            if (SaysNothing(member.value))
                continue;
            if (member.name == QLatin1String("Type"))
                LookAtType(place, member.value);
            else if (member.name == QLatin1String("Items"))
                LookAtItems(place, type, member.value);
            else
                LookAtProperty(path, owner, type, member);
        }
    }

    void LookAtType(const Path& path, const QScriptValue& value) {
        if (value.isObject() || FindDataKindOfInfo(value.toString()) == nullptr)
            Note(NoteCode::UnknownType, path, {ScriptText(value), TypeNames().join(QStringLiteral(", "))});
    }

    void LookAtItems(const Path& path, const QString& type, const QScriptValue& value) {
        if (!value.isArray())
            Note(NoteCode::NoArrayOfItems, path);
        else if (type != QLatin1String("EnumData"))
            Note(NoteCode::ItemsWithoutEnum, path);
    }

    void LookAtProperty(const Path& path, PropertyOwner owner, const QString& type, const ScriptMember& member) {
        ScriptProperties scratch;
        const Path place = path + Path{member.name};
        QStringList allowed = AllowedProperties(owner, type);
        if (!allowed.contains(member.name))
            Note(NoteCode::MeansNothing, place, {WhatCounts(allowed)});
        else if (member.value.isObject())
            Note(NoteCode::NoPlainValue, place);
        else if (!StoreProperty(scratch, owner, type, member.name, member.value.toString()))
            Note(NoteCode::NoNumber, place, {ScriptText(member.value)});
    }

    const ScanResult& m_result;
    const ScriptSource& m_source;
    const QHash<QString, const MScriptVariable*> m_variables;
    const QHash<QString, const MScriptSetting*> m_settings;
    const QHash<QString, const MScriptCommand*> m_functions;
    QHash<QString, QString> m_groupOf; ///< the publishing object of a name
    QList<ScriptNote> m_notes;
};

} // namespace

QList<ScriptNote> FindNotes(const QScriptValue& published, const ScanResult& result, const ScriptSource& source) {
    return NoteTaker(result, source).Take(published);
}
