#include <algorithm>

#include <QVector>

#include "DriverTables.h"
#include "ScriptReport.h"

namespace {

using Rows = QVector<QStringList>;

/// Aligned columns, two blanks apart, without blanks at a line's end.
QString Table(const QString& heading, const Rows& rows) {
    if (rows.isEmpty())
        return QString();
    QVector<int> widths;
    for (const QStringList& row : rows)
        for (int i = 0; i < row.size(); ++i) {
            widths.resize(std::max(widths.size(), i + 1));
            widths[i] = std::max(widths[i], row[i].size());
        }
    QString text = QLatin1Char('\n') + heading + QLatin1Char('\n');
    for (const QStringList& row : rows) {
        QString line;
        for (int i = 0; i < row.size(); ++i)
            line += QStringLiteral("  ") + row[i].leftJustified(widths[i]);
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        text += line + QLatin1Char('\n');
    }
    return text;
}

/// A value that may hold line feeds, on one line.
QString OneLine(QString text) {
    return text.replace(QLatin1Char('\n'), QStringLiteral("\\n")).replace(QLatin1Char('\r'), QStringLiteral("\\r"));
}

/// "Integer" for "IntegerData".
QString ShortType(const QString& type) {
    const DataKind* kind = FindDataKind(type);
    return kind != nullptr ? QLatin1String(kind->infoName) : type;
}

QString Details(const ScriptProperties& properties, const QStringList& items) {
    QStringList parts;
    for (const auto& property : properties)
        parts.append(property.first + QLatin1Char('=') + property.second);
    if (!items.isEmpty())
        parts.append(items.join(QLatin1Char('|')));
    return OneLine(parts.join(QStringLiteral(", ")));
}

Rows InfoRows(const ScriptReport& report) {
    Rows rows{{QStringLiteral("title"), report.info.title}};
    const auto add = [&](const QString& name, const QString& text) {
        if (!text.isEmpty())
            rows.append({name, OneLine(text)});
    };
    add(QStringLiteral("version"), report.info.version);
    add(QStringLiteral("author"), report.info.author);
    add(QStringLiteral("description"), report.info.description);
    if (report.published.removeDefaults)
        add(QStringLiteral("defaults"),
            *report.published.removeDefaults ? QStringLiteral("removed") : QStringLiteral("kept"));
    return rows;
}

Rows CommandRows(const ScriptCommands& commands) {
    Rows rows;
    for (const MScriptCommand& command : commands) {
        rows.append({QString::number(command.id), command.name, QString(), QString(), Details(command.properties, {})});
        for (const MScriptCommandParam& param : command.params)
            rows.append({QString(),
                         param.direction == ParamDirection::Out ? QStringLiteral("  out") : QStringLiteral("  in"),
                         param.name, ShortType(param.type), Details(param.properties, param.items)});
    }
    return rows;
}

Rows VariableRows(const ScriptVariables& variables) {
    Rows rows;
    for (const MScriptVariable& variable : variables)
        rows.append({variable.name, ShortType(variable.type), OneLine(variable.value),
                     Details(variable.properties, variable.enumItems)});
    return rows;
}

Rows SettingRows(const ScriptSettings& settings) {
    Rows rows;
    for (const MScriptSetting& setting : settings)
        rows.append({setting.name, ShortType(setting.type), QLatin1String(WidgetName(setting.widget)),
                     OneLine(setting.value), Details(setting.properties, setting.items)});
    return rows;
}

} // namespace

QString ToText(const ScriptReport& report) {
    const ScanResult& published = report.published;
    QString text = Table(QStringLiteral("Info"), InfoRows(report)) +
                   Table(QStringLiteral("Commands"), CommandRows(published.functions)) +
                   Table(QStringLiteral("Variables"), VariableRows(published.variables)) +
                   Table(QStringLiteral("Settings"), SettingRows(published.settings));
    if (published.functions.empty() && published.variables.empty() && published.settings.empty())
        text +=
            QStringLiteral("\nNothing is published: a script publishes the members of the object that it ends with.\n");
    return text;
}
