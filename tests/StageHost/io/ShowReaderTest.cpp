#include "ShowReader.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "ShowWriter.h"
#include "TextFile.h"

using namespace stagehost;

namespace {

QString CasesFolder() {
    return QStringLiteral(STAGEHOST_TESTS "/io/cases");
}

QString WrittenFile(const QTemporaryDir& folder, const char* name, const QByteArray& text) {
    QFile file(folder.filePath(QLatin1String(name)));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text);
    return file.fileName();
}

std::optional<Show> ReadFile(ShowReader& reader, const QString& file) {
    QString problem;
    const auto text = ReadTextBytes(file, &problem);
    EXPECT_TRUE(text.has_value()) << problem.toStdString();
    return reader.Read(text.value_or(QByteArray()), file);
}

constexpr const char* kFullShow = R"json({
    "name": "full",
    "host": { "name": "hostq", "version": "7.0", "userMode": 1 },
    "folders": { "scripts": "lib" },
    "resources": [
        { "id": 1, "name": "port", "serial": { "port": "/dev/ttyS0", "baudRate": 19200, "parity": "odd", "stopBits": 2 } },
        { "id": 2, "name": "lamp light", "dmxOut": { "universe": 3, "to": "multicast", "interface": "eth0", "priority": 150,
                                                "source": "desk", "rate": 30, "continuous": true } },
        { "id": 3, "name": "console", "dmxIn": { "protocol": "artnet", "universe": 17, "at": "10.0.0.5", "port": 7000 } },
        { "id": 9, "name": "doors", "channels": { "digitalIn": ["stage", { "name": "foyer", "value": 1 }],
                                                  "analogOut": [{ "name": "fan", "value": -5, "min": -10, "max": 10 }] } },
        { "id": 10, "name": "line", "serial": { "port": { "peer": "once" } } }
    ],
    "variables": [
        { "name": "level", "type": "Integer", "value": 5, "min": 0, "max": 10 },
        { "name": "gain", "type": "Real", "value": 0.1, "precision": 2 },
        { "name": "note", "value": "text", "maxLength": 20 },
        { "name": "time", "type": "Time", "value": "00:00:01/00", "timeCodeType": 1 },
        { "name": "mode", "type": "Enum", "items": ["a", "b"], "value": "b" }
    ],
    "peers": [{ "name": "fake desk", "run": ["python3", "peer.py", 4001] },
              { "name": "fake", "script": "desk.js", "options": { "warm": 3 }, "seed": 7 },
              { "name": "once", "replay": "desk.js" },
              { "name": "twice", "replay": "desk.js", "fast": true, "ordered": true }],
    "devices": [
        { "name": "desk", "script": "desk.js", "setup": "<setup/>",
          "settings": { "port": 9000, "host": "x", "loud": true, "rate": 0.5, "away": { "peer": "fake" },
                        "backup": { "peer": "fake", "endpoint": "control", "of": "address" } } },
        { "name": "lamp", "scriptText": "({})", "requests": "neverEnd" }
    ],
    "tasks": [
        { "name": "overture", "lines": [
            { "label": "top", "set": { "level": 3 } },
            { "at": 500, "device": "lamp", "command": 2, "params": { "p": { "variable": "level" }, "q": 4 } },
            { "at": 500, "task": "overture", "action": "stop" },
            { "at": 900, "cue": "thunder" }
        ] },
        { "name": "deaf", "requests": "refused" }
    ],
    "cues": [ { "name": "thunder", "set": { "note": "boom", "desk.Error": "" } } ],
    "screens": [ { "name": "panel", "pages": ["a", "b"] }, { "name": "plain" } ],
    "groups": [ { "name": "house", "members": ["level", "desk", "desk.Status", "overture"],
                  "groups": [ { "name": "inner", "members": ["hall.door"] } ] } ],
    "objects": [ { "name": "hall", "properties": { "warm": true, "seats": 120 },
                   "objects": [ { "name": "door" } ] } ],
    "shows": [ { "name": "matinee", "cue": "thunder" } ],
    "steps": [
        { "say": "hello", "device": "desk", "command": 3,
          "params": { "a": "text", "b": 1.5, "c": true, "d": { "file": "desk.js" }, "e": { "path": "out.txt" },
                      "f": { "variable": "level" }, "g": { "variable": "desk.Status" } },
          "expect": { "result": 7 } },
        { "device": "lamp", "command": "go", "expect": { "error": "no" } },
        { "set": { "level": 7, "note": "n" } },
        { "say": "now", "task": "overture", "action": "pause" },
        { "cue": "thunder" },
        { "ramp": { "doors.fan": { "to": 9, "time": 250 } } },
        { "wait": { "variable": "level", "value": 8, "within": 50 } },
        { "peer": "fake", "do": "lie", "with": "late" },
        { "peer": "fake", "call": "set", "args": [4, "x", true], "expect": { "result": "ok" } },
        { "wait": { "peer": "once", "received": "a\r", "within": 60 } },
        { "wait": { "peer": "once", "matches": "^a" } }
    ]
})json";

} // namespace

TEST(ShowReader, ComplainsAsTheCasesSay) {
    const QDir folder(CasesFolder());
    const QStringList files = folder.entryList({QStringLiteral("*.json")});
    ASSERT_FALSE(files.isEmpty());
    for (const QString& file : files) {
        SCOPED_TRACE(file.toStdString());
        QString problem;
        const auto expected =
            ReadText(folder.filePath(file).replace(QLatin1String(".json"), QLatin1String(".expected")), &problem);
        ASSERT_TRUE(expected.has_value()) << problem.toStdString();
        ShowReader reader;
        EXPECT_FALSE(ReadFile(reader, folder.filePath(file)).has_value());
        EXPECT_EQ(reader.Complaints().join(QLatin1Char('\n')).toStdString(), expected->trimmed().toStdString());
    }
}

TEST(TextFile, SaysWhyItCannotBeRead) {
    QString problem;
    EXPECT_FALSE(ReadTextBytes(QStringLiteral("/nowhere/show.json"), &problem).has_value());
    EXPECT_EQ(problem.toStdString(), "cannot read /nowhere/show.json: No such file or directory");
    EXPECT_FALSE(ReadTextBytes(CasesFolder(), &problem).has_value());
    EXPECT_TRUE(problem.endsWith(QLatin1String("is a folder")));
}

TEST(ShowReader, ReadsEverythingThatAShowCanHold) {
    const QTemporaryDir folder;
    WrittenFile(folder, "desk.js", "({})");
    ShowReader reader;
    const auto show = ReadFile(reader, WrittenFile(folder, "show.json", kFullShow));
    ASSERT_TRUE(show.has_value()) << reader.Complaints().join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(show->name, QStringLiteral("full"));
    EXPECT_EQ(show->host.appName, "hostq");
    EXPECT_EQ(show->host.version, "7.0");
    EXPECT_EQ(show->host.userMode, 1u);
    EXPECT_EQ(show->host.folders.at(33), folder.filePath(QStringLiteral("lib")).toStdString());
    EXPECT_EQ(show->host.folders.at(20), QDir(folder.path()).absolutePath().toStdString());
    ASSERT_EQ(show->variables.size(), 5u);
    EXPECT_EQ(show->variables[1].text, "0.1");
    EXPECT_EQ(show->variables[4].items.size(), 2u);
    ASSERT_EQ(show->devices.size(), 2u);
    EXPECT_EQ(show->devices[0].setup, QStringLiteral("<setup/>"));
    ASSERT_EQ(show->steps.size(), 11u);
    EXPECT_EQ(show->steps[0].command, QStringLiteral("3"));
    ASSERT_EQ(show->steps[0].parameters.size(), 7u);
    EXPECT_EQ(show->steps[0].parameters[1].text, QStringLiteral("1.5"));
    EXPECT_EQ(show->steps[0].parameters[2].text, QStringLiteral("true"));
    EXPECT_EQ(show->steps[0].parameters[3].kind, ShowParameter::Kind::File);
    EXPECT_EQ(show->steps[0].parameters[4].kind, ShowParameter::Kind::Path);
    EXPECT_EQ(show->steps[0].parameters[5].kind, ShowParameter::Kind::Variable);
    EXPECT_EQ(show->steps[0].expectedResult, QStringLiteral("7"));
    EXPECT_EQ(show->steps[1].expectedError, QStringLiteral("no"));
}

TEST(ShowReader, ReadsTheResourcesOfAShow) {
    const QTemporaryDir folder;
    WrittenFile(folder, "desk.js", "({})");
    ShowReader reader;
    const auto show = ReadFile(reader, WrittenFile(folder, "show.json", kFullShow));
    ASSERT_TRUE(show.has_value()) << reader.Complaints().join(QLatin1Char('\n')).toStdString();
    ASSERT_EQ(show->resources.size(), 5u);
    const auto& port = std::get<SerialPlan>(show->resources[0].plan);
    EXPECT_EQ(port.port, QStringLiteral("/dev/ttyS0"));
    EXPECT_EQ(port.settings.Get(SerialSetting::BaudRate), 19200u);
    EXPECT_EQ(port.settings.Get(SerialSetting::Parity), 1u);
    EXPECT_EQ(port.settings.Get(SerialSetting::StopBits), 2u);
    EXPECT_EQ(port.settings.Get(SerialSetting::DataSize), std::nullopt);
    const auto& lamp = std::get<DmxOutPlan>(show->resources[1].plan);
    EXPECT_EQ(lamp.protocol, DmxProtocol::Sacn);
    EXPECT_EQ(lamp.universe, 3);
    EXPECT_TRUE(lamp.multicast);
    EXPECT_EQ(lamp.Target().toString(), QStringLiteral("239.255.0.3"));
    EXPECT_EQ(lamp.priority, 150);
    EXPECT_EQ(lamp.sourceName, "desk");
    EXPECT_EQ(lamp.rate, 30);
    EXPECT_TRUE(lamp.continuous);
    EXPECT_EQ(lamp.Port(), 5568);
    const auto& console = std::get<DmxInPlan>(show->resources[2].plan);
    EXPECT_EQ(console.protocol, DmxProtocol::ArtNet);
    EXPECT_EQ(console.address.toString(), QStringLiteral("10.0.0.5"));
    EXPECT_EQ(console.Port(), 7000);
    const auto& doors = std::get<ChannelsPlan>(show->resources[3].plan);
    ASSERT_EQ(doors[static_cast<std::size_t>(ChannelType::DigitalIn)].size(), 2u);
    EXPECT_EQ(doors[static_cast<std::size_t>(ChannelType::DigitalIn)][1].value, 1);
    EXPECT_EQ(doors[static_cast<std::size_t>(ChannelType::AnalogOut)][0].minimum, -10);
    ASSERT_EQ(show->steps[5].action.ramps.size(), 1u);
    EXPECT_EQ(show->steps[5].action.ramps[0].time, 250);
}

TEST(ShowReader, ReadsThePeersOfAShowAndWritesThemAgain) {
    const QTemporaryDir folder;
    WrittenFile(folder, "desk.js", "({})");
    ShowReader reader;
    const auto read = ReadFile(reader, WrittenFile(folder, "show.json", kFullShow));
    ASSERT_TRUE(read.has_value()) << reader.Complaints().join(QLatin1Char('\n')).toStdString();
    ShowReader second;
    const auto again = second.Read(WriteShow(*read), read->file);
    ASSERT_TRUE(again.has_value()) << second.Complaints().join(QLatin1Char('\n')).toStdString();
    for (const Show& show : {*read, *again}) {
        ASSERT_EQ(show.peers.size(), 4u);
        EXPECT_EQ(show.peers[0].run.size(), 3);
        EXPECT_EQ(show.peers[1].kind, ShowPeer::Kind::Script);
        EXPECT_EQ(show.peers[1].file, QStringLiteral("desk.js"));
        EXPECT_EQ(show.peers[1].options[0], (std::pair<QString, QString>(QStringLiteral("warm"), QStringLiteral("3"))));
        EXPECT_EQ(show.peers[1].seed, 7);
        EXPECT_EQ(show.peers[2].kind, ShowPeer::Kind::Replay);
        EXPECT_FALSE(show.peers[2].isFast || show.peers[2].isOrdered);
        EXPECT_TRUE(show.peers[3].isFast && show.peers[3].isOrdered);
        ASSERT_EQ(show.devices[0].peerSettings.size(), 2u);
        EXPECT_EQ(show.devices[0].peerSettings[0].second.peer, QStringLiteral("fake"));
        EXPECT_EQ(show.devices[0].peerSettings[0].second.part, std::nullopt);
        EXPECT_EQ(show.devices[0].peerSettings[1].second.endpoint, QStringLiteral("control"));
        EXPECT_EQ(show.devices[0].peerSettings[1].second.part, PeerAddress::Part::Address);
        ASSERT_EQ(show.peerPorts.size(), 1u);
        EXPECT_EQ(show.peerPorts[0].first, 4u);
        EXPECT_EQ(show.peerPorts[0].second.peer, QStringLiteral("once"));
        EXPECT_EQ(show.steps[7].deed->deed, QStringLiteral("lie"));
        EXPECT_EQ(show.steps[7].deed->with, QStringLiteral("late"));
        EXPECT_EQ(show.steps[8].deed->function, QStringLiteral("set"));
        EXPECT_EQ(show.steps[8].deed->arguments, (QJsonArray{4, QStringLiteral("x"), true}));
        EXPECT_EQ(show.steps[8].expectedResult, QStringLiteral("ok"));
        EXPECT_EQ(show.steps[9].wait->receipt->text, QStringLiteral("a\r"));
        EXPECT_FALSE(show.steps[9].wait->receipt->isPattern);
        EXPECT_EQ(show.steps[9].wait->within, 60);
        EXPECT_TRUE(show.steps[10].wait->receipt->isPattern);
    }
}

TEST(ShowReader, UniversesStayOnTheLoopbackUntilAnAddressIsNamed) {
    ShowReader reader;
    const auto show =
        reader.Read(R"({"resources":[{"id":1,"name":"o","dmxOut":{}},{"id":2,"name":"i","dmxIn":{}}]})", {});
    ASSERT_TRUE(show.has_value());
    EXPECT_TRUE(std::get<DmxOutPlan>(show->resources[0].plan).Target().isLoopback());
    EXPECT_TRUE(std::get<DmxInPlan>(show->resources[1].plan).address.isLoopback());
}

TEST(ShowReader, ReadsTheObjectsOfAShow) {
    const QTemporaryDir folder;
    WrittenFile(folder, "desk.js", "({})");
    ShowReader reader;
    const auto show = ReadFile(reader, WrittenFile(folder, "show.json", kFullShow));
    ASSERT_TRUE(show.has_value()) << reader.Complaints().join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(show->devices[0].conduct, Conduct::Normal);
    EXPECT_EQ(show->devices[1].conduct, Conduct::NeverEnds);
    const ShowSpec& objects = show->objects;
    ASSERT_EQ(objects.tasks.size(), 2u);
    EXPECT_EQ(objects.tasks[1].conduct, Conduct::Refuses);
    const auto& lines = objects.tasks[0].lines;
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0].at, 0);
    EXPECT_EQ(lines[0].label, "top");
    EXPECT_EQ(lines[0].action.sets[0].second, "3");
    EXPECT_EQ(lines[1].at, 500);
    EXPECT_EQ(lines[1].action.command, "2");
    EXPECT_TRUE(lines[1].action.parameters[0].isVariable);
    EXPECT_EQ(lines[1].action.parameters[1].text, "4");
    EXPECT_EQ(lines[2].action.taskAction, TaskAction::Stop);
    EXPECT_EQ(lines[3].action.cue, "thunder");
    EXPECT_EQ(objects.cues[0].action.sets.size(), 2u);
    EXPECT_EQ(objects.screens[0].pages, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(objects.screens[1].pages.size(), 1u) << "a screen has a page";
    EXPECT_EQ(objects.groups[0].members.size(), 4u);
    EXPECT_EQ(objects.groups[0].groups[0].members[0], "hall.door");
    EXPECT_EQ(objects.objects[0].properties[1].second, "true");
    EXPECT_EQ(objects.objects[0].objects[0].name, "door");
    EXPECT_EQ(objects.shows[0].action.cue, "thunder");
    EXPECT_EQ(show->steps[2].action.sets.size(), 2u);
    EXPECT_EQ(show->steps[3].action.taskAction, TaskAction::Pause);
    EXPECT_EQ(show->steps[4].action.cue, "thunder");
    EXPECT_EQ(show->steps[6].wait->until.value, QStringLiteral("8"));
    EXPECT_EQ(show->steps[6].wait->within, 50);
}

TEST(ShowReader, FillsAnEmptyShowWithDefaults) {
    const QTemporaryDir folder;
    ShowReader reader;
    const auto show = ReadFile(reader, WrittenFile(folder, "night.json", "{}"));
    ASSERT_TRUE(show.has_value());
    EXPECT_EQ(show->name, QStringLiteral("night"));
    EXPECT_EQ(show->host.appName, "stagehost");
    EXPECT_EQ(show->host.version, "6.7.2");
    for (const auto& named : kShowFolders)
        EXPECT_EQ(show->host.folders.count(named.number), 1u) << named.name;
}

TEST(ShowWriter, WritesWhatReadsBackAsTheSameShow) {
    const QTemporaryDir folder;
    WrittenFile(folder, "desk.js", "({})");
    ShowReader first;
    const auto show = ReadFile(first, WrittenFile(folder, "show.json", kFullShow));
    ASSERT_TRUE(show.has_value());
    const QByteArray text = WriteShow(*show);
    ShowReader second;
    const auto again = ReadFile(second, WrittenFile(folder, "again.json", text));
    ASSERT_TRUE(again.has_value()) << second.Complaints().join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(WriteShow(*again), text);
    EXPECT_EQ(again->steps.size(), show->steps.size());
    EXPECT_EQ(again->steps[6].wait->until.name, show->steps[6].wait->until.name);
    EXPECT_EQ(again->devices[1].conduct, Conduct::NeverEnds);
    EXPECT_EQ(again->objects.tasks[0].lines.size(), 4u);
    EXPECT_EQ(again->objects.tasks[0].lines[2].action.taskAction, TaskAction::Stop);
    EXPECT_EQ(again->objects.groups[0].groups[0].name, "inner");
    EXPECT_EQ(again->objects.objects[0].properties, show->objects.objects[0].properties);
    EXPECT_EQ(again->steps[0].parameters[3].kind, ShowParameter::Kind::File);
    EXPECT_EQ(again->variables[0].maximum, 10);
    EXPECT_EQ(again->devices[0].setup, show->devices[0].setup);
    EXPECT_EQ(again->devices[0].settings, show->devices[0].settings);
    EXPECT_EQ(again->devices[0].settings.size(), 4u);
    EXPECT_EQ(again->host.folders, show->host.folders);
}

TEST(ShowWriter, KeepsASetupTextAsItIs) {
    Show show = EmptyShow(QStringLiteral("/shows"));
    ShowDevice device;
    device.name = QStringLiteral("d");
    device.setup = QStringLiteral("<?xml?>\n\t<DeviceData Name=\"a&quot;b\"/>\r\n  ") + QChar(0xE4);
    show.devices.push_back(device);
    const QTemporaryDir folder;
    ShowReader reader;
    const auto again = ReadFile(reader, WrittenFile(folder, "s.json", WriteShow(show)));
    ASSERT_TRUE(again.has_value());
    EXPECT_EQ(again->devices[0].setup, device.setup);
}
