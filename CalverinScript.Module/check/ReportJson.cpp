#include <QJsonArray>
#include <QJsonValue>

#include "DriverTables.h"
#include "ScriptReport.h"

namespace {

QJsonObject PropertiesOf(const ScriptProperties& properties) {
    QJsonObject object;
    for (const auto& property : properties)
        object.insert(property.first, property.second);
    return object;
}

template <typename Records, typename Convert>
QJsonArray ListOf(const Records& records, Convert convert) {
    QJsonArray list;
    for (const auto& record : records)
        list.append(convert(record));
    return list;
}

QJsonObject ParamOf(const MScriptCommandParam& param) {
    const bool isOut = param.direction == ParamDirection::Out;
    return {{QStringLiteral("name"), param.name},
            {QStringLiteral("direction"), isOut ? QStringLiteral("out") : QStringLiteral("in")},
            {QStringLiteral("type"), param.type},
            {QStringLiteral("properties"), PropertiesOf(param.properties)},
            {QStringLiteral("items"), QJsonArray::fromStringList(param.items)}};
}

QJsonObject CommandOf(const MScriptCommand& command) {
    const QString shownName = FindProperty(command.properties, QStringLiteral("Name"));
    return {{QStringLiteral("function"), command.name},
            {QStringLiteral("name"), shownName.isNull() ? command.name : shownName},
            {QStringLiteral("id"), command.id},
            {QStringLiteral("properties"), PropertiesOf(command.properties)},
            {QStringLiteral("params"), ListOf(command.params, &ParamOf)}};
}

QJsonObject VariableOf(const MScriptVariable& variable) {
    return {{QStringLiteral("name"), variable.name},
            {QStringLiteral("type"), variable.type},
            {QStringLiteral("value"), variable.value},
            {QStringLiteral("properties"), PropertiesOf(variable.properties)},
            {QStringLiteral("items"), QJsonArray::fromStringList(variable.enumItems)}};
}

QJsonObject SettingOf(const MScriptSetting& setting) {
    return {{QStringLiteral("name"), setting.name},
            {QStringLiteral("type"), setting.type},
            {QStringLiteral("widget"), setting.widget},
            {QStringLiteral("value"), setting.value},
            {QStringLiteral("properties"), PropertiesOf(setting.properties)},
            {QStringLiteral("items"), QJsonArray::fromStringList(setting.items)}};
}

QJsonObject NoteOf(const ScriptNote& note, const QString& driver) {
    return {{QStringLiteral("file"), note.file.isEmpty() ? driver : note.file},
            {QStringLiteral("line"), note.line},
            {QStringLiteral("code"), note.Code()},
            {QStringLiteral("where"), note.where},
            {QStringLiteral("text"), note.text}};
}

QJsonArray NotesOf(const ScriptReport& report) {
    QJsonArray list;
    for (const ScriptNote& note : report.notes)
        list.append(NoteOf(note, report.files.value(0)));
    return list;
}

QJsonValue ProblemOf(const std::optional<ScriptProblem>& problem, const QString& driver) {
    if (!problem)
        return QJsonValue::Null;
    const ScriptFault& fault = problem->fault;
    QJsonArray calls;
    for (const FaultFrame& frame : fault.stack)
        calls.append(QJsonObject{{QStringLiteral("function"), frame.function},
                                 {QStringLiteral("file"), frame.file.isEmpty() ? driver : frame.file},
                                 {QStringLiteral("line"), frame.line}});
    return QJsonObject{{QStringLiteral("file"), problem->file.isEmpty() ? driver : problem->file},
                       {QStringLiteral("line"), problem->line},
                       {QStringLiteral("column"), fault.column},
                       {QStringLiteral("text"), problem->text},
                       {QStringLiteral("source"), fault.source},
                       {QStringLiteral("calls"), calls},
                       {QStringLiteral("note"), fault.note}};
}

} // namespace

QJsonObject ToJson(const ScriptReport& report, bool withScript) {
    const QJsonObject info{{QStringLiteral("title"), report.info.title},
                           {QStringLiteral("author"), report.info.author},
                           {QStringLiteral("version"), report.info.version},
                           {QStringLiteral("description"), report.info.description}};
    const std::optional<bool>& removes = report.published.removeDefaults;
    QJsonObject json{{QStringLiteral("info"), info},
                     {QStringLiteral("removeDefaults"), removes ? QJsonValue(*removes) : QJsonValue(QJsonValue::Null)},
                     {QStringLiteral("commands"), ListOf(report.published.functions, &CommandOf)},
                     {QStringLiteral("variables"), ListOf(report.published.variables, &VariableOf)},
                     {QStringLiteral("settings"), ListOf(report.published.settings, &SettingOf)},
                     {QStringLiteral("notes"), NotesOf(report)},
                     {QStringLiteral("error"), ProblemOf(report.problem, report.files.value(0))},
                     {QStringLiteral("files"), QJsonArray::fromStringList(report.files)}};
    if (withScript && !report.script.isNull())
        json.insert(QStringLiteral("script"), report.script);
    return json;
}
