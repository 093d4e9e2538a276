#include <QRegularExpression>

#include "Commands.h"
#include "ExitCodes.h"
#include "Output.h"
#include "ScriptSession.h"

namespace stagehost {

namespace {

/// A device's failure text taken apart: "Script: Uncaught exception at line 3, ..." names a line, others do not.
struct ScriptProblem {
    explicit ScriptProblem(const QString& text)
        : message(text) {
        static const QRegularExpression form(QStringLiteral("^Script: (?:Uncaught exception at line (\\d+), )?(.*)$"),
                                             QRegularExpression::DotMatchesEverythingOption);
        const auto match = form.match(text);
        if (!match.hasMatch())
            return;
        line = match.captured(1).toInt();
        message = match.captured(2);
    }

    int line = 0; ///< 0 when the text names none
    QString message;
};

int ReportProblem(const Options& options, const QString& file, const Failure& failure) {
    const ScriptProblem problem(failure.text);
    const QString place = problem.line == 0 ? file : QStringLiteral("%1:%2").arg(file).arg(problem.line);
    if (!options.json) {
        PrintLine(place + QStringLiteral(": ") + problem.message);
        return failure.exitCode;
    }
    QJsonObject object{{QStringLiteral("file"), file},
                       {QStringLiteral("ok"), false},
                       {QStringLiteral("message"), problem.message},
                       {QStringLiteral("exitCode"), failure.exitCode}};
    if (problem.line != 0)
        object.insert(QStringLiteral("line"), problem.line);
    PrintJson(object);
    return failure.exitCode;
}

} // namespace

int CheckScript(const Options& options) {
    const QString& file = options.arguments.first();
    if (auto failure = CheckReadable(file))
        return Fail(options.json, failure->exitCode, failure->text);
    Session session(options);
    auto failure = session.Open(ShowOfScript(file));
    if (failure)
        return session.Close(Fail(options.json, failure->exitCode, failure->text));
    failure = session.Start();
    if (failure && failure->exitCode == kExitScriptFailed)
        return session.Close(ReportProblem(options, file, *failure));
    if (failure)
        return session.Close(Fail(options.json, failure->exitCode, failure->text));
    if (options.json)
        PrintJson({{QStringLiteral("file"), file}, {QStringLiteral("ok"), true}});
    else
        PrintLine(file + QStringLiteral(": ok"));
    return session.Close(kExitOk);
}

} // namespace stagehost
