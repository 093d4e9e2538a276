#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>

#include "StageHostProcess.h"

/// Settings that a show file or the command line gives, with the module beside the program.

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

constexpr const char* kDriver =
    "({ Info: { Setup: { channel: { MinValue: 1, MaxValue: 512 }, mode: { Type: 'Enum', Items: ['manual', 'show'] },\n"
    "                    loud: { Widget: 'CheckBox' } } },\n"
    "   Setup: { host: 'here', channel: 1, mode: 'manual', loud: 0, rate: 0.5 },\n"
    "   Tell: function () { var s = this.Setup; return [s.host, s.channel, s.mode, s.loud, s.rate].join(' '); } })\n";

constexpr const char* kTheSettings =
    "host (a text), channel (1 to 512), mode (manual|show), loud (true or false), rate (a number)";

class Settings : public testing::Test {
protected:
    Settings() { driver = host.File(Text("driver.js"), kDriver); }

    void GivenShow(const char* devices) {
        show = host.File(Text("show.json"), QByteArray("{ \"devices\": [") + devices + "] }\n");
    }

    /// What the settings of a device are in a run.
    QString Told(const char* device = "desk", const QStringList& more = {}) {
        host.Run(QStringList{Text("send"), show, Text(device), Text("Execute Function With Params"),
                             Text("Script Function Name=Tell")} +
                 more);
        EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
        return host.Output().section(QLatin1Char('\n'), 0, 0).mid(9);
    }

    void ThenItIsRefused(const QString& with) {
        EXPECT_EQ(host.ExitCode(), 2);
        EXPECT_TRUE(host.Errors().contains(with)) << host.Errors().toStdString();
    }

    void Run(const char* command, const QStringList& words) { host.Run(QStringList{Text(command)} + words); }

    QByteArray ShowText() const {
        QFile file(show);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    StageHostProcess host;
    QString driver;
    QString show;
};

TEST_F(Settings, OfTheShowFileReachDriversAndScriptsAlike) {
    GivenShow(R"json({ "name": "desk", "driver": "driver.js",
                   "settings": { "channel": 7, "mode": "show", "loud": true, "rate": 2.25 } },
                 { "name": "other", "script": "driver.js", "settings": { "channel": "9", "host": "there" } },
                 { "name": "text", "scriptText": "({ Setup: { a: 1 }, Tell: function () { return this.Setup.a; } })",
                   "settings": { "a": -5 } })json");
    EXPECT_EQ(Told(), Text("here 7 1 1 2.25"));
    EXPECT_EQ(Told("other"), Text("there 9 0 0 0.5"));
    EXPECT_EQ(Told("text"), Text("-5"));
}

TEST_F(Settings, OfTheCommandLineStandOverThoseOfTheShowFileAndTheseOverTheStoredSetup) {
    GivenShow(R"({ "name": "desk", "driver": "driver.js" })");
    Run("setup", {show, Text("desk"), Text("channel=2"), Text("host=stored"), Text("mode=show")});
    ASSERT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_EQ(Told(), Text("stored 2 1 0 0.5"));
    QByteArray text = ShowText();
    text.replace("\"driver.js\"", "\"driver.js\", \"settings\": { \"channel\": 3, \"host\": \"file\" }");
    host.File(Text("show.json"), text);
    EXPECT_EQ(Told(), Text("file 3 1 0 0.5"));
    EXPECT_EQ(Told("desk", {Text("--set"), Text("channel=4"), Text("--set"), Text("channel=5")}),
              Text("file 5 1 0 0.5"));
    EXPECT_EQ(ShowText(), text) << "a run writes nothing";
}

TEST_F(Settings, ThatDoNotExistOrDoNotFitAreToldTogetherAndWithAList) {
    GivenShow(
        R"({ "name": "desk", "driver": "driver.js", "settings": { "chanel": 7, "mode": "loud", "channel": 513 } })");
    for (const char* command : {"run", "watch", "variables", "definition", "setup"}) {
        Run(command, {show});
        ThenItIsRefused(
            show +
            Text(
                ": devices[0].settings.chanel: there is no setting \"chanel\"; did you mean \"channel\"? There are: ") +
            Text(kTheSettings) + Text("\n"));
        ThenItIsRefused(show + Text(": devices[0].settings.channel: takes 1 to 512, not 513\n"));
        ThenItIsRefused(show + Text(": devices[0].settings.mode: takes manual|show, not \"loud\"\n"));
    }
    GivenShow(R"({ "name": "desk", "driver": "driver.js", "settings": { "channel": [7] } })");
    Run("run", {show});
    ThenItIsRefused(Text("devices[0].settings.channel: expected text or a number"));
    GivenShow(R"({ "name": "desk", "settings": { "channel": 7 } })");
    Run("run", {show});
    ThenItIsRefused(Text("devices[0].settings: the device has neither a driver nor a script that has settings"));
}

TEST_F(Settings, OfTheCommandLineAreToldByTheWordThatIsWrong) {
    Run("exec", {Text("--set"), Text("chanel=7"), driver, Text("Tell")});
    ThenItIsRefused(Text("--set chanel=7: there is no setting \"chanel\"; did you mean \"channel\"? There are: ") +
                    Text(kTheSettings));
    Run("send", {driver, Text("script"), Text("Tell"), Text("--set"), Text("channel=0")});
    ThenItIsRefused(Text("--set channel=0: takes 1 to 512, not 0"));
    GivenShow(R"({ "name": "desk", "driver": "driver.js" }, { "name": "other", "driver": "driver.js" })");
    Run("watch", {show, Text("--set"), Text("channel=7")});
    ThenItIsRefused(
        Text("--set channel=7: the show has 2 devices; the form is DEVICE.NAME=VALUE, with one of desk, other"));
    EXPECT_EQ(Told("other", {Text("--set"), Text("other.channel=8")}), Text("here 8 0 0 0.5"));
    Run("setup", {show, Text("--set"), Text("desk.channel=7")});
    ThenItIsRefused(Text("--set is for a run"));
}

TEST_F(Settings, AreGivenToExecSendAndWatch) {
    Run("exec", {Text("--set"), Text("channel=7"), Text("--set"), Text("loud=true"), driver, Text("Tell")});
    EXPECT_EQ(host.Output(), Text("here 7 0 1 0.5\n"));
    show = driver;
    EXPECT_EQ(Told("script", {Text("--set"), Text("mode=show")}), Text("here 1 1 0 0.5"));
    host.SetInput("send script Tell\n");
    Run("watch", {driver, Text("script.Error"), Text("--set"), Text("host=a b")});
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_TRUE(host.Output().contains(Text("a b 1 0 0 0.5"))) << host.Output().toStdString();
}

TEST_F(Settings, AreShownByCheckAsTheyWouldBe) {
    Run("check", {driver, Text("--set"), Text("channel=77")});
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_TRUE(host.Output().contains(Text("77      MinValue=1, MaxValue=512"))) << host.Output().toStdString();
    Run("check", {Text("--json"), driver, Text("--set"), Text("mode=show")});
    EXPECT_EQ(host.Json()[Text("settings")].toArray().at(2).toObject()[Text("value")], QJsonValue(Text("show")));
    Run("check", {driver, Text("--set"), Text("channel=no")});
    ThenItIsRefused(Text("--set channel=no: takes 1 to 512, not \"no\""));
    Run("check", {host.File(Text("bad.js"), "({\n  a b })"), Text("--set"), Text("channel=no")});
    EXPECT_EQ(host.ExitCode(), 1) << "the script's own mistake comes first";
    EXPECT_TRUE(host.Output().contains(Text("bad.js:2"))) << host.Output().toStdString();
}

TEST_F(Settings, AreWrittenIntoTheSetupOrTheShowFilesOwnButNotIntoBoth) {
    GivenShow(
        R"({ "name": "desk", "driver": "driver.js", "settings": { "channel": 7, "loud": true, "host": "file" } })");
    Run("setup", {show});
    ASSERT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_TRUE(ShowText().contains(R"(\"channel\" Type=\"IntegerData\" Value=\"1\")")) << ShowText().toStdString();
    EXPECT_TRUE(ShowText().contains(R"("settings": { "channel": 7, "loud": true, "host": "file" })"));
    Run("setup", {show, Text("desk"), Text("channel=8"), Text("loud=false"), Text("mode=show")});
    ASSERT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_TRUE(ShowText().contains(R"(\"channel\" Type=\"IntegerData\" Value=\"1\")")) << ShowText().toStdString();
    EXPECT_TRUE(ShowText().contains(R"("settings": { "channel": 8, "loud": false, "host": "file" })"))
        << ShowText().toStdString();
    EXPECT_EQ(Told(), Text("file 8 1 0 0.5"));
    const QByteArray before = ShowText();
    Run("setup", {show});
    EXPECT_TRUE(host.Output().contains(Text("desk: setup as before"))) << host.Output().toStdString();
    EXPECT_EQ(ShowText(), before);
}

TEST_F(Settings, StandOverASetupThatIsRefusedToo) {
    GivenShow(R"({ "name": "desk", "driver": "driver.js", "setup": "nonsense", "settings": { "channel": 7 } })");
    EXPECT_EQ(Told(), Text("here 7 0 0 0.5"));
}

} // namespace
