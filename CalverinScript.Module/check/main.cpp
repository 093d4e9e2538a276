#include <cstdio>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonDocument>

#include "CheckerCodes.h"
#include "Declarations.h"
#include "DriverReport.h"
#include "FaultText.h"
#include "LimitedRun.h"
#include "ProcessDeadline.h"

namespace {

struct Request {
    bool json = false;
    bool strict = false; ///< notes count as a failure
    bool script = false; ///< the JSON has the script
    int timeoutMs = static_cast<int>(kAnalysisLimit.count());
    QStringList settings; ///< NAME=VALUE, as the setup keeps values
    QString file;
};

const QString kDeclarations = QStringLiteral("declarations");
/// What a script has beyond its time to be stopped: only one in a long computation of the engine itself needs it.
constexpr std::chrono::milliseconds kStopTime(2500);

bool Write(FILE* stream, const QString& text) {
    const QByteArray bytes = text.toUtf8();
    const auto size = static_cast<std::size_t>(bytes.size());
    return std::fwrite(bytes.constData(), 1, size, stream) == size && std::fflush(stream) == 0;
}

/// @return the exit code given, or that of bad use when nobody can have read the answer.
int Written(bool written, int exitCode) {
    if (written)
        return exitCode;
    Write(stderr, QStringLiteral("the output cannot be written\n"));
    return exitCode == KXP_CHECKER_OK ? static_cast<int>(KXP_CHECKER_BAD_USE) : exitCode;
}

/// Notes are a failure only where that was asked for.
int ExitCodeOf(const Request& request, const ScriptReport& report) {
    if (report.problem && report.problem->isLate)
        return KXP_CHECKER_NO_ANSWER;
    return report.problem || (request.strict && !report.notes.isEmpty()) ? KXP_CHECKER_SCRIPT_FAILED : KXP_CHECKER_OK;
}

QString Verdict(int exitCode, const ScriptReport& report) {
    if (exitCode == KXP_CHECKER_OK)
        return QStringLiteral("ok\n");
    return report.notes.size() == 1 ? QStringLiteral("1 note counts as a failure\n")
                                    : QStringLiteral("%1 notes count as a failure\n").arg(report.notes.size());
}

/// What is wrong, a line each; what belongs to the first is indented.
QString ProblemText(const Request& request, const ScriptProblem& problem) {
    QStringList lines = problem.fault.what.isEmpty() ? QStringList() : LinesOf(problem.fault, request.file);
    const QString file = problem.file.isEmpty() ? request.file : problem.file;
    if (lines.isEmpty() && problem.line > 0)
        lines += QStringLiteral("%1:%2: %3").arg(file).arg(problem.line).arg(problem.text);
    else if (lines.isEmpty() || problem.isLate)
        lines.prepend(file + QStringLiteral(": ") + problem.text);
    return lines.join(QStringLiteral("\n    ")) + QLatin1Char('\n');
}

/// The whole answer on standard output when it is for a program or tells of the script, on standard error otherwise.
int Answer(const Request& request, int exitCode, const ScriptReport& report) {
    if (request.json)
        return Written(Write(stdout, QString::fromUtf8(QJsonDocument(ToJson(report, request.script)).toJson())),
                       exitCode);
    if (!report.problem)
        return Written(Write(stdout, request.file + QStringLiteral(": ") + Verdict(exitCode, report) +
                                         ToText(report, request.file)),
                       exitCode);
    return Written(
        Write(exitCode == KXP_CHECKER_SCRIPT_FAILED ? stdout : stderr, ProblemText(request, *report.problem)),
        exitCode);
}

int Fail(const Request& request, int exitCode, const QString& text) {
    ScriptReport report;
    report.info.title = QFileInfo(request.file).baseName();
    report.problem = ScriptProblem{0, text, {}, {}, false};
    report.files = QStringList(request.file);
    return Answer(request, exitCode, report);
}

/// @return what is wrong with the words; empty when nothing is.
QString ReadWords(QCommandLineParser& parser, Request& request) {
    parser.setApplicationDescription(QStringLiteral("Tells what a script publishes, or what is wrong with it."));
    parser.addHelpOption();
    const QCommandLineOption json(QStringLiteral("json"), QStringLiteral("One JSON text on standard output."));
    const QCommandLineOption timeout(QStringLiteral("timeout"), QStringLiteral("How long the script may take."),
                                     QStringLiteral("MS"), QString::number(kAnalysisLimit.count()));
    const QCommandLineOption strict(QStringLiteral("strict"), QStringLiteral("Notes count as a failure."));
    const QCommandLineOption setting(QStringLiteral("setting"), QStringLiteral("Show a setting with this value."),
                                     QStringLiteral("NAME=VALUE"));
    const QCommandLineOption script(QStringLiteral("script"), QStringLiteral("The JSON has the script itself."));
    const QCommandLineOption declarations(kDeclarations,
                                          QStringLiteral("What a script sees, as a TypeScript declaration file."));
    parser.addOptions({json, strict, script, timeout, setting, declarations});
    parser.addPositionalArgument(QStringLiteral("FILE.js"), QStringLiteral("The script."));
    const bool parsed = parser.parse(QCoreApplication::arguments());
    request.json = parser.isSet(json);
    request.script = parser.isSet(script);
    request.strict = parser.isSet(strict);
    if (!parsed)
        return parser.errorText();
    request.settings = parser.values(setting);
    bool isNumber = false;
    request.timeoutMs = parser.value(timeout).toInt(&isNumber);
    if (!isNumber || request.timeoutMs <= 0)
        return QStringLiteral("--timeout asks for milliseconds above 0");
    if (parser.positionalArguments().size() != 1)
        return QStringLiteral("the form is: calverincheck [--json [--script]] [--strict] [--timeout MS] FILE.js");
    request.file = parser.positionalArguments().constFirst();
    return QString();
}

int Check(const Request& request) {
    const ScriptParts parts(request.file);
    if (parts.Problem() && parts.Problem()->line == 0)
        return Fail(request, KXP_CHECKER_BAD_USE, parts.Problem()->text);
    const std::chrono::milliseconds limit(request.timeoutMs);
    ProcessDeadline deadline(limit + kStopTime, KXP_CHECKER_NO_ANSWER, [&request] {
        Fail(request, KXP_CHECKER_NO_ANSWER, QStringLiteral("no answer within %1 ms").arg(request.timeoutMs));
    });
    ScriptReport report = AnalyseDriver(parts, request.file, limit);
    GiveSettings(report, request.settings);
    if (!deadline.Meet())
        return KXP_CHECKER_NO_ANSWER;
    return Answer(request, ExitCodeOf(request, report), report);
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    Request request;
    const QString problem = ReadWords(parser, request);
    if (parser.isSet(QStringLiteral("help"))) {
        Write(stdout, parser.helpText());
        return KXP_CHECKER_OK;
    }
    if (parser.isSet(kDeclarations))
        return Written(Write(stdout, QString::fromUtf8(ScriptDeclarations())), KXP_CHECKER_OK);
    if (!problem.isEmpty())
        return Fail(request, KXP_CHECKER_BAD_USE, problem);
    return Check(request);
}
