#include <cstdio>
#include <fstream>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QProcess>
#include <QThread>
#include <QXmlStreamReader>

#include "StageHostProcess.h"

/// "stagehost test": what it takes for a test, and what it tells of one.

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

constexpr const char* kWell =
    R"~("devices":[{"name":"d","scriptText":"({ Ok: function () { return 'ok'; } })"}],
    "steps":[{"device":"d","command":"Execute Function With Params","params":{"Script Function Name":"Ok"},
              "expect":{"result":"ok"}}])~";
constexpr const char* kBad =
    R"~("devices":[{"name":"d","scriptText":"({ Say: function () { print('said so'); return 'no'; } })"}],
    "steps":[{"device":"d","command":"Execute Function With Params","params":{"Script Function Name":"Say"},
              "expect":{"result":"yes"}}, {"pause":1}])~";
constexpr const char* kEndless = R"("devices":[{"name":"d"}],"steps":[{"say":"for long","pause":600000}])";

class TestShows : public testing::Test {
protected:
    TestShows() { host.SetWorkingFolder(host.Folder()); }

    void Show(const char* name, const char* content, const char* test = "") {
        host.File(Text(name), QByteArray("{") + test + content + "}");
    }

    bool Says(const char* text) const { return host.Output().contains(Text(text)); }

    StageHostProcess host;
};

TEST_F(TestShows, AreThoseOfTheNameAndThoseWithTheKeyInAllFoldersBelow) {
    QDir(host.Folder()).mkpath(Text("sub/deep"));
    QDir(host.Folder()).mkpath(Text(".hidden"));
    Show("one.test.json", kWell);
    Show("sub/deep/two.json", kWell, "\"test\":true,");
    Show("sub/three.json", kWell, "\"test\":{\"within\":50000},");
    Show("sub/show.json", kBad);
    Show("sub/no.json", kBad, "\"test\":false,");
    Show(".hidden/four.test.json", kBad);
    host.File(Text("package.json"), R"({"scripts":{"test":"none of ours"}})");
    host.Run({Text("test")});
    EXPECT_EQ(host.ExitCode(), 0) << host.Output().toStdString();
    for (const char* name : {"one.test.json", "sub/deep/two.json", "sub/three.json"})
        EXPECT_TRUE(Says((std::string(name) + " (1 step").c_str())) << host.Output().toStdString();
    EXPECT_TRUE(Says("3 of 3 tests went well"));

    host.Run({Text("test"), Text("sub"), Text("one.test.json"), Text("./one.test.json")});
    EXPECT_TRUE(Says("3 of 3 tests went well")) << "each once";
    host.Run({Text("test"), Text("sub/show.json")});
    EXPECT_EQ(host.ExitCode(), 1) << "what is named is a test";
}

TEST_F(TestShows, ThatAreNotThereAreTold) {
    host.Run({Text("test")});
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_TRUE(host.Errors().contains(Text("there is no test in this folder: a test is a show named NAME.test.json")));
    host.Run({Text("test"), Text("nowhere")});
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_TRUE(host.Errors().contains(Text("nowhere: there is no such file or folder")));
    host.Run({Text("test"), Text("--jobs"), Text("0")});
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_TRUE(host.Errors().contains(Text("--jobs needs a whole number from 1 to 256")));
}

TEST_F(TestShows, ThatAreNoJsonHaveFailedUnlessTheyAreAnotherPrograms) {
    Show("one.test.json", kWell);
    host.File(Text("typo.json"), R"({"test":true,"steps":[{"pause":1},]})");
    host.File(Text("package.json"), R"({"scripts":{"test":"none of ours"},})");
    host.Run({Text("test")});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(Says("typo.json")) << host.Output().toStdString();
    EXPECT_TRUE(Says("1 of 2 tests went well")) << host.Output().toStdString();
}

TEST_F(TestShows, WithNamesThatAreNoTextAreTold) {
    Show("one.test.json", kWell);
    const std::string name = host.Folder().toStdString() + "/caf\xE9.test.json";
    std::ofstream(name) << "{}";
    host.Run({Text("test")});
    EXPECT_EQ(host.ExitCode(), 2);
    EXPECT_TRUE(host.Errors().contains(Text(".test.json: this name is no text in the encoding of this computer")))
        << host.Errors().toStdString();
    std::remove(name.c_str());
}

TEST_F(TestShows, ThatFailTellWhatTheirRunSaidAndTheLastOfTheLog) {
    Show("a.test.json", kWell);
    Show("b.test.json", kBad);
    host.Run({Text("test")});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(Says("ok      a.test.json (1 step"));
    EXPECT_TRUE(Says("failed  b.test.json ("));
    EXPECT_TRUE(Says("        step 1 (Execute Function With Params (Say)): expected the result \"yes\", not \"no\"\n"))
        << host.Output().toStdString();
    EXPECT_TRUE(Says("NORMAL   said so")) << "the trace";
    EXPECT_TRUE(Says("the last lines of the log:\n"));
    EXPECT_TRUE(Says("[d] ExecuteScriptFunctionWithParams [executed]: Say")) << host.Output().toStdString();
    EXPECT_TRUE(Says("1 of 2 tests went well"));
}

TEST_F(TestShows, ThatFailTellTheLastOfTheTrafficInEachForm) {
    host.File(Text("fake.js"), "var d = Counterpart.tcp();\n"
                               "d.onOpen = function (c) { c.say('hello'); };");
    host.File(Text("driver.js"), R"js(({
        Setup: { port: 1 }, Device: { Heard: "" },
        _mStart: function () {
            var device = this.Device, client = QCalverin.CreateSocket();
            client.on("data", function (bytes) { device.Heard = "something"; });
            client.connect(Number(this.Setup.port), "127.0.0.1", function () {});
        }
    }))js");
    Show("b.test.json", R"("peers":[{"name":"fake","script":"fake.js"}],
        "devices":[{"name":"d","driver":"driver.js","settings":{"port":{"peer":"fake"}}}],
        "steps":[{"wait":{"until":"d.Heard = something","within":30000}},
                 {"wait":{"until":"d.Heard = more","within":10}}])");
    host.Run({Text("test")});
    EXPECT_TRUE(Says("        the last lines of the traffic:\n          peer fake: said \"hello\"\n"))
        << host.Output().toStdString();
    host.Run({Text("test"), Text("--tap"), Text("--junit"), Text("tests.xml")});
    EXPECT_TRUE(Says("  traffic:\n    - \"peer fake: said \\\"hello\\\"\"\n")) << host.Output().toStdString();
    QFile file(host.Folder() + Text("/tests.xml"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray xml = file.readAll();
    EXPECT_TRUE(xml.contains("the last lines of the traffic:\n  peer fake: said &quot;hello&quot;")) << xml.constData();
    host.Run({Text("test"), Text("--json")});
    EXPECT_EQ(host.Json().value(Text("tests")).toArray().first()[Text("traffic")].toArray(),
              QJsonArray{Text("peer fake: said \"hello\"")})
        << host.Output().toStdString();
}

TEST_F(TestShows, ThatCannotBeReadHaveFailed) {
    host.File(Text("a.test.json"), R"({"devices": 3})");
    host.Run({Text("test")});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(Says("a.test.json: devices: expected a list")) << host.Output().toStdString();
}

TEST_F(TestShows, HaveATimeLimitOfTheirOwnAndOneOfTheUser) {
    Show("slow.test.json", kEndless, "\"test\":{\"within\":1500},");
    host.Run({Text("test")});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(Says("        has not come to its end within 1500 ms\n")) << host.Output().toStdString();
    EXPECT_TRUE(Says("step 1 (for long): interrupted in a pause")) << host.Output().toStdString();
    host.Run({Text("test"), Text("--within"), Text("1200")});
    EXPECT_TRUE(Says("within 1200 ms")) << host.Output().toStdString();
}

TEST_F(TestShows, RunWithASpeedOfTheirOwnOrOfTheUser) {
    Show("hour.test.json", R"("devices":[{"name":"d"}],"steps":[{"pause":3600000}])",
         "\"test\":{\"speed\":3600,\"clock\":\"08:00\"},");
    host.Run({Text("test"), Text("--json")});
    EXPECT_EQ(host.ExitCode(), 0) << host.Output().toStdString();
    const QJsonObject test = host.Json()[Text("tests")].toArray().at(0).toObject();
    EXPECT_EQ(test[Text("outcome")].toString(), Text("ok"));
    EXPECT_GE(QJsonValue(test)[Text("run")][Text("steps")][0][Text("milliseconds")].toDouble(), 3600000);
    EXPECT_LT(test[Text("milliseconds")].toDouble(), 55000);
    host.Run({Text("test"), Text("--speed"), Text("1800")});
    EXPECT_EQ(host.ExitCode(), 0) << host.Output().toStdString();
}

TEST_F(TestShows, ThatDieByASignalAreTold) {
    Show(
        "dead.test.json",
        R"("devices":[{"name":"d"}],"peers":[{"name":"p","run":["sh","-c","kill -9 $(cut -d ' ' -f 4 /proc/$PPID/stat); echo ready"]}],
        "steps":[{"pause":60000}])");
    Show("well.test.json", kWell);
    host.Run({Text("test")});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(Says("was ended by signal 9")) << host.Output().toStdString();
    EXPECT_TRUE(Says("1 of 2 tests went well"));
}

TEST_F(TestShows, EndWithTheirHostWhenTheUserWantsNoMore) {
    for (const char* name : {"a.test.json", "b.test.json", "c.test.json"})
        Show(name, kEndless, "\"test\":{\"within\":600000},");
    host.Begin({Text("test"), Text("--jobs"), Text("1")});
    while (host.Child().isEmpty()) {
    }
    const QString child = host.Child();
    host.Interrupt();
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 3) << host.Output().toStdString();
    EXPECT_TRUE(Says("0 of 3 tests went well")) << host.Output().toStdString() << host.Errors().toStdString();
    EXPECT_FALSE(QFile::exists(Text("/proc/") + child));
}

TEST_F(TestShows, ThatWereBeingPlayedWhenTheUserInterruptedHaveNotGoneWell) {
    Show("a.test.json", kEndless);
    Show("b.test.json", kWell);
    host.Begin({Text("test"), Text("--tap"), Text("--jobs"), Text("1")});
    ASSERT_TRUE(host.WaitForOutput("1..2"));
    while (host.Child().isEmpty())
        QThread::yieldCurrentThread();
    host.Interrupt();
    host.Finish();
    EXPECT_TRUE(Says("not ok 1 - a.test.json\n")) << host.Output().toStdString();
    EXPECT_TRUE(Says("  message: \"interrupted before its end\"\n")) << host.Output().toStdString();
    EXPECT_TRUE(Says("ok 2 - b.test.json # SKIP")) << host.Output().toStdString();
}

TEST_F(TestShows, ThatAreMeantAndCannotBePlayedAreTold) {
    Show("a.json", kWell, "\"test\":\"yes\",");
    Show("b.json", kWell, "\"test\":false,");
    QFile::link(Text("gone"), host.Folder() + Text("/c.test.json"));
    ASSERT_EQ(QProcess::execute(Text("mkfifo"), {host.Folder() + Text("/d.test.json")}), 0);
    host.Run({Text("test")});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(Says("a.json: test: expected")) << host.Output().toStdString();
    EXPECT_TRUE(Says("cannot read c.test.json: No such file")) << host.Output().toStdString();
    EXPECT_TRUE(Says("d.test.json is no regular file")) << host.Output().toStdString();
    EXPECT_TRUE(Says("0 of 3 tests went well")) << host.Output().toStdString();
}

TEST_F(TestShows, AreToldAsTap) {
    Show("a.test.json", kWell);
    Show("b.test.json", kBad);
    host.Run({Text("test"), Text("--tap"), Text("--jobs"), Text("1")});
    EXPECT_EQ(host.ExitCode(), 1);
    EXPECT_TRUE(host.Output().startsWith(Text("TAP version 14\n1..2\nok 1 - a.test.json\n")))
        << host.Output().toStdString();
    EXPECT_TRUE(Says("not ok 2 - b.test.json\n"));
    EXPECT_TRUE(Says("  message: \"step 1 (Execute Function With Params (Say)): expected the result"))
        << host.Output().toStdString();
}

TEST_F(TestShows, AreSuitesOfOneFileOfJUnit) {
    Show("a.test.json", kWell);
    Show("b.test.json", kBad);
    host.File(Text("c.test.json"), "{");
    host.Run({Text("test"), Text("--junit"), Text("tests.xml")});
    EXPECT_EQ(host.ExitCode(), 1);
    QFile file(host.Folder() + Text("/tests.xml"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&file);
    QStringList elements;
    while (!xml.atEnd())
        if (xml.readNext() == QXmlStreamReader::StartElement) {
            elements += xml.name().toString();
            if (xml.name() == QLatin1String("testsuites")) {
                EXPECT_EQ(xml.attributes().value(Text("tests")).toString(), Text("4"));
                EXPECT_EQ(xml.attributes().value(Text("failures")).toString(), Text("1"));
                EXPECT_EQ(xml.attributes().value(Text("errors")).toString(), Text("1"));
                EXPECT_EQ(xml.attributes().value(Text("skipped")).toString(), Text("1"));
            }
        }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    EXPECT_EQ(elements.count(Text("testsuite")), 3);
    EXPECT_EQ(elements.count(Text("testcase")), 4);
    EXPECT_EQ(elements.count(Text("system-err")), 2);
    host.File(Text("kept.txt"), "mine");
    host.Run({Text("test"), Text("--junit"), Text("kept.txt")});
    EXPECT_EQ(host.ExitCode(), 2) << "before any test is played";
}

} // namespace
