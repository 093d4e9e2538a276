#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include "StageHostProcess.h"

/// Drivers that name files of their own folder, with the module beside the program.

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

constexpr const char* kConnection = "// The connection of all our drivers.\n"
                                    "var Connection = function (name) {\n"
                                    "    this.name = name;\n"
                                    "}\n";

constexpr const char* kDriver = "// A driver\n"
                                "// @include lib/connection.js\n"
                                "({\n"
                                "    Setup: { host: 'here' },\n"
                                "    Go: function () { return new Connection(this.Setup.host).name; }\n"
                                "})\n";

class DriverOfSeveralFiles : public testing::Test {
protected:
    DriverOfSeveralFiles() {
        QDir(host.Folder()).mkdir(Text("lib"));
        host.File(Text("lib/connection.js"), kConnection);
        driver = host.File(Text("driver.js"), kDriver);
        show = host.File(Text("show.json"), R"({ "devices": [{ "name": "desk", "driver": "driver.js" },
                                                            { "name": "late", "script": "driver.js" }] })");
    }

    void Run(const QStringList& words) { host.Run(words); }

    void ThenItSays(const char* output) {
        EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
        EXPECT_TRUE(host.Output().contains(Text(output))) << host.Output().toStdString();
    }

    void ThenItFailsAt(const char* place) {
        EXPECT_EQ(host.ExitCode(), 1) << host.Output().toStdString();
        const QString all = host.Output() + host.Errors();
        EXPECT_TRUE(all.contains(host.Folder() + Text("/") + Text(place))) << all.toStdString();
    }

    StageHostProcess host;
    QString driver;
    QString show;
};

TEST_F(DriverOfSeveralFiles, RunsWhereverADriverRuns) {
    Run({Text("exec"), driver, Text("Go")});
    ThenItSays("here\n");
    Run({Text("exec"), Text("--set"), Text("host=there"), driver, Text("Go")});
    ThenItSays("there\n");
    Run({Text("send"), driver, Text("script"), Text("Go")});
    ThenItSays("Result:  here");
    Run({Text("send"), show, Text("desk"), Text("Go")});
    ThenItSays("Result:  here");
    Run({Text("send"), show, Text("late"), Text("Execute Function With Params"), Text("Script Function Name=Go")});
    ThenItSays("Result:  here");
    Run({Text("check"), driver});
    ThenItSays("Go");
}

TEST_F(DriverOfSeveralFiles, TellsAMistakeInItsFileFromEveryCommand) {
    host.File(Text("lib/connection.js"), "var a;\nvar b = ;\n");
    const QStringList commands[] = {
        {Text("check"), driver},
        {Text("exec"), driver, Text("Go")},
        {Text("send"), driver, Text("script"), Text("Go")},
        {Text("run"), show},
        {Text("watch"), show},
        {Text("setup"), show},
    };
    for (const QStringList& command : commands) {
        Run(command);
        ThenItFailsAt("lib/connection.js:2");
    }
    host.File(Text("lib/connection.js"), "// @include none.js\n");
    for (const QStringList& command : commands) {
        Run(command);
        ThenItFailsAt("lib/connection.js:1: \"lib/none.js\" is not there");
    }
}

TEST_F(DriverOfSeveralFiles, TellsWhatAFunctionThrowsInTheFileWhereThatIsAndThoseOfTheCalls) {
    host.File(Text("lib/connection.js"), "function here() {\n  return two;\n}\n");
    host.File(Text("driver.js"), "// @include lib/connection.js\n({\n  Go: function () { return here(); }\n})\n");
    const QStringList commands[] = {{Text("exec"), driver, Text("Go")},
                                    {Text("send"), driver, Text("script"), Text("Go")},
                                    {Text("send"), show, Text("desk"), Text("Go")}};
    for (const QStringList& command : commands) {
        Run(command);
        EXPECT_TRUE(host.Errors().contains(Text("lib/connection.js:2:10: ReferenceError: Can't find variable: two\n"
                                                "    | return two;\n    |        ^\n    at here (")))
            << host.Errors().toStdString();
        EXPECT_TRUE(host.Errors().contains(Text("lib/connection.js:2)\n    at Go (")));
        EXPECT_TRUE(host.Errors().contains(Text("driver.js:3)\n"))) << host.Errors().toStdString();
    }
}

TEST_F(DriverOfSeveralFiles, IsStoredAsOneScriptThatNeedsNoFiles) {
    Run({Text("setup"), show});
    ASSERT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    Run({Text("send"), show, Text("desk"), Text("Go")});
    EXPECT_EQ(host.Errors(), QString()) << "the setup holds the edition of the files";
    host.File(Text("lib/connection.js"), QByteArray(kConnection) + "var more;\n");
    Run({Text("send"), show, Text("desk"), Text("Go")});
    EXPECT_TRUE(host.Errors().contains(Text("holds another edition of driver.js"))) << host.Errors().toStdString();
    host.File(Text("show.json"), [this] {
        QFile file(show);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll().replace(R"("driver": "driver.js")", R"("requests": "normal")");
    }());
    QFile::remove(driver);
    QFile::remove(host.Folder() + Text("/lib/connection.js"));
    host.File(Text("driver.js"), "({})");
    Run({Text("send"), show, Text("desk"), Text("Go")});
    ThenItSays("Result:  here");
}

TEST_F(DriverOfSeveralFiles, IsComposedForHostsThatLoadOneFile) {
    Run({Text("compose"), driver});
    EXPECT_EQ(host.ExitCode(), 0);
    EXPECT_EQ(host.Output(),
              Text("// @part lib/connection.js\n") + Text(kConnection) + Text(";// @part driver.js\n") + Text(kDriver));
    const QString whole = host.File(Text("whole.js"), host.Output().toUtf8());
    QFile::remove(host.Folder() + Text("/lib/connection.js"));
    Run({Text("exec"), whole, Text("Go")});
    ThenItSays("here\n");
    Run({Text("compose"), Text("--json"), whole});
    EXPECT_EQ(host.Json()[Text("script")].toString().toUtf8(), [&] {
        QFile file(whole);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }());
    Run({Text("compose"), driver});
    ThenItFailsAt("driver.js:2: \"lib/connection.js\" is not there");
}

} // namespace
