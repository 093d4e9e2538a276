#include "StoredCommands.h"

#include <algorithm>

#include "BorderText.h"
#include "ValueFactory.h"

namespace stagehost {

namespace {

struct Value {
    QString name;
    QString text;
};

/// The parameters that a command reads, with what they are given.
std::vector<Value> ValuesOf(const StoredCommandXml& command) {
    std::vector<Value> values;
    const auto& parameters = command.Command().parameters;
    for (std::size_t number = 0; number < parameters.size(); ++number) {
        if (IsOutParameter(parameters[number]))
            continue;
        values.push_back(
            {FromBorderText(parameters[number].name), FromBorderText(MakeValue(parameters[number])->Text())});
        for (const auto& [bound, variable] : command.Bindings()) {
            if (bound == number)
                values.back().text = QStringLiteral("{%1}").arg(FromBorderText(variable));
        }
    }
    return values;
}

const Value* FindValue(const std::vector<Value>& values, const QString& name) {
    const auto found =
        std::find_if(values.begin(), values.end(), [&](const auto& value) { return value.name == name; });
    return found == values.end() ? nullptr : &*found;
}

QString Line(const char* mark, const Value& value) {
    return QStringLiteral("%1%2 = %3").arg(QLatin1String(mark), value.name, value.text);
}

} // namespace

const StoredCommandXml* CheckedCommand::InForce() const {
    if (standing == Device::Standing::Valid)
        return &stored;
    return updated ? &*updated : nullptr;
}

std::vector<CheckedCommand> CheckStoredCommands(const Show& show, const std::function<Device*(const QString&)>& find) {
    std::vector<CheckedCommand> checked;
    for (const auto& command : show.commands) {
        QString problem;
        const auto stored = StoredCommandXml::Read(command.xml, &problem);
        Device* device = stored ? find(FromBorderText(stored->Device())) : nullptr;
        if (device == nullptr)
            continue;
        CheckedCommand entry{command.name, *stored, device->Check(*stored), std::nullopt};
        if (entry.standing == Device::Standing::Changed)
            entry.updated = device->Update(*stored);
        checked.push_back(std::move(entry));
    }
    return checked;
}

QString StandingText(const CheckedCommand& command, const QString& showFile) {
    const QString device = FromBorderText(command.stored.Device());
    const QString name = FromBorderText(command.stored.Command().name);
    const QString begin = QStringLiteral("stored command \"%1\": ").arg(command.name);
    if (command.standing == Device::Standing::Valid)
        return {};
    if (command.standing == Device::Standing::Gone)
        return begin + QStringLiteral("%1 has no command \"%2\" any more").arg(device, name);
    if (!command.updated)
        return begin + QStringLiteral("\"%1\" of %2 has changed and cannot be updated").arg(name, device);
    const QStringList changes = ChangesText(command.stored, *command.updated);
    return begin + QStringLiteral("\"%1\" of %2 has changed (%3); \"stagehost update %4\" keeps it as it is sent now")
                       .arg(name, device,
                            changes.isEmpty() ? QStringLiteral("number or limits") : changes.join(QStringLiteral(", ")),
                            showFile);
}

QString ValuesText(const StoredCommandXml& command) {
    QStringList texts;
    for (const auto& value : ValuesOf(command))
        texts += Line("", value);
    return texts.join(QStringLiteral(", "));
}

QStringList ChangesText(const StoredCommandXml& before, const StoredCommandXml& after) {
    const auto old = ValuesOf(before);
    const auto now = ValuesOf(after);
    QStringList changes;
    for (const auto& value : now) {
        const Value* former = FindValue(old, value.name);
        if (former == nullptr)
            changes += Line("+ ", value);
        else if (former->text != value.text)
            changes += Line("", *former) + QStringLiteral(" -> ") + value.text;
    }
    for (const auto& value : old) {
        if (FindValue(now, value.name) == nullptr)
            changes += Line("- ", value);
    }
    return changes;
}

} // namespace stagehost
