#include "StepText.h"

#include <algorithm>

#include "BorderText.h"
#include "Output.h"

namespace stagehost {

namespace {

/// Where a parameter stands in the command, which names it or counts it from 0; behind all others when it has none of
/// that name.
std::size_t PlaceOf(const ShowParameter& parameter, const CommandDefinition& command) {
    const std::string name = ToBorderText(parameter.name);
    for (std::size_t place = 0; place < command.parameters.size(); ++place)
        if (command.parameters[place].name == name)
            return place;
    bool isNumber = false;
    const uint place = parameter.name.toUInt(&isNumber);
    return isNumber ? place : command.parameters.size();
}

QStringList ParameterTexts(const ShowStep& step, const CommandDefinition* command) {
    std::vector<ShowParameter> parameters = step.parameters;
    if (command != nullptr)
        std::stable_sort(parameters.begin(), parameters.end(), [&](const auto& left, const auto& right) {
            return PlaceOf(left, *command) < PlaceOf(right, *command);
        });
    QStringList texts;
    for (const auto& parameter : parameters)
        texts += OneLine(parameter.text);
    return texts;
}

QString DeedText(const PeerDeed& deed) {
    if (!deed.deed.isEmpty())
        return QStringLiteral("peer %1: %2 %3").arg(deed.peer, deed.deed, deed.with).trimmed();
    QStringList arguments;
    for (const QJsonValue argument : deed.arguments)
        arguments += OneLine(argument.toVariant().toString());
    return QStringLiteral("peer %1: call %2 (%3)").arg(deed.peer, deed.function, arguments.join(QStringLiteral(", ")));
}

} // namespace

QString ActionText(const ShowStep& step) {
    if (step.deed)
        return DeedText(*step.deed);
    if (step.wait && step.wait->receipt)
        return QStringLiteral("wait until peer %1 has received %2%3")
            .arg(step.wait->receipt->peer, QLatin1String(step.wait->receipt->isPattern ? "a match of " : ""),
                 OneLine(step.wait->receipt->text));
    if (!step.stored.isEmpty())
        return QStringLiteral("stored command ") + step.stored;
    if (step.pause)
        return QStringLiteral("pause of %1 ms").arg(*step.pause);
    if (step.wait && step.wait->until.comparison == Comparison::Is)
        return QStringLiteral("wait until %1 is %2").arg(step.wait->until.name, OneLine(step.wait->until.value));
    if (step.wait)
        return QStringLiteral("wait until ") + OneLine(step.wait->until.Text());
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

QString Headline(const ShowStep& step, const CommandDefinition* command) {
    if (!step.say.isEmpty())
        return step.say;
    if (step.device.isEmpty())
        return ActionText(step);
    const QStringList texts = ParameterTexts(step, command);
    return texts.isEmpty() ? step.command
                           : QStringLiteral("%1 (%2)").arg(step.command, texts.join(QStringLiteral(", ")));
}

} // namespace stagehost
