#include "ShowReader.h"

#include <algorithm>
#include <limits>

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include "BorderText.h"
#include "DataTypes.h"
#include "HardwareReader.h"
#include "NameCheck.h"
#include "NearNames.h"
#include "PeersReader.h"
#include "ShowClock.h"
#include "ShowKeys.h"
#include "StoredCommandXml.h"
#include "ValueFactory.h"

namespace stagehost {

namespace {

using Kind = ShowParameter::Kind;

constexpr int kLongestHostText = 27;

/// Line and column, from 1, of a place in a text. The column counts characters, not bytes.
QString PlaceOf(const QByteArray& text, int offset) {
    const QByteArray before = text.left(offset);
    const int lineStart = before.lastIndexOf('\n') + 1;
    const int column = QString::fromUtf8(before.mid(lineStart)).size() + 1;
    return QStringLiteral("%1:%2").arg(before.count('\n') + 1).arg(column);
}

} // namespace

std::optional<Show> ShowReader::Read(const QByteArray& text, const QString& file) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (document.isNull()) {
        m_complaints += PlaceOf(text, std::max(0, error.offset - 1)) + QStringLiteral(": ") + error.errorString();
        return std::nullopt;
    }
    m_show = EmptyShow(QFileInfo(file).absolutePath());
    m_show.file = file;
    m_show.name = QFileInfo(file).completeBaseName();
    ReadShow(JsonNode(document.isObject() ? QJsonValue(document.object()) : QJsonValue(), {}, m_complaints));
    return m_complaints.isEmpty() ? std::optional(m_show) : std::nullopt;
}

void ShowReader::ReadShow(const JsonNode& root) {
    if (!root.ExpectObject(kShowKeys))
        return;
    m_show.name = root.Member(QStringLiteral("name")).TextOr(m_show.name);
    ReadTest(root.Member(QStringLiteral("test")));
    ReadHost(root.Member(QStringLiteral("host")));
    ReadFolders(root.Member(QStringLiteral("folders")));
    PeersReader(m_show).Read(root.Member(QStringLiteral("peers")));
    const JsonNode resources = root.Member(QStringLiteral("resources"));
    HardwareReader(m_show.resources).Read(resources);
    FindOwnPorts();
    ReadPeerPorts(resources);
    root.Member(QStringLiteral("variables")).ForEach([this](const JsonNode& node) { ReadVariable(node); });
    root.Member(QStringLiteral("devices")).ForEach([this](const JsonNode& node) { ReadDevice(node); });
    root.Member(QStringLiteral("commands")).ForEach([this](const JsonNode& node) { ReadStoredCommand(node); });
    ObjectsReader objects(m_show);
    objects.Read(root);
    root.Member(QStringLiteral("steps")).ForEach([&](const JsonNode& node) { ReadStep(node, objects); });
}

/// A serial port whose name begins with a point stands in the show's folder, as the other files of a show do.
void ShowReader::FindOwnPorts() {
    for (ResourceSpec& resource : m_show.resources) {
        auto* serial = std::get_if<SerialPlan>(&resource.plan);
        if (serial != nullptr && serial->port.startsWith(QLatin1String("./")))
            serial->port = m_show.Path(serial->port);
    }
}

/// Serial ports that a peer makes; which they are is known once it runs.
void ShowReader::ReadPeerPorts(const JsonNode& resources) {
    std::size_t place = 0;
    for (const JsonNode& resource : resources.Items()) {
        const JsonNode port = resource.Member(QStringLiteral("serial")).Member(QStringLiteral("port"));
        if (port.IsObject())
            m_show.peerPorts.emplace_back(place, PeersReader(m_show).ReadAddress(port));
        ++place;
    }
}

void ShowReader::ReadHost(const JsonNode& host) {
    if (!host.ExpectObject(kHostKeys))
        return;
    const auto text = [&](const char* name, std::string& target) {
        const JsonNode node = host.Member(QLatin1String(name));
        if (node.IsMissing())
            return;
        target = node.BorderText();
        if (target.size() > kLongestHostText)
            node.Complain(QStringLiteral("at most %1 characters").arg(kLongestHostText));
    };
    text("name", m_show.host.appName);
    text("version", m_show.host.version);
    const auto userMode = host.Member(QStringLiteral("userMode")).Whole(0);
    m_show.host.userMode = static_cast<std::uint32_t>(userMode.value_or(static_cast<int>(m_show.host.userMode)));
    ReadTheme(host.Member(QStringLiteral("theme")));
}

void ShowReader::ReadTheme(const JsonNode& theme) {
    if (theme.IsMissing())
        return;
    QStringList names;
    for (const ThemeName& row : kThemeNames) {
        if (theme.PlainText() == QLatin1String(row.name)) {
            m_show.host.theme = row.theme;
            return;
        }
        names += Quoted(QLatin1String(row.name));
    }
    theme.Complain(QStringLiteral("expected one of ") + names.join(QStringLiteral(", ")));
}

void ShowReader::ReadFolders(const JsonNode& folders) {
    if (!folders.ExpectObject(kFoldersKeys))
        return;
    for (const auto& folder : kShowFolders) {
        const JsonNode node = folders.Member(QLatin1String(folder.name));
        if (!node.IsMissing())
            m_show.host.folders[folder.number] = node.Border(m_show.Path(node.Text()));
    }
}

void ShowReader::ReadVariable(const JsonNode& node) {
    if (!node.ExpectObject(kVariableKeys))
        return;
    const auto member = [&node](const char* name) { return node.Member(QLatin1String(name)); };
    ValueSpec variable;
    variable.name = member("name").BorderText();
    CheckName(member("name"), variable.name, "a variable");
    const bool taken = std::any_of(m_show.variables.begin(), m_show.variables.end(),
                                   [&](const auto& other) { return other.name == variable.name; });
    if (taken)
        member("name").Complain(QStringLiteral("another variable has this name"));
    const DataType* type = FindDataTypeOfShow(member("type").TextOr(QStringLiteral("String")).toStdString());
    if (type == nullptr)
        member("type").Complain(
            QStringLiteral("expected \"Integer\", \"Real\", \"String\", \"Time\", \"Date\", \"Enum\" or \"Private\""));
    variable.type = type == nullptr ? KXP_STRING_DATA : type->code;
    variable.minimum = member("min").Number();
    variable.maximum = member("max").Number();
    if (variable.minimum && variable.maximum && *variable.minimum > *variable.maximum)
        member("min").Complain(QStringLiteral("above \"max\""));
    variable.maxLength = member("maxLength").Whole(0).value_or(variable.maxLength);
    variable.precision = member("precision").Whole(0, 15).value_or(variable.precision);
    variable.timeCodeType = member("timeCodeType").Whole(0, 5).value_or(variable.timeCodeType);
    member("items").ForEach([&](const JsonNode& item) { variable.items.push_back(item.BorderText()); });
    variable.text = member("value").BorderScalar();
    if (!member("value").IsMissing() && !MakeValue(variable)->SetText(variable.text))
        member("value").Complain(QStringLiteral("not a value of this type"));
    m_show.variables.push_back(std::move(variable));
}

void ShowReader::ReadTest(const JsonNode& node) {
    if (node.IsMissing() || node.IsFalse())
        return;
    ShowTest& test = m_show.test.emplace();
    if (node.IsTrue() || !node.ExpectObject(kTestKeys))
        return;
    test.within = node.Member(QStringLiteral("within")).Whole(1);
    test.speed = node.Member(QStringLiteral("speed")).Whole(1, kFastest).value_or(1);
    const JsonNode clock = node.Member(QStringLiteral("clock"));
    test.clock = clock.Text();
    if (!clock.IsMissing() && ReadClock(test.clock).isNull())
        clock.Complain(QStringLiteral("not a time of day"));
}

void ShowReader::ReadDevice(const JsonNode& node) {
    if (!node.ExpectObject(kDeviceKeys))
        return;
    const auto member = [&node](const char* name) { return node.Member(QLatin1String(name)); };
    ShowDevice device{member("name").Text(),
                      member("script").Text(),
                      member("scriptText").Text(),
                      member("setup").Text(),
                      ReadConduct(node),
                      member("driver").Text(),
                      {}};
    ReadSettings(member("settings"), device);
    CheckName(member("name"), member("name").Border(device.name), "a device");
    if (m_show.FindDevice(device.name) != nullptr)
        member("name").Complain(QStringLiteral("another device has this name"));
    if (!member("script").IsMissing() && !member("scriptText").IsMissing())
        member("scriptText").Complain(QStringLiteral("the device has a \"script\" already"));
    if (!member("driver").IsMissing() && !(member("script").IsMissing() && member("scriptText").IsMissing()))
        member("driver").Complain(QStringLiteral("the device has a script already"));
    member("scriptText").Border(device.scriptText);
    member("setup").Border(device.setup);
    if (!device.scriptFile.isEmpty() && !QFileInfo(m_show.Path(device.scriptFile)).isFile())
        member("script").Complain(QStringLiteral("there is no file ") + Quoted(device.scriptFile));
    if (!device.driverFile.isEmpty() && !QFileInfo(m_show.Path(device.driverFile)).isFile())
        member("driver").Complain(QStringLiteral("there is no file ") + Quoted(device.driverFile));
    if (!(device.settings.empty() && device.peerSettings.empty()) && device.driverFile.isEmpty() &&
        device.setup.isEmpty() && device.scriptFile.isEmpty() && device.scriptText.isEmpty())
        member("settings").Complain(QStringLiteral("the device has neither a driver nor a script that has settings"));
    m_show.devices.push_back(device);
}

QString ShowReader::NoDevice(const QString& name) const {
    QStringList known;
    for (const auto& device : m_show.devices)
        known += device.name;
    return QStringLiteral("there is no device ") + Quoted(name) + NamesInstead(name, known);
}

QString ShowReader::NoVariable(const QString& name) const {
    QStringList known;
    for (const auto& variable : m_show.variables)
        known += FromBorderText(variable.name);
    return QStringLiteral("there is no variable ") + Quoted(name) + NamesInstead(name, known);
}

void ShowReader::ReadSettings(const JsonNode& node, ShowDevice& device) {
    node.ExpectObjectOfAny();
    for (const QString& name : node.MemberNames()) {
        const JsonNode value = node.Member(name);
        if (value.IsObject())
            device.peerSettings.emplace_back(name, PeersReader(m_show).ReadAddress(value));
        else
            device.settings.emplace_back(name, value.Scalar());
    }
}

void ShowReader::ReadStoredCommand(const JsonNode& node) {
    if (!node.ExpectObject(kStoredCommandKeys))
        return;
    const JsonNode name = node.Member(QStringLiteral("name"));
    const JsonNode xml = node.Member(QStringLiteral("xml"));
    CheckName(name, name.BorderText(), "a stored command");
    const bool taken = std::any_of(m_show.commands.begin(), m_show.commands.end(),
                                   [&](const auto& other) { return other.name == name.PlainText(); });
    if (taken)
        name.Complain(QStringLiteral("another stored command has this name"));
    QString problem;
    const auto stored = StoredCommandXml::Read(xml.Text(), &problem);
    if (!stored)
        xml.Complain(problem);
    else if (m_show.FindDevice(FromBorderText(stored->Device())) == nullptr)
        xml.Complain(NoDevice(FromBorderText(stored->Device())));
    xml.Border(xml.PlainText());
    m_show.commands.push_back({name.PlainText(), xml.PlainText()});
}

void ShowReader::ReadStep(const JsonNode& node, ObjectsReader& objects) {
    if (!node.ExpectObject(kStepKeys))
        return;
    const auto member = [&node](const char* name) { return node.Member(QLatin1String(name)); };
    ShowStep step;
    step.say = member("say").Text();
    const auto given = [&](const char* name) { return member(name).IsMissing() ? 0 : 1; };
    if (given("device") + given("stored") + given("set") + given("ramp") + given("task") + given("cue") +
            given("wait") + given("pause") + given("peer") !=
        1)
        node.Complain(QStringLiteral("expected one of \"device\", \"stored\", \"set\", \"ramp\", \"task\", \"cue\", "
                                     "\"wait\", \"pause\" and \"peer\""));
    else if (member("device").IsMissing())
        ReadOtherStep(node, objects, step);
    else
        ReadCommandStep(node, step);
    m_show.steps.push_back(std::move(step));
}

void ShowReader::ReadOtherStep(const JsonNode& node, ObjectsReader& objects, ShowStep& step) {
    const auto member = [&node](const char* name) { return node.Member(QLatin1String(name)); };
    const bool sends = !member("stored").IsMissing();
    const bool works = !member("peer").IsMissing();
    for (const char* name : {"command", "params", "expect"}) {
        if (!member(name).IsMissing() && !((sends || works) && QLatin1String(name) == QLatin1String("expect")))
            member(name).Complain(QStringLiteral("needs a \"device\""));
    }
    for (const char* name : {"do", "with", "call", "args"}) {
        if (!member(name).IsMissing() && !works)
            member(name).Complain(QStringLiteral("needs a \"peer\""));
    }
    if (works) {
        step.deed = PeersReader(m_show).ReadDeed(node);
        ReadExpectation(node, step);
        return;
    }
    if (sends) {
        objects.CheckStored(member("stored"));
        step.stored = member("stored").PlainText();
        ReadExpectation(node, step);
        return;
    }
    objects.ReadSets(member("set"), step.action);
    objects.ReadRamps(member("ramp"), step.action);
    objects.ReadTaskAction(node, step.action);
    objects.ReadCueName(member("cue"), step.action);
    step.pause = member("pause").Whole(1);
    ReadWait(member("wait"), objects, step);
}

/// `"until": "NAME SIGN VALUE"`, or "variable" and "value" for what has to be equal.
void ShowReader::ReadWait(const JsonNode& wait, const ObjectsReader& objects, ShowStep& step) {
    if (wait.IsMissing() || !wait.ExpectObject(kWaitKeys))
        return;
    step.wait.emplace();
    step.wait->within = wait.Member(QStringLiteral("within")).Whole(1);
    for (const char* name : {"received", "matches"}) {
        const JsonNode member = wait.Member(QLatin1String(name));
        if (!member.IsMissing() && wait.Member(QStringLiteral("peer")).IsMissing())
            member.Complain(QStringLiteral("needs a \"peer\""));
    }
    if (!wait.Member(QStringLiteral("peer")).IsMissing()) {
        step.wait->receipt = PeersReader(m_show).ReadReceipt(wait);
        return;
    }
    const JsonNode until = wait.Member(QStringLiteral("until"));
    const JsonNode variable = wait.Member(QStringLiteral("variable"));
    const JsonNode value = wait.Member(QStringLiteral("value"));
    if (!until.IsMissing() && !(variable.IsMissing() && value.IsMissing()))
        until.Complain(QStringLiteral("stands alone, without \"variable\" and \"value\""));
    if (until.IsMissing()) {
        objects.CheckVariable(variable, variable.Text());
        step.wait->until = {variable.PlainText(), Comparison::Is, value.Scalar()};
    } else {
        QString problem;
        step.wait->until = ReadCondition(until.Text(), &problem).value_or(Condition());
        until.ComplainUnlessEmpty(problem);
        if (problem.isEmpty())
            objects.CheckAwaited(until, step.wait->until.name);
    }
    (until.IsMissing() ? value : until).ComplainUnlessEmpty(objects.Values().WhyNeverHolds(step.wait->until));
}

void ShowReader::ReadCommandStep(const JsonNode& node, ShowStep& step) {
    const auto member = [&node](const char* name) { return node.Member(QLatin1String(name)); };
    step.device = member("device").Text();
    step.command = member("command").Scalar();
    if (m_show.FindDevice(step.device) == nullptr)
        member("device").Complain(NoDevice(step.device));
    if (step.command.isEmpty())
        member("command").Complain(QStringLiteral("expected the name or the id of a command"));
    const JsonNode params = member("params");
    params.ExpectObjectOfAny();
    for (const QString& name : params.MemberNames())
        ReadParameter(name, params.Member(name), step);
    ReadExpectation(node, step);
}

void ShowReader::ReadExpectation(const JsonNode& node, ShowStep& step) {
    const JsonNode expect = node.Member(QStringLiteral("expect"));
    expect.ExpectObject(kExpectKeys);
    const JsonNode result = expect.Member(QStringLiteral("result"));
    const JsonNode error = expect.Member(QStringLiteral("error"));
    if (!result.IsMissing())
        step.expectedResult = result.Scalar();
    if (!error.IsMissing())
        step.expectedError = error.Text();
}

void ShowReader::ReadParameter(const QString& name, const JsonNode& node, ShowStep& step) {
    ShowParameter parameter{name, Kind::Text, {}};
    if (node.IsObject() && !ReadReference(node, parameter))
        return;
    if (parameter.kind == Kind::Text)
        node.Border(parameter.text = node.Scalar());
    step.parameters.push_back(parameter);
}

/// A parameter that is given as {"file": ...}, {"path": ...} or {"variable": ...}.
bool ShowReader::ReadReference(const JsonNode& node, ShowParameter& parameter) {
    static const QStringList kinds{QString(), QStringLiteral("file"), QStringLiteral("path"),
                                   QStringLiteral("variable")};
    const QStringList names = node.MemberNames();
    const int kind = names.size() == 1 ? kinds.indexOf(names.first()) : -1;
    if (kind < 1) {
        node.Complain(QStringLiteral("expected one of \"file\", \"path\" and \"variable\""));
        return false;
    }
    parameter.kind = static_cast<Kind>(kind);
    parameter.text = node.Member(names.first()).Text();
    CheckParameter(node, parameter);
    return true;
}

void ShowReader::CheckParameter(const JsonNode& node, const ShowParameter& parameter) {
    if (parameter.kind == Kind::File && !QFileInfo(m_show.Path(parameter.text)).isFile())
        node.Complain(QStringLiteral("there is no file ") + Quoted(parameter.text));
    const std::string name = ToBorderText(parameter.text);
    const bool known = std::any_of(m_show.variables.begin(), m_show.variables.end(),
                                   [&](const auto& variable) { return variable.name == name; });
    if (parameter.kind == Kind::Variable && !known && !parameter.text.contains(QLatin1Char('.')))
        node.Complain(NoVariable(parameter.text));
}

} // namespace stagehost
