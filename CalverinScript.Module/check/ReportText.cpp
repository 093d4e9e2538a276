#include <algorithm>

#include <QVector>

#include "DriverTables.h"
#include "ScriptReport.h"

namespace {

using Rows = QVector<QStringList>;

/// A text with its control characters as scripts write them, so that it stays on its line.
QString OneLine(const QString& text) {
    QString line;
    for (const QChar c : text) {
        if (c == QLatin1Char('\n'))
            line += QStringLiteral("\\n");
        else if (c == QLatin1Char('\r'))
            line += QStringLiteral("\\r");
        else if (c == QLatin1Char('\t'))
            line += QStringLiteral("\\t");
        else if (c.category() == QChar::Other_Control)
            line += QStringLiteral("\\x%1").arg(uint(c.unicode()), 2, 16, QLatin1Char('0'));
        else
            line += c;
    }
    return line;
}

/// Aligned columns, two blanks apart, without blanks at a line's end.
QString Table(const QString& heading, Rows rows) {
    if (rows.isEmpty())
        return QString();
    for (QStringList& row : rows)
        std::transform(row.begin(), row.end(), row.begin(), &OneLine);
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

/// "Integer" for "IntegerData".
QString ShortType(const QString& type) {
    const DataKind* kind = FindDataKind(type);
    return kind != nullptr ? QLatin1String(kind->infoName) : type;
}

/// The items of an enumeration, of a long one the first and how many there are.
QString ItemsText(const QStringList& items) {
    constexpr int kMost = 20;
    const QString text = QStringList(items.mid(0, kMost)).join(QLatin1Char('|'));
    return items.size() <= kMost ? text : text + QStringLiteral("|... (%1 items)").arg(items.size());
}

QString Details(const ScriptProperties& properties, const QStringList& items) {
    QStringList parts;
    for (const auto& property : properties)
        parts.append(property.first + QLatin1Char('=') + property.second);
    if (!items.isEmpty())
        parts.append(ItemsText(items));
    return parts.join(QStringLiteral(", "));
}

Rows InfoRows(const ScriptReport& report) {
    Rows rows{{QStringLiteral("title"), report.info.title}};
    const auto add = [&](const QString& name, const QString& text) {
        if (!text.isEmpty())
            rows.append({name, text});
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
        rows.append({variable.name, ShortType(variable.type), variable.value,
                     Details(variable.properties, variable.enumItems)});
    return rows;
}

Rows SettingRows(const ScriptSettings& settings) {
    Rows rows;
    for (const MScriptSetting& setting : settings)
        rows.append({setting.name, ShortType(setting.type), QLatin1String(WidgetName(setting.widget)), setting.value,
                     Details(setting.properties, setting.items)});
    return rows;
}

/// "FILE:LINE: note: sentence [code]".
QString NoteLines(const QList<ScriptNote>& notes, const QString& file) {
    QString text = notes.isEmpty() ? QString() : QStringLiteral("\nNotes\n");
    for (const ScriptNote& note : notes) {
        const QString& in = note.file.isEmpty() ? file : note.file;
        const QString place = note.line > 0 ? QStringLiteral("%1:%2").arg(in).arg(note.line) : in;
        text += place + QStringLiteral(": note: ") + OneLine(note.text) + QStringLiteral(" [") + note.Code() +
                QStringLiteral("]\n");
    }
    return text;
}

} // namespace

QString ToText(const ScriptReport& report, const QString& file) {
    const ScanResult& published = report.published;
    QString text = Table(QStringLiteral("Info"), InfoRows(report)) +
                   Table(QStringLiteral("Commands"), CommandRows(published.functions)) +
                   Table(QStringLiteral("Variables"), VariableRows(published.variables)) +
                   Table(QStringLiteral("Settings"), SettingRows(published.settings));
    if (published.functions.empty() && published.variables.empty() && published.settings.empty())
        text += QStringLiteral(
            "\nNothing is published: a script publishes the own members of the object that it ends with,\n"
            "as in ({ Fade: function (level) { } }). What it only declares is not published.\n");
    return text + NoteLines(report.notes, file);
}
