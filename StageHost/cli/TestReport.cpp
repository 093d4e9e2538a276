#include "TestReport.h"

#include <algorithm>

#include <QJsonArray>

#include "Colors.h"
#include "ExitCodes.h"
#include "JUnitFile.h"
#include "Output.h"
#include "StepRecord.h"
#include "StepTraffic.h"
#include "TestSuites.h"

namespace stagehost {

namespace {

QString SecondsText(double milliseconds) {
    return QStringLiteral("%1 s").arg(milliseconds / 1000, 0, 'f', 1);
}

QString StepsText(const QJsonObject& show) {
    const int count = show.value(QLatin1String("steps")).toArray().size();
    return QStringLiteral("%1 step%2").arg(count).arg(QLatin1String(count == 1 ? "" : "s"));
}

/// What is told of a test that failed: what its run said, and the last of its log.
QStringList Evidence(const TestOutcome& outcome) {
    QStringList lines = outcome.told.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    lines.removeAll(outcome.failure);
    lines.prepend(outcome.failure);
    if (!outcome.log.isEmpty())
        lines += QStringLiteral("the last lines of the log:");
    for (const QString& line : outcome.log)
        lines += QStringLiteral("  ") + line;
    return lines;
}

StepRecord RecordOf(const TestOutcome& outcome) {
    StepRecord record;
    record.headline = outcome.file;
    record.standing = outcome.standing == TestOutcome::Standing::Well     ? StepRecord::Standing::Well
                      : outcome.standing == TestOutcome::Standing::Failed ? StepRecord::Standing::Failed
                                                                          : StepRecord::Standing::NotPlayed;
    record.milliseconds = outcome.milliseconds;
    if (outcome.standing == TestOutcome::Standing::Failed)
        record.failure = Evidence(outcome).join(QLatin1Char('\n'));
    record.traffic = outcome.traffic;
    return record;
}

/// A test that has left no steps, as one that was not played, is one step itself.
TestSuite SuiteOf(const TestOutcome& outcome) {
    TestSuite suite{outcome.steps, {}};
    if (outcome.standing == TestOutcome::Standing::Failed)
        suite.told = (Evidence(outcome) + TrafficForPeople(outcome.traffic)).join(QLatin1Char('\n'));
    if (suite.steps.isEmpty())
        suite.steps =
            JUnitText({outcome.file, QDateTime::currentDateTime(), outcome.milliseconds, {RecordOf(outcome)}, {}});
    return suite;
}

QJsonObject ToJson(const TestOutcome& outcome) {
    constexpr const char* kStandings[] = {"not played", "ok", "failed"};
    QJsonObject json{{QStringLiteral("file"), outcome.file},
                     {QStringLiteral("outcome"), QLatin1String(kStandings[static_cast<int>(outcome.standing)])},
                     {QStringLiteral("error"), outcome.failure},
                     {QStringLiteral("milliseconds"), outcome.milliseconds},
                     {QStringLiteral("run"), outcome.show}};
    if (outcome.standing != TestOutcome::Standing::Failed)
        return json;
    json.insert(QStringLiteral("told"), outcome.told);
    json.insert(QStringLiteral("log"), QJsonArray::fromStringList(outcome.log));
    json.insert(QStringLiteral("traffic"), QJsonArray::fromStringList(outcome.traffic));
    return json;
}

} // namespace

TestReport::TestReport(const Options& options, std::size_t count)
    : m_options(options)
    , m_count(count) {
    m_clock.start();
    if (options.tap)
        Print(TapBegin(count));
}

void TestReport::Add(const TestOutcome& outcome) {
    m_outcomes.push_back(outcome);
    if (m_options.tap)
        PrintTap(outcome);
    else if (!m_options.json)
        PrintText(outcome);
}

void TestReport::PrintText(const TestOutcome& outcome) const {
    if (outcome.standing == TestOutcome::Standing::NotPlayed)
        return;
    const QString time = SecondsText(outcome.milliseconds);
    if (outcome.standing == TestOutcome::Standing::Well)
        return PrintLine(
            QStringLiteral("%1  %2 (%3, %4)")
                .arg(OnOutput(Ink::Good, QStringLiteral("ok    ")), outcome.file, StepsText(outcome.show), time));
    PrintLine(QStringLiteral("%1  %2 (%3)").arg(OnOutput(Ink::Bad, QStringLiteral("failed")), outcome.file, time));
    for (const QString& line : Evidence(outcome) + TrafficForPeople(outcome.traffic))
        PrintLine(QStringLiteral("        ") + line);
}

void TestReport::PrintTap(const TestOutcome& outcome) const {
    Print(TapLine(static_cast<int>(m_outcomes.size()), RecordOf(outcome)));
}

int TestReport::CountOf(TestOutcome::Standing standing) const {
    return static_cast<int>(std::count_if(m_outcomes.begin(), m_outcomes.end(),
                                          [&](const TestOutcome& outcome) { return outcome.standing == standing; }));
}

int TestReport::End(bool interrupted) {
    const int failed = CountOf(TestOutcome::Standing::Failed);
    int exitCode = interrupted ? kExitNoAnswer : failed > 0 ? kExitScriptFailed : kExitOk;
    if (const auto failure = KeepJUnit()) {
        PrintProblem(OnErrors(Ink::Bad, failure->text));
        exitCode = exitCode == kExitOk ? failure->exitCode : exitCode;
    }
    if (m_options.json) {
        QJsonArray tests;
        for (const TestOutcome& outcome : m_outcomes)
            tests.append(ToJson(outcome));
        PrintJson({{QStringLiteral("ok"), exitCode == kExitOk},
                   {QStringLiteral("exitCode"), exitCode},
                   {QStringLiteral("tests"), tests}});
    } else if (!m_options.tap) {
        const QString played = QStringLiteral("%1 of %2 tests went well, in %3")
                                   .arg(CountOf(TestOutcome::Standing::Well))
                                   .arg(m_count)
                                   .arg(SecondsText(static_cast<double>(m_clock.elapsed())));
        PrintLine(OnOutput(exitCode == kExitOk ? Ink::Good : Ink::Bad, played));
    }
    if (interrupted)
        PrintProblem(QStringLiteral("interrupted"));
    return exitCode;
}

MaybeFailure TestReport::KeepJUnit() const {
    if (m_options.junitFile.isEmpty())
        return std::nullopt;
    std::vector<TestSuite> suites;
    for (const TestOutcome& outcome : m_outcomes)
        suites.push_back(SuiteOf(outcome));
    return KeepJUnitFile(m_options.junitFile, JUnitOf(suites));
}

} // namespace stagehost
