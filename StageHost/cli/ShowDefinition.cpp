#include <QJsonArray>

#include "BorderText.h"
#include "Commands.h"
#include "DataTypes.h"
#include "ExitCodes.h"
#include "Output.h"
#include "ScriptSession.h"

namespace stagehost {

namespace {

QString TypeName(const ValueSpec& value) {
    return QLatin1String(FindDataType(value.type)->showName);
}

QString Direction(const ValueSpec& value) {
    return IsOutParameter(value) ? QStringLiteral("out") : QStringLiteral("in");
}

QJsonObject ValueJson(const ValueSpec& value) {
    QJsonObject properties;
    for (const auto& [name, text] : value.properties)
        properties.insert(FromBorderText(name), FromBorderText(text));
    QJsonArray items;
    for (const auto& item : value.items)
        items.append(FromBorderText(item));
    QJsonObject object{{QStringLiteral("name"), FromBorderText(value.name)},
                       {QStringLiteral("type"), TypeName(value)},
                       {QStringLiteral("value"), FromBorderText(value.text)},
                       {QStringLiteral("properties"), properties}};
    if (!items.isEmpty())
        object.insert(QStringLiteral("items"), items);
    return object;
}

QJsonObject CommandJson(const CommandDefinition& command) {
    QJsonArray parameters;
    for (const auto& parameter : command.parameters) {
        QJsonObject object = ValueJson(parameter);
        object.insert(QStringLiteral("id"), parameter.id);
        object.insert(QStringLiteral("direction"), Direction(parameter));
        parameters.append(object);
    }
    return {{QStringLiteral("id"), command.id},
            {QStringLiteral("name"), FromBorderText(command.name)},
            {QStringLiteral("status"), FromBorderText(command.status)},
            {QStringLiteral("parameters"), parameters}};
}

QJsonObject DeviceJson(Device& device) {
    const auto definition = device.Variables().Definition();
    QJsonArray commands;
    for (const auto& command : definition->commands)
        commands.append(CommandJson(command));
    QJsonArray variables;
    for (const auto& variable : definition->variables) {
        QJsonObject object = ValueJson(variable);
        object.insert(QStringLiteral("id"), static_cast<double>(device.Variables().Find(variable.name)->InstanceId()));
        variables.append(object);
    }
    return {{QStringLiteral("device"), FromBorderText(device.Name())},
            {QStringLiteral("commands"), commands},
            {QStringLiteral("variables"), variables}};
}

void PrintDevice(Device& device) {
    const auto definition = device.Variables().Definition();
    const auto text = [](const char* latin) { return QString::fromLatin1(latin); };
    QVector<QStringList> rows{{text("ID"), text("Command"), text("Status"), text("Parameters"), {}, {}}};
    for (const auto& command : definition->commands) {
        QStringList row{QString::number(command.id), FromBorderText(command.name), FromBorderText(command.status)};
        for (const auto& parameter : command.parameters) {
            rows.push_back(row +
                           QStringList{FromBorderText(parameter.name), Direction(parameter), TypeName(parameter)});
            row = QStringList{{}, {}, {}};
        }
        if (command.parameters.empty())
            rows.push_back(row);
    }
    PrintLine(text("Device ") + FromBorderText(device.Name()));
    Print(Table(rows, text("  ")));
    rows = {{text("ID"), text("Variable"), text("Type"), text("Items")}};
    for (const auto& variable : definition->variables) {
        QStringList items;
        for (const auto& item : variable.items)
            items += FromBorderText(item);
        rows.push_back({QString::number(device.Variables().Find(variable.name)->InstanceId()),
                        FromBorderText(variable.name), TypeName(variable), items.join(text(", "))});
    }
    PrintLine({});
    Print(Table(rows, text("  ")));
}

MaybeFailure OpenWithScripts(Session& session, const Show& show, bool withScripts) {
    if (auto failure = session.OpenWithPeers(show))
        return failure;
    if (!withScripts)
        return std::nullopt;
    auto failure = session.Start();
    for (const auto& device : session.Devices())
        device->RefreshDefinition();
    return failure;
}

} // namespace

int ShowDefinition(const Options& options) {
    Show show = ShowOfScript({});
    const bool named = !options.arguments.isEmpty();
    if (named) {
        if (auto failure = ReadShowOrScript(options.arguments.first(), show))
            return Fail(options.json, *failure);
    }
    Session session(options);
    if (auto failure = OpenWithScripts(session, show, named))
        return session.Close(Fail(options.json, *failure));
    QJsonArray devices;
    for (const auto& device : session.Devices()) {
        if (options.json)
            devices.append(DeviceJson(*device));
        else
            PrintDevice(*device);
    }
    if (options.json)
        PrintJson({{QStringLiteral("devices"), devices}});
    return session.Close(kExitOk);
}

} // namespace stagehost
