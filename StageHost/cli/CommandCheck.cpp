#include "CommandCheck.h"

#include "BorderText.h"
#include "ExitCodes.h"
#include "ValueFactory.h"

namespace stagehost {

namespace {

/// Stands for a value that is known only when the command is sent.
std::shared_ptr<HostValue> NotKnownYet() {
    return MakeValue(ValueSpec{});
}

std::vector<ParameterInput> InputsOf(const ShowStep& step) {
    std::vector<ParameterInput> inputs;
    for (const auto& parameter : step.parameters) {
        const bool isText = parameter.kind == ShowParameter::Kind::Text;
        inputs.push_back({ToBorderText(parameter.name), ToBorderText(parameter.text), {}});
        inputs.back().variable = isText ? nullptr : NotKnownYet();
    }
    return inputs;
}

std::vector<ParameterInput> InputsOf(const ActionSpec& action) {
    std::vector<ParameterInput> inputs;
    for (const auto& parameter : action.parameters) {
        inputs.push_back({parameter.name, parameter.text, {}});
        inputs.back().variable = parameter.isVariable ? NotKnownYet() : nullptr;
    }
    return inputs;
}

/// Whether the commands of the device are those of its setup, which no script adds to.
bool HasDriver(const ShowDevice& device) {
    const bool hasScript = !device.scriptFile.isEmpty() || !device.scriptText.isEmpty();
    return !hasScript && (!device.driverFile.isEmpty() || !device.setup.isEmpty());
}

class CommandCheck {
public:
    CommandCheck(Session& session, const Show& show)
        : m_session(session)
        , m_show(show) {}

    MaybeFailure Run() {
        Look(m_show.steps, "steps[%1]");
        const auto& tasks = m_show.objects.tasks;
        for (std::size_t task = 0; task < tasks.size(); ++task)
            Look(tasks[task].lines, QStringLiteral("tasks[%1].lines[%2]").arg(task));
        Look(m_show.objects.cues, "cues[%1]");
        Look(m_show.objects.shows, "shows[%1]");
        return m_failure;
    }

private:
    template <typename Entries>
    void Look(const Entries& entries, const char* place) {
        Look(entries, QString::fromLatin1(place));
    }

    template <typename Entries>
    void Look(const Entries& entries, const QString& place) {
        for (std::size_t index = 0; index < entries.size() && !m_failure; ++index)
            LookAt(entries[index], place.arg(index));
    }

    void LookAt(const ShowStep& step, const QString& place) {
        if (!step.device.isEmpty())
            Compare(step.device, step.command, InputsOf(step), place);
    }

    template <typename Entry>
    void LookAt(const Entry& entry, const QString& place) {
        const ActionSpec& action = entry.action;
        if (!action.device.empty())
            Compare(FromBorderText(action.device), FromBorderText(action.command), InputsOf(action), place);
    }

    void Compare(const QString& name, const QString& command, const std::vector<ParameterInput>& inputs,
                 const QString& place) {
        const ShowDevice* described = m_show.FindDevice(name);
        Device* device = m_session.FindDevice(name);
        const bool known =
            described != nullptr && device != nullptr && HasDriver(*described) && !m_session.HasRefusedSetup(name);
        const QString problem = known ? Session::WhyNotSent(*device, command, inputs) : QString();
        if (!problem.isEmpty())
            m_failure = Failure{kExitBadUse, QStringLiteral("%1: %2: %3").arg(m_show.file, place, problem)};
    }

    Session& m_session;
    const Show& m_show;
    MaybeFailure m_failure;
};

} // namespace

MaybeFailure CheckCommands(Session& session, const Show& show) {
    return CommandCheck(session, show).Run();
}

} // namespace stagehost
