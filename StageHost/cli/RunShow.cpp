#include <memory>

#include <QFileInfo>
#include <QJsonArray>

#include "BorderText.h"
#include "CommandCheck.h"
#include "Commands.h"
#include "ExitCodes.h"
#include "Output.h"
#include "Reloader.h"
#include "ScriptSession.h"
#include "StepPlayer.h"

namespace stagehost {

namespace {

QString Count(std::size_t number, const char* noun) {
    return QStringLiteral("%1 %2%3").arg(number).arg(QLatin1String(noun), QLatin1String(number == 1 ? "" : "s"));
}

QString Milliseconds(double milliseconds) {
    return QStringLiteral("%1 ms").arg(milliseconds, 0, 'f', 1);
}

/// What a step does that is no command.
QString ActionText(const ShowStep& step) {
    if (!step.stored.isEmpty())
        return QStringLiteral("stored command ") + step.stored;
    if (step.wait)
        return QStringLiteral("wait until %1 is %2").arg(step.wait->variable, OneLine(step.wait->value));
    if (!step.action.task.empty())
        return QStringLiteral("%1 the task %2")
            .arg(QLatin1String(kTaskActionNames[static_cast<int>(step.action.taskAction)]),
                 FromBorderText(step.action.task));
    if (!step.action.cue.empty())
        return QStringLiteral("cue ") + FromBorderText(step.action.cue);
    QStringList sets;
    for (const auto& [name, value] : step.action.sets)
        sets += QStringLiteral("%1 = %2").arg(FromBorderText(name), OneLine(FromBorderText(value)));
    return sets.join(QStringLiteral(", "));
}

/// What a step sends, as a line of the output: the command and the parameters that say most of it.
QString Headline(const ShowStep& step) {
    if (!step.say.isEmpty())
        return step.say;
    if (step.device.isEmpty())
        return ActionText(step);
    QStringList texts;
    for (const auto& parameter : step.parameters)
        texts += OneLine(parameter.text);
    return texts.isEmpty() ? step.command
                           : QStringLiteral("%1 (%2)").arg(step.command, texts.join(QStringLiteral(", ")));
}

/// Shows a playing show: text as it goes, or one JSON text at the end.
class ShowReport {
public:
    ShowReport(const Options& options, const Show& show)
        : m_json(options.json)
        , m_show(show) {}

    void Begin() const {
        if (!m_json)
            PrintLine(
                QStringLiteral("%1 (%2, %3)")
                    .arg(m_show.name, Count(m_show.devices.size(), "device"), Count(m_show.steps.size(), "step")));
    }

    void DeviceReady(const ShowDevice& device) const {
        const QString file = device.driverFile.isEmpty() ? device.scriptFile : device.driverFile;
        const QString script = file.isEmpty() ? QString() : QFileInfo(file).fileName();
        if (!m_json)
            PrintLine(QStringLiteral("  %1 is ready%2")
                          .arg(device.name, script.isEmpty() ? QString() : QStringLiteral(", running ") + script));
    }

    void StepDone(const ShowStep& step, const StepOutcome& outcome) {
        ++m_played;
        if (m_json)
            return AddStep(step, outcome);
        PrintLine(QStringLiteral("\n%1. %2").arg(m_played).arg(Headline(step)));
        if (!step.device.isEmpty())
            PrintLine(QStringLiteral("   %1: %2").arg(step.device, step.command));
        else if (!step.say.isEmpty())
            PrintLine(QStringLiteral("   ") + ActionText(step));
        QStringList lines = FromBorderText(outcome.command.result).split(QLatin1Char('\n'));
        while (!lines.isEmpty() && lines.last().isEmpty())
            lines.removeLast();
        for (const QString& line : lines)
            PrintLine(QStringLiteral("   | ") + line);
        if (!outcome.failure)
            PrintLine(QStringLiteral("   %1, %2").arg(Verdict(step), Milliseconds(outcome.command.milliseconds)));
    }

    /// @param thrown what scripts have thrown beside the steps; it has been printed.
    int End(const MaybeFailure& stepFailure, const MaybeFailure& thrown) const {
        const MaybeFailure& failure = stepFailure ? stepFailure : thrown;
        const int exitCode = failure ? failure->exitCode : kExitOk;
        if (stepFailure) {
            PrintProblem(stepFailure->text);
            PrintPlace(stepFailure->place);
        }
        QJsonObject json{{QStringLiteral("show"), m_show.name},
                         {QStringLiteral("ok"), !failure},
                         {QStringLiteral("error"), failure ? failure->text : QString()},
                         {QStringLiteral("exitCode"), exitCode},
                         {QStringLiteral("steps"), m_steps}};
        AddPlace(json, failure ? failure->place : QStringList());
        if (m_json)
            PrintJson(json);
        else if (!failure)
            PrintLine(QStringLiteral("\nThe show is over: all %1 went well.").arg(Count(m_show.steps.size(), "step")));
        return exitCode;
    }

private:
    static QString Verdict(const ShowStep& step) {
        return step.expectedError ? QStringLiteral("failed as expected: ") + *step.expectedError : QStringLiteral("ok");
    }

    void AddStep(const ShowStep& step, const StepOutcome& outcome) {
        QJsonObject object = ToJson(outcome.command);
        object.insert(QStringLiteral("say"), step.say);
        if (step.device.isEmpty()) {
            object.insert(QStringLiteral("action"), ActionText(step));
        } else {
            object.insert(QStringLiteral("device"), step.device);
            object.insert(QStringLiteral("command"), step.command);
        }
        object.insert(QStringLiteral("asExpected"), !outcome.failure);
        m_steps.append(object);
    }

    const bool m_json;
    const Show& m_show;
    int m_played = 0;
    QJsonArray m_steps;
};

MaybeFailure Play(Session& session, const Show& show, const Options& options, ShowReport& report) {
    if (auto failure = session.Open(show))
        return failure;
    if (auto failure = CheckCommands(session, show))
        return failure;
    report.Begin();
    if (auto failure = session.StartPeers())
        return failure;
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
    const auto reloader = options.reload ? std::make_unique<Reloader>(session, show, options) : nullptr;
    StepPlayer player(session, show);
    int number = 0;
    for (const auto& step : show.steps) {
        const StepOutcome outcome = player.Play(step);
        report.StepDone(step, outcome);
        ++number;
        if (outcome.failure)
            return Failure{outcome.failure->exitCode,
                           QStringLiteral("step %1 (%2): %3").arg(number).arg(Headline(step), outcome.failure->text),
                           outcome.failure->place};
    }
    return std::nullopt;
}

} // namespace

int RunShow(const Options& options) {
    Show show;
    if (auto failure = ReadShow(options.arguments.first(), show))
        return Fail(options.json, *failure);
    Session session(options);
    ShowReport report(options, show);
    auto failure = Play(session, show, options, report);
    if (failure)
        session.TellWhereItHangs(*failure);
    const auto thrown = session.TellThrown();
    return session.Close(report.End(failure, thrown));
}

} // namespace stagehost
