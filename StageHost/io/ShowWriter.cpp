#include "ShowWriter.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "BorderText.h"
#include "DataTypes.h"
#include "HardwareWriter.h"
#include "ObjectsWriter.h"

namespace stagehost {

namespace {

using Kind = ShowParameter::Kind;

void InsertText(QJsonObject& object, const char* name, const QString& text) {
    if (!text.isEmpty())
        object.insert(QLatin1String(name), text);
}

QJsonObject WriteHost(const HostSettings& host) {
    QJsonObject object = {{QStringLiteral("name"), FromBorderText(host.appName)},
                          {QStringLiteral("version"), FromBorderText(host.version)},
                          {QStringLiteral("userMode"), static_cast<int>(host.userMode)}};
    for (const ThemeName& row : kThemeNames)
        if (row.theme == host.theme && row.theme != Theme::None)
            object.insert(QStringLiteral("theme"), QLatin1String(row.name));
    return object;
}

QJsonObject WriteFolders(const Show& show) {
    const Show defaults = EmptyShow(show.folder);
    QJsonObject folders;
    for (const auto& folder : kShowFolders) {
        const auto& path = show.host.folders.at(folder.number);
        if (path != defaults.host.folders.at(folder.number))
            folders.insert(QLatin1String(folder.name), FromBorderText(path));
    }
    return folders;
}

QJsonObject WriteVariable(const ValueSpec& variable) {
    const ValueSpec defaults;
    QJsonObject object{{QStringLiteral("name"), FromBorderText(variable.name)},
                       {QStringLiteral("type"), QLatin1String(FindDataType(variable.type)->showName)}};
    InsertText(object, "value", FromBorderText(variable.text));
    if (variable.minimum)
        object.insert(QStringLiteral("min"), *variable.minimum);
    if (variable.maximum)
        object.insert(QStringLiteral("max"), *variable.maximum);
    if (variable.maxLength != defaults.maxLength)
        object.insert(QStringLiteral("maxLength"), variable.maxLength);
    if (variable.precision != defaults.precision)
        object.insert(QStringLiteral("precision"), variable.precision);
    if (variable.timeCodeType != defaults.timeCodeType)
        object.insert(QStringLiteral("timeCodeType"), variable.timeCodeType);
    QJsonArray items;
    for (const auto& item : variable.items)
        items.append(FromBorderText(item));
    if (!items.isEmpty())
        object.insert(QStringLiteral("items"), items);
    return object;
}

QJsonObject WritePairs(const std::vector<std::pair<QString, QString>>& pairs) {
    QJsonObject object;
    for (const auto& [name, text] : pairs)
        object.insert(name, text);
    return object;
}

QJsonObject WritePeer(const ShowPeer& peer) {
    QJsonObject object{{QStringLiteral("name"), peer.name}};
    if (peer.kind == ShowPeer::Kind::Program)
        object.insert(QStringLiteral("run"), QJsonArray::fromStringList(peer.run));
    InsertText(object, peer.kind == ShowPeer::Kind::Script ? "script" : "replay", peer.file);
    if (!peer.options.empty())
        object.insert(QStringLiteral("options"), WritePairs(peer.options));
    if (peer.seed)
        object.insert(QStringLiteral("seed"), *peer.seed);
    if (peer.isFast)
        object.insert(QStringLiteral("fast"), true);
    if (peer.isOrdered)
        object.insert(QStringLiteral("ordered"), true);
    return object;
}

QJsonObject WriteAddress(const PeerAddress& address) {
    QJsonObject object{{QStringLiteral("peer"), address.peer}};
    InsertText(object, "endpoint", address.endpoint);
    for (const PeerPartName& row : kPeerParts)
        if (row.part == address.part)
            object.insert(QStringLiteral("of"), QLatin1String(row.name));
    return object;
}

QJsonArray WriteResources(const Show& show) {
    std::vector<QJsonObject> resources;
    for (const ResourceSpec& resource : show.resources)
        resources.push_back(WriteResource(resource));
    for (const auto& [place, address] : show.peerPorts) {
        QJsonObject serial = resources[place].value(QStringLiteral("serial")).toObject();
        serial.insert(QStringLiteral("port"), WriteAddress(address));
        resources[place].insert(QStringLiteral("serial"), serial);
    }
    QJsonArray list;
    for (const QJsonObject& resource : resources)
        list.append(resource);
    return list;
}

void WriteDeed(const PeerDeed& deed, QJsonObject& object) {
    object.insert(QStringLiteral("peer"), deed.peer);
    InsertText(object, "do", deed.deed);
    InsertText(object, "with", deed.with);
    InsertText(object, "call", deed.function);
    if (!deed.arguments.isEmpty())
        object.insert(QStringLiteral("args"), deed.arguments);
}

QJsonObject WriteDevice(const ShowDevice& device) {
    QJsonObject object{{QStringLiteral("name"), device.name}};
    InsertText(object, "script", device.scriptFile);
    InsertText(object, "scriptText", device.scriptText);
    InsertText(object, "driver", device.driverFile);
    InsertText(object, "setup", device.setup);
    QJsonObject settings = WritePairs(device.settings);
    for (const auto& [name, address] : device.peerSettings)
        settings.insert(name, WriteAddress(address));
    if (!settings.isEmpty())
        object.insert(QStringLiteral("settings"), settings);
    WriteConduct(device.conduct, object);
    return object;
}

QJsonObject WriteStoredCommand(const ShowStoredCommand& command) {
    return {{QStringLiteral("name"), command.name}, {QStringLiteral("xml"), command.xml}};
}

QJsonValue WriteParameter(const ShowParameter& parameter) {
    const auto as = [&](const char* kind) { return QJsonObject{{QLatin1String(kind), parameter.text}}; };
    switch (parameter.kind) {
    case Kind::File:
        return as("file");
    case Kind::Path:
        return as("path");
    case Kind::Variable:
        return as("variable");
    case Kind::Text:
        break;
    }
    return parameter.text;
}

QJsonObject WriteWait(const ShowWait& wait) {
    QJsonObject object;
    if (wait.receipt)
        object = {
            {QStringLiteral("peer"), wait.receipt->peer},
            {wait.receipt->isPattern ? QStringLiteral("matches") : QStringLiteral("received"), wait.receipt->text}};
    else if (wait.until.comparison == Comparison::Is)
        object = {{QStringLiteral("variable"), wait.until.name}, {QStringLiteral("value"), wait.until.value}};
    else
        object = {{QStringLiteral("until"), wait.until.Text()}};
    if (wait.within)
        object.insert(QStringLiteral("within"), *wait.within);
    return object;
}

QJsonObject WriteStep(const ShowStep& step) {
    QJsonObject object;
    InsertText(object, "device", step.device);
    InsertText(object, "command", step.command);
    InsertText(object, "say", step.say);
    InsertText(object, "stored", step.stored);
    WriteAction(step.action, object);
    if (step.wait)
        object.insert(QStringLiteral("wait"), WriteWait(*step.wait));
    if (step.pause)
        object.insert(QStringLiteral("pause"), *step.pause);
    if (step.deed)
        WriteDeed(*step.deed, object);
    QJsonObject parameters;
    for (const auto& parameter : step.parameters)
        parameters.insert(parameter.name, WriteParameter(parameter));
    if (!parameters.isEmpty())
        object.insert(QStringLiteral("params"), parameters);
    QJsonObject expect;
    if (step.expectedResult)
        expect.insert(QStringLiteral("result"), *step.expectedResult);
    if (step.expectedError)
        expect.insert(QStringLiteral("error"), *step.expectedError);
    if (!expect.isEmpty())
        object.insert(QStringLiteral("expect"), expect);
    return object;
}

template <typename Items, typename Write>
QJsonArray WriteList(const Items& items, Write write) {
    QJsonArray list;
    for (const auto& item : items)
        list.append(write(item));
    return list;
}

QJsonValue WriteTest(const ShowTest& test) {
    QJsonObject object;
    if (test.within)
        object.insert(QStringLiteral("within"), *test.within);
    if (test.speed != ShowTest().speed)
        object.insert(QStringLiteral("speed"), test.speed);
    InsertText(object, "clock", test.clock);
    return object.isEmpty() ? QJsonValue(true) : object;
}

} // namespace

QByteArray WriteShow(const Show& show) {
    QJsonObject root{{QStringLiteral("name"), show.name}, {QStringLiteral("host"), WriteHost(show.host)}};
    if (show.test)
        root.insert(QStringLiteral("test"), WriteTest(*show.test));
    const QJsonObject folders = WriteFolders(show);
    if (!folders.isEmpty())
        root.insert(QStringLiteral("folders"), folders);
    if (!show.resources.empty())
        root.insert(QStringLiteral("resources"), WriteResources(show));
    root.insert(QStringLiteral("variables"), WriteList(show.variables, &WriteVariable));
    if (!show.peers.empty())
        root.insert(QStringLiteral("peers"), WriteList(show.peers, &WritePeer));
    root.insert(QStringLiteral("devices"), WriteList(show.devices, &WriteDevice));
    if (!show.commands.empty())
        root.insert(QStringLiteral("commands"), WriteList(show.commands, &WriteStoredCommand));
    WriteObjects(show.objects, root);
    root.insert(QStringLiteral("steps"), WriteList(show.steps, &WriteStep));
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

} // namespace stagehost
