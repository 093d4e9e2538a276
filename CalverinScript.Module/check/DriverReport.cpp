#include "DriverReport.h"

#include <string>

#include <QFileInfo>
#include <QScriptEngine>

#include "ScriptPlace.h"

namespace {

/// All of a text is read before any of it runs, and what stands in front of it ends the run at once.
bool IsScript(const QString& text) {
    QScriptEngine engine;
    return !engine.evaluate(QStringLiteral("throw 0;") + text).isError();
}

/// Lines of a script as lines of its files.
class Places {
public:
    explicit Places(const ScriptParts& parts)
        : m_parts(parts)
        , m_script(parts.Script().toStdString()) {}

    template <typename Placed>
    void Put(Placed& placed) const {
        const KXPScriptPlace place = KXPPlaceInScript(m_script, placed.line);
        if (placed.line < 1 || place.file.empty())
            return;
        placed.line = place.line;
        placed.file = PathOf(QString::fromStdString(place.file));
    }

private:
    QString PathOf(const QString& name) const {
        for (const ScriptPart& part : m_parts.Parts()) {
            if (part.name == name)
                return part.file;
        }
        return name;
    }

    const ScriptParts& m_parts;
    const std::string m_script;
};

ScriptReport ReportOf(const ScriptParts& parts, const QString& file, std::chrono::milliseconds limit) {
    if (parts.Problem()) {
        ScriptReport report;
        report.info.title = QFileInfo(file).baseName();
        report.problem = ScriptProblem{parts.Problem()->line, parts.Problem()->text, parts.Problem()->file, {}, false};
        return report;
    }
    for (const ScriptPart& part : parts.Parts()) {
        if (parts.Parts().size() < 2 || IsScript(part.text))
            continue;
        ScriptReport report = AnalyseScript(part.text, file, limit);
        if (report.problem)
            report.problem->file = report.problem->fault.file = part.file;
        return report;
    }
    ScriptReport report = AnalyseScript(parts.Script(), file, limit);
    const Places places(parts);
    if (report.problem) {
        places.Put(*report.problem);
        places.Put(report.problem->fault);
        for (FaultFrame& call : report.problem->fault.stack)
            places.Put(call);
    }
    for (ScriptNote& note : report.notes)
        places.Put(note);
    return report;
}

} // namespace

ScriptReport AnalyseDriver(const ScriptParts& parts, const QString& file, std::chrono::milliseconds limit) {
    ScriptReport report = ReportOf(parts, file, limit);
    report.files = parts.Files();
    if (!parts.Problem())
        report.script = parts.Script();
    return report;
}
