#include <algorithm>
#include <memory>

#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonArray>

#include "BorderText.h"
#include "Colors.h"
#include "CommandCheck.h"
#include "Commands.h"
#include "ExitCodes.h"
#include "Interrupt.h"
#include "JUnitFile.h"
#include "Output.h"
#include "Reloader.h"
#include "ScriptSession.h"
#include "ShowClock.h"
#include "StepPlayer.h"
#include "StepRecord.h"
#include "StepText.h"
#include "StepTicker.h"
#include "StepTraffic.h"

namespace stagehost {

namespace {

QString Count(std::size_t number, const char* noun) {
    return QStringLiteral("%1 %2%3").arg(number).arg(QLatin1String(noun), QLatin1String(number == 1 ? "" : "s"));
}

QString Milliseconds(double milliseconds) {
    return QStringLiteral("%1 ms").arg(milliseconds, 0, 'f', 1);
}

/// Shows a playing show: text as it goes, TAP as it goes, or one JSON text at the end; keeps the record for a JUnit
/// file beside that.
class ShowReport {
public:
    ShowReport(const Options& options, const Show& show)
        : m_options(options)
        , m_show(show) {
        m_record.name = show.name;
        m_record.begin = QDateTime::currentDateTime();
        m_clock.start();
        for (const auto& step : show.steps)
            m_record.steps.push_back(
                {Headline(step, nullptr), DeedOf(step), StepRecord::Standing::NotPlayed, {}, {}, 0});
        if (options.tap)
            Print(TapBegin(show.steps.size()));
    }

    /// The headings as the commands have their parameters; from here on the commands are known.
    void Begin(Session& session) {
        for (std::size_t i = 0; i < m_show.steps.size(); ++i)
            m_record.steps[i].headline = HeadlineIn(session, m_show.steps[i]);
        if (IsText())
            PrintLine(
                QStringLiteral("%1 (%2, %3)")
                    .arg(m_show.name, Count(m_show.devices.size(), "device"), Count(m_show.steps.size(), "step")));
    }

    void DeviceReady(const ShowDevice& device) const {
        const QString file = device.driverFile.isEmpty() ? device.scriptFile : device.driverFile;
        const QString script = file.isEmpty() ? QString() : QFileInfo(file).fileName();
        if (IsText())
            PrintLine(QStringLiteral("  %1 is ready%2")
                          .arg(device.name, script.isEmpty() ? QString() : QStringLiteral(", running ") + script));
    }

    /// Before a step is played: who watches sees what it waits for.
    void StepBegins(std::size_t index) {
        const StepRecord& record = m_record.steps[index];
        if (!IsText())
            return;
        PrintLine(QStringLiteral("\n") +
                  OnOutput(Ink::Heading, QStringLiteral("%1. %2").arg(index + 1).arg(record.headline)));
        if (record.does != record.headline)
            PrintLine(QStringLiteral("   ") + record.does);
    }

    /// @param traffic of a step that failed.
    void StepDone(std::size_t index, const StepOutcome& outcome, const QStringList& traffic) {
        const ShowStep& step = m_show.steps[index];
        StepRecord& record = m_record.steps[index];
        record.standing = outcome.failure ? StepRecord::Standing::Failed : StepRecord::Standing::Well;
        record.failure = outcome.failure ? outcome.failure->text : QString();
        record.traffic = traffic;
        record.result = FromBorderText(outcome.command.result);
        record.milliseconds = outcome.command.milliseconds;
        if (m_options.tap)
            return Print(TapLine(static_cast<int>(index) + 1, record));
        if (m_options.json)
            return AddStep(step, outcome, traffic);
        QStringList lines = record.result.split(QLatin1Char('\n'));
        while (!lines.isEmpty() && lines.last().isEmpty())
            lines.removeLast();
        for (const QString& line : lines)
            PrintLine(QStringLiteral("   | ") + line);
        if (!outcome.failure)
            PrintLine(QStringLiteral("   %1, %2")
                          .arg(OnOutput(Ink::Good, Verdict(step)), Milliseconds(outcome.command.milliseconds)));
        else if (m_options.keepGoing)
            PrintLine(
                QStringLiteral("   %1, %2")
                    .arg(OnOutput(Ink::Bad, QStringLiteral("failed")), Milliseconds(outcome.command.milliseconds)));
    }

    /// Where the other forms have it in the step.
    void TellTraffic(const QStringList& traffic) const {
        for (const QString& line : IsText() ? TrafficForPeople(traffic) : QStringList())
            PrintProblem(line);
    }

    const QString& HeadlineOf(std::size_t index) const { return m_record.steps[index].headline; }

    /// @param thrown what scripts have thrown beside the steps; it has been printed.
    /// @param traffic of a failure that is no step's.
    int End(const MaybeFailure& showFailure, const MaybeFailure& stepFailure, const MaybeFailure& thrown,
            const QStringList& traffic) {
        const MaybeFailure& failure = showFailure ? showFailure : (stepFailure ? stepFailure : thrown);
        const int exitCode = failure ? failure->exitCode : kExitOk;
        if (showFailure) {
            PrintProblem(OnErrors(Ink::Bad, showFailure->text));
            PrintPlace(showFailure->place);
        }
        m_record.failure = showFailure ? showFailure->text : (stepFailure || !thrown ? QString() : thrown->text);
        m_record.milliseconds = static_cast<double>(m_clock.elapsed());
        QJsonObject json{{QStringLiteral("show"), m_show.name},
                         {QStringLiteral("ok"), !failure},
                         {QStringLiteral("error"), failure ? failure->text : QString()},
                         {QStringLiteral("exitCode"), exitCode},
                         {QStringLiteral("steps"), m_steps}};
        AddPlace(json, failure ? failure->place : QStringList());
        TellTraffic(traffic);
        if (!traffic.isEmpty())
            json.insert(QStringLiteral("traffic"), QJsonArray::fromStringList(traffic));
        if (m_options.tap)
            Print(TapEnd(m_record));
        else if (m_options.json)
            PrintJson(json);
        else if (!failure)
            PrintLine(QStringLiteral("\n") + OnOutput(Ink::Good, QStringLiteral("The show is over: all %1 went well.")
                                                                     .arg(Count(m_show.steps.size(), "step"))));
        else if (m_options.keepGoing && !showFailure)
            PrintLine(QStringLiteral("\n") + OnOutput(Ink::Bad, QStringLiteral("The show is over: %1 of %2 failed.")
                                                                    .arg(FailedCount())
                                                                    .arg(Count(m_show.steps.size(), "step"))));
        return exitCode;
    }

    /// Writes the JUnit file, whole or not at all. @param unfinished stands in it until the show is over.
    MaybeFailure KeepJUnit(const QString& unfinished) {
        if (m_options.junitFile.isEmpty())
            return std::nullopt;
        ShowRecord record = m_record;
        if (!unfinished.isEmpty())
            record.failure = unfinished;
        return KeepJUnitFile(m_options.junitFile, JUnitText(record));
    }

private:
    bool IsText() const { return !m_options.json && !m_options.tap; }

    static QString DeedOf(const ShowStep& step) {
        return step.device.isEmpty() ? ActionText(step) : QStringLiteral("%1: %2").arg(step.device, step.command);
    }

    static QString HeadlineIn(Session& session, const ShowStep& step) {
        Device* device = step.device.isEmpty() ? nullptr : session.FindDevice(step.device);
        if (device == nullptr)
            return Headline(step, nullptr);
        const auto definition = device->Variables().Definition();
        return Headline(step, definition->FindCommand(ToBorderText(step.command)));
    }

    static QString Verdict(const ShowStep& step) {
        return step.expectedError ? QStringLiteral("failed as expected: ") + *step.expectedError : QStringLiteral("ok");
    }

    int FailedCount() const {
        return static_cast<int>(std::count_if(m_record.steps.begin(), m_record.steps.end(), [](const StepRecord& step) {
            return step.standing == StepRecord::Standing::Failed;
        }));
    }

    void AddStep(const ShowStep& step, const StepOutcome& outcome, const QStringList& traffic) {
        QJsonObject object = ToJson(outcome.command);
        object.insert(QStringLiteral("say"), step.say);
        if (step.device.isEmpty()) {
            object.insert(QStringLiteral("action"), ActionText(step));
        } else {
            object.insert(QStringLiteral("device"), step.device);
            object.insert(QStringLiteral("command"), step.command);
        }
        object.insert(QStringLiteral("asExpected"), !outcome.failure);
        if (outcome.failure)
            object.insert(QStringLiteral("traffic"), QJsonArray::fromStringList(traffic));
        m_steps.append(object);
    }

    const Options& m_options;
    const Show& m_show;
    ShowRecord m_record;
    QElapsedTimer m_clock;
    QJsonArray m_steps;
};

/// Opens the show and starts its devices.
MaybeFailure StartShow(Session& session, const Show& show, ShowReport& report) {
    if (auto failure = session.OpenWithPeers(show))
        return failure;
    if (auto failure = CheckCommands(session, show))
        return failure;
    report.Begin(session);
    for (const auto& device : session.Devices()) {
        if (auto failure = session.StartDevice(*device))
            return failure;
    }
    for (const auto& device : show.devices) {
        Device& made = *session.FindDevice(device.name);
        if (auto failure = session.LoadScript(made, device))
            return Failure{failure->exitCode, QStringLiteral("%1: %2").arg(device.name, failure->text), failure->place};
        report.DeviceReady(device);
    }
    return std::nullopt;
}

/// Plays the steps, to the first that fails or all of them. @return the first failure; each has been told.
MaybeFailure PlaySteps(Session& session, const Show& show, bool keepGoing, ShowReport& report) {
    StepPlayer player(session, show);
    MaybeFailure first;
    std::size_t index = 0;
    for (; index < show.steps.size() && (keepGoing || !first) && !Interrupt::HasCome(); ++index) {
        report.StepBegins(index);
        StepOutcome outcome;
        {
            const StepTicker ticker;
            outcome = player.Play(show.steps[index]);
        }
        const ShowStep* const failed = outcome.failure ? &show.steps[index] : nullptr;
        const QStringList traffic = failed == nullptr ? QStringList() : TrafficOf(show, failed, session.RunningPeers());
        report.StepDone(index, outcome, traffic);
        if (!outcome.failure)
            continue;
        Failure failure{
            outcome.failure->exitCode,
            QStringLiteral("step %1 (%2): %3").arg(index + 1).arg(report.HeadlineOf(index), outcome.failure->text),
            outcome.failure->place};
        if (!keepGoing || index + 1 == show.steps.size()) // the steps behind it need the devices
            session.TellWhereItHangs(failure);
        PrintProblem(OnErrors(Ink::Bad, failure.text));
        PrintPlace(failure.place);
        report.TellTraffic(traffic);
        first = first ? first : MaybeFailure(failure);
    }
    if (!first && index < show.steps.size()) {
        first = Failure{kExitNoAnswer, QStringLiteral("interrupted before step %1").arg(index + 1)};
        PrintProblem(OnErrors(Ink::Bad, first->text));
    }
    return first;
}

/// A show that cannot be read is told in every form that was asked for as well.
int FailUnread(const Options& options, const Failure& failure) {
    const QString name = QFileInfo(options.arguments.first()).completeBaseName();
    const ShowRecord record{name, QDateTime::currentDateTime(), 0, {}, failure.text};
    if (options.tap)
        Print(TapBegin(0) + TapEnd(record));
    if (!options.junitFile.isEmpty())
        if (const auto lost = KeepJUnitFile(options.junitFile, JUnitText(record)))
            PrintProblem(OnErrors(Ink::Bad, lost->text));
    return Fail(options.json, failure);
}

} // namespace

int RunShow(const Options& options) {
    Show show;
    if (auto failure = ReadShow(options.arguments.first(), show))
        return FailUnread(options, *failure);
    Session session(options);
    ShowReport report(options, show);
    if (auto failure = report.KeepJUnit(QStringLiteral("the show has not come to its end")))
        return Fail(options.json, *failure);
    auto showFailure = StartShow(session, show, report);
    if (showFailure)
        session.TellWhereItHangs(*showFailure);
    const auto reloader = options.reload && !showFailure ? std::make_unique<Reloader>(session, show, options) : nullptr;
    if (!showFailure)
        ShowClock::Run();
    const auto stepFailure = showFailure ? MaybeFailure() : PlaySteps(session, show, options.keepGoing, report);
    const auto thrown = session.TellThrown();
    const bool isNoStep = !stepFailure && (showFailure || thrown);
    int exitCode = report.End(showFailure, stepFailure, thrown,
                              isNoStep ? TrafficOf(show, nullptr, session.RunningPeers()) : QStringList());
    if (const auto failure = report.KeepJUnit({})) {
        PrintProblem(OnErrors(Ink::Bad, failure->text));
        exitCode = exitCode == kExitOk ? failure->exitCode : exitCode;
    }
    return session.Close(exitCode);
}

} // namespace stagehost
