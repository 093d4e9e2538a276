#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "ShowReader.h"
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

constexpr const char* kFullShow = R"json({
    "name": "full",
    "host": { "name": "hostq", "version": "7.0", "userMode": 1 },
    "folders": { "scripts": "lib" },
    "variables": [
        { "name": "level", "type": "Integer", "value": 5, "min": 0, "max": 10 },
        { "name": "gain", "type": "Real", "value": 0.1, "precision": 2 },
        { "name": "note", "value": "text", "maxLength": 20 },
        { "name": "time", "type": "Time", "value": "00:00:01/00", "timeCodeType": 1 },
        { "name": "mode", "type": "Enum", "items": ["a", "b"], "value": "b" }
    ],
    "devices": [
        { "name": "desk", "script": "desk.js", "setup": "<setup/>" },
        { "name": "lamp", "scriptText": "({})" }
    ],
    "steps": [
        { "say": "hello", "device": "desk", "command": 3,
          "params": { "a": "text", "b": 1.5, "c": true, "d": { "file": "desk.js" }, "e": { "path": "out.txt" },
                      "f": { "variable": "level" }, "g": { "variable": "desk.Status" } },
          "expect": { "result": 7 } },
        { "device": "lamp", "command": "go", "expect": { "error": "no" } }
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
        EXPECT_FALSE(reader.ReadFile(folder.filePath(file)).has_value());
        EXPECT_EQ(reader.Complaints().join(QLatin1Char('\n')).toStdString(), expected->trimmed().toStdString());
    }
}

TEST(ShowReader, SaysWhyAFileCannotBeRead) {
    ShowReader missing;
    EXPECT_FALSE(missing.ReadFile(QStringLiteral("/nowhere/show.json")).has_value());
    EXPECT_EQ(missing.Complaints().join(QString()).toStdString(),
              "cannot read /nowhere/show.json: No such file or directory");
    ShowReader folder;
    EXPECT_FALSE(folder.ReadFile(CasesFolder()).has_value());
    EXPECT_TRUE(folder.Complaints().join(QString()).endsWith(QLatin1String("is a folder")));
}

TEST(ShowReader, ReadsEverythingThatAShowCanHold) {
    const QTemporaryDir folder;
    WrittenFile(folder, "desk.js", "({})");
    ShowReader reader;
    const auto show = reader.ReadFile(WrittenFile(folder, "show.json", kFullShow));
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
    ASSERT_EQ(show->steps.size(), 2u);
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

TEST(ShowReader, FillsAnEmptyShowWithDefaults) {
    const QTemporaryDir folder;
    ShowReader reader;
    const auto show = reader.ReadFile(WrittenFile(folder, "night.json", "{}"));
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
    const auto show = first.ReadFile(WrittenFile(folder, "show.json", kFullShow));
    ASSERT_TRUE(show.has_value());
    const QByteArray text = WriteShow(*show);
    ShowReader second;
    const auto again = second.ReadFile(WrittenFile(folder, "again.json", text));
    ASSERT_TRUE(again.has_value()) << second.Complaints().join(QLatin1Char('\n')).toStdString();
    EXPECT_EQ(WriteShow(*again), text);
    EXPECT_EQ(again->steps.size(), show->steps.size());
    EXPECT_EQ(again->steps[0].parameters[3].kind, ShowParameter::Kind::File);
    EXPECT_EQ(again->variables[0].maximum, 10);
    EXPECT_EQ(again->devices[0].setup, show->devices[0].setup);
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
    const auto again = reader.ReadFile(WrittenFile(folder, "s.json", WriteShow(show)));
    ASSERT_TRUE(again.has_value());
    EXPECT_EQ(again->devices[0].setup, device.setup);
}
