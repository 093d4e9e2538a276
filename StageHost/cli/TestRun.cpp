#include "TestRun.h"

#include <algorithm>

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include "ExitCodes.h"
#include "LogLine.h"
#include "MainWait.h"
#include "ShowClock.h"

namespace stagehost {

namespace {

constexpr int kLongestTest = 60000; // ms of the computer
constexpr int kGoodWill = 10000;    // ms that a run has to stop its devices when it is asked to end
constexpr int kLogLines = 20;       // that are shown of a test that failed

QString Text(const QByteArray& bytes) {
    return QString::fromUtf8(bytes);
}

QByteArray Content(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The first step that went otherwise than expected; empty when there is none.
QJsonObject FailedStep(const QJsonObject& show) {
    const QJsonArray steps = show.value(QLatin1String("steps")).toArray();
    for (const QJsonValue& step : steps)
        if (!step[QLatin1String("asExpected")].toBool())
            return step.toObject();
    return {};
}

/// Of the step that has failed, or of a show that has failed beside its steps.
QStringList LastOfTraffic(const QJsonObject& show) {
    const QJsonObject step = FailedStep(show);
    QStringList lines;
    for (const auto& line : (step.isEmpty() ? show : step).value(QLatin1String("traffic")).toArray())
        lines += line.toString();
    return lines;
}

} // namespace

TestRun::TestRun(const TestShow& test, const Options& options)
    : m_test(test)
    , m_limit(options.within.value_or(std::chrono::milliseconds(test.settings.within.value_or(kLongestTest)))) {
    QObject::connect(&m_alarm, &QTimer::timeout, &m_alarm, [this] { End(); });
    QObject::connect(&m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &m_process, [this] {
        m_milliseconds = static_cast<double>(m_clock.elapsed());
        m_alarm.stop();
        MainWait::Wake();
    });
    m_alarm.start(m_limit);
    m_clock.start();
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.start(QCoreApplication::applicationFilePath(), Words(options));
}

TestRun::~TestRun() {
    if (IsOver())
        return;
    m_process.kill();
    m_process.waitForFinished();
}

/// What the user says for all tests stands over what a show says.
QStringList TestRun::Words(const Options& options) const {
    QStringList words{QStringLiteral("run"), QStringLiteral("--json")};
    const auto add = [&](const char* option, const QString& value) {
        if (!value.isEmpty())
            words << QLatin1String("--") + QLatin1String(option) << value;
    };
    add("junit", m_folder.FilePath(QStringLiteral("steps.xml")));
    add("log-file", m_folder.FilePath(QStringLiteral("log")));
    add("module", options.module);
    add("timeout", QString::number(options.timeout.count()));
    add("link", options.linkText);
    const int speed = options.clock.speed > 1 ? options.clock.speed : m_test.settings.speed;
    add("speed", speed > 1 ? QString::number(speed) : QString());
    add("clock", options.clockText.isEmpty() ? m_test.settings.clock : options.clockText);
    if (options.keepGoing)
        words += QStringLiteral("--keep-going");
    return words << QStringLiteral("--") << m_test.file;
}

void TestRun::Interrupt() {
    if (m_isInterrupted || IsOver())
        return;
    m_isInterrupted = true;
    m_process.terminate();
    m_alarm.start(kGoodWill);
}

/// The limit has passed; once more when the run does not end even though it was asked to.
void TestRun::End() {
    if (m_isLate || m_isInterrupted)
        return m_process.kill();
    m_isLate = true;
    m_process.terminate();
    m_alarm.start(kGoodWill);
}

TestOutcome TestRun::Outcome() {
    TestOutcome outcome;
    outcome.file = m_test.file;
    outcome.milliseconds = m_milliseconds;
    outcome.show = QJsonDocument::fromJson(m_process.readAllStandardOutput()).object();
    outcome.failure = WhyNotWell(outcome.show);
    outcome.standing = outcome.failure.isEmpty() ? TestOutcome::Standing::Well : TestOutcome::Standing::Failed;
    outcome.steps = Content(m_folder.FilePath(QStringLiteral("steps.xml")));
    if (m_isInterrupted)
        return outcome; // nobody looks for a fault
    outcome.told = Text(m_process.readAllStandardError());
    if (outcome.standing != TestOutcome::Standing::Failed)
        return outcome;
    outcome.log = LastOfLog(outcome.show);
    outcome.traffic = LastOfTraffic(outcome.show);
    return outcome;
}

QString TestRun::WhyNotWell(const QJsonObject& show) const {
    if (m_process.error() == QProcess::FailedToStart)
        return QStringLiteral("cannot be started: ") + m_process.errorString();
    if (m_isInterrupted && m_process.exitCode() != kExitOk)
        return QStringLiteral("interrupted before its end");
    if (m_isLate)
        return QStringLiteral("has not come to its end within %1 ms").arg(m_limit.count());
    if (m_process.exitStatus() != QProcess::NormalExit)
        return QStringLiteral("was ended by signal %1").arg(m_process.exitCode());
    if (m_process.exitCode() == kExitOk)
        return {};
    const QString error = show.value(QLatin1String("error")).toString();
    return error.isEmpty() ? QStringLiteral("ended with %1").arg(m_process.exitCode()) : error;
}

/// Of the device whose step has failed, where one has, and else of all.
QStringList TestRun::LastOfLog(const QJsonObject& show) const {
    const QString device = FailedStep(show).value(QLatin1String("device")).toString();
    QStringList lines;
    for (const QString& line : Text(Content(m_folder.FilePath(QStringLiteral("log")))).split(QLatin1Char('\n')))
        if (!line.isEmpty() && (device.isEmpty() || ReadLogLine(line, {device}).device == device))
            lines += line;
    return lines.mid(std::max(0, lines.size() - kLogLines));
}

} // namespace stagehost
