#include "ScriptReport.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

QString Page() {
    QFile file(Text(DOCS "/drivers.md"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return QString::fromUtf8(file.readAll());
}

/// The first block of the page behind a text.
QString Block(const QString& page, const QString& behind, const QString& fence) {
    const int from = page.indexOf(fence + QLatin1Char('\n'), page.indexOf(behind)) + fence.size() + 1;
    return page.mid(from, page.indexOf(Text("```"), from) - from);
}

std::string Json(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

TEST(ScriptReport, OfTheDriverInTheManualIsWhatTheManualShows) {
    const QString page = Page();
    const ScriptReport report = AnalyseScript(Block(page, Text("A complete driver"), Text("```js")), Text("dimmer.js"));
    ASSERT_FALSE(report.problem) << report.problem->text.toStdString();
    EXPECT_EQ((Text("dimmer.js: ok\n") + ToText(report, Text("dimmer.js"))).toStdString(),
              Block(page, Text("tells what that publishes"), Text("```")).toStdString());
}

TEST(ScriptReport, HasTheStatedJson) {
    const ScriptReport report =
        AnalyseScript(Text("({ Info: { Title: 'T', Author: 'A', Version: 2, Description: 'D',"
                           "     Options: { RemoveDefaultCommandsAndVariables: false },"
                           "     Commands: { f: { Name: 'F', Params: { a: { Type: 'Enum', Items: ['x'] } } } },"
                           "     Variables: { v: { MinValue: 1 } }, Setup: { s: { Widget: 'Serial' } } },"
                           "   Device: { v: 5 }, Setup: { s: '' }, f: function(a) {} })"),
                      Text("/x/lamp.js"));
    EXPECT_EQ(
        Json(ToJson(report)),
        R"({"commands":[{"function":"f","id":4,"name":"F","params":[)"
        R"({"direction":"out","items":[],"name":"Result","properties":{},"type":"StringData"},)"
        R"({"direction":"in","items":["x"],"name":"a","properties":{},"type":"EnumData"}],"properties":{"Name":"F"}}],)"
        R"("error":null,"files":[],"info":{"author":"A","description":"D","title":"T","version":"2"},)"
        R"("notes":[{"code":"setting-not-read","file":"","line":1,"text":"Setup.s seems never to be read, so what the user enters changes )"
        R"(nothing: use it, or take it out","where":"Setup.s"}],"removeDefaults":false,)"
        R"("settings":[{"items":[],"name":"s","properties":{"Widget":"Serial"},"type":"StringData","value":"",)"
        R"("widget":14}],)"
        R"("variables":[{"items":[],"name":"v","properties":{"MinValue":"1"},"type":"IntegerData","value":"5"}]})");
}

TEST(ScriptReport, OfAMistakeHasItsLineAndNothingElse) {
    for (const char* script : {"\nthrow new Error('top');", "\nvar = ;"}) {
        const ScriptReport report = AnalyseScript(Text(script), Text("a.js"));
        ASSERT_TRUE(report.problem.has_value());
        EXPECT_EQ(report.problem->line, 2) << script;
        EXPECT_EQ(ToJson(report).value(Text("commands")).toArray().size(), 0);
        EXPECT_EQ(ToJson(report).value(Text("info")).toObject().value(Text("title")).toString(), Text("a"));
    }
    const ScriptReport returned = AnalyseScript(Text("new Error('soft')"), Text("a.js"));
    ASSERT_TRUE(returned.problem.has_value());
    EXPECT_EQ(returned.problem->text, Text("Error: soft"));
}

TEST(ScriptReport, OfAScriptThatEndsInThisLeavesOutWhatWasThereBefore) {
    const ScriptReport report = AnalyseScript(Text("this.f = function() {}; this"), Text("a.js"));
    ASSERT_EQ(report.published.functions.size(), 1u);
    EXPECT_EQ(report.published.functions[0].name, Text("f"));
}

/// "where: code" of each note, one in a line.
std::string NotesOf(const char* script) {
    std::string told;
    for (const ScriptNote& note : AnalyseScript(Text(script), Text("a.js")).notes)
        told += note.where.toStdString() + ": " + note.Code().toStdString() + "\n";
    return told;
}

TEST(ScriptNotes, TellWhatInInfoComesToNothing) {
    EXPECT_EQ(
        NotesOf(
            "({ Info: { Tittle: 'x', Options: { RemoveDefaults: true, RemoveDefaultCommandsAndVariables: 1 },"
            "  Variables: { Levl: {}, l: { Type: 'real', MinValue: 'low', Precision: 2, Hint: 'x' }, e: { Items: ['a'] "
            "},"
            "               m: { Type: 'Enum', Items: 'a' }, n: 5 },"
            "  Setup: { s: { Widget: 'Seriell', Hint: {}, Colour: 1 } },"
            "  Commands: { f: { Name: 'Load From Text', Hint: 'x', Params: { a: { Type: 'Int' }, c: {} } }, g: {} } },"
            "  Device: { l: 1, e: 1, m: 1, n: 1 }, Setup: { s: '' }, f: function(a) { return this.Setup.s; } })"),
        "Info.Tittle: means-nothing\n"
        "Info.Options.RemoveDefaults: means-nothing\n"
        "Info.Options.RemoveDefaultCommandsAndVariables: no-boolean\n"
        "Info.Variables.Levl: not-published\n"
        "Info.Variables.l.Type: unknown-type\n"
        "Info.Variables.l.MinValue: no-number\n"
        "Info.Variables.l.Precision: means-nothing\n"
        "Info.Variables.l.Hint: means-nothing\n"
        "Info.Variables.e.Items: items-without-enum\n"
        "Info.Variables.m.Items: no-array\n"
        "Info.Variables.n: no-object\n"
        "Info.Setup.s.Hint: no-plain-value\n"
        "Info.Setup.s.Colour: means-nothing\n"
        "Info.Setup.s.Widget: unknown-widget\n"
        "Info.Commands.f.Hint: means-nothing\n"
        "Info.Commands.f.Params.a.Type: unknown-type\n"
        "Info.Commands.f.Params.c: not-published\n"
        "Info.Commands.f.Name: built-in-name\n"
        "Info.Commands.g: not-published\n"
        "Info.Variables.m: enum-without-items\n");
}

TEST(ScriptNotes, TellOfWhatNoVariableSettingOrCommandIsMade) {
    EXPECT_EQ(NotesOf("({ Device: { b: true, n: null, f: function() {}, o: {}, Status: 1, '': 1, x: 0 / 0, ok: 1 },"
                      "   Setup: { o: {}, b: true, ok: 1 }, 'x\u0394': function() {}, _x: function() { this.Setup.ok; "
                      "}, Other: 5 "
                      "})"),
              "Device.b: no-variable\n"
              "Device.Status: default-variable\n"
              "Device.: no-variable\n"
              "Device.x: no-variable\n"
              "Setup.o: no-setting\n"
              "Setup.b: no-setting\n"
              "x\u0394: unusable-name\n");
}

TEST(ScriptNotes, AreNoneForADriverInWhichEverythingCounts) {
    EXPECT_EQ(NotesOf(Block(Page(), Text("A complete driver"), Text("```js")).toUtf8().constData()), "");
    EXPECT_EQ(NotesOf("this.f = function() {}; this"), "");
}

TEST(ScriptNotes, SurviveWhatThrowsAndWhatHoldsItself) {
    EXPECT_EQ(NotesOf("var o = { get x() { throw 1 }, f: function() {}, Setup: { get y() { throw 2 } },"
                      "          Info: { get Variables() { throw 3 }, z: null, g: function() {} } }; o.Device = o; o"),
              "");
}

TEST(ScriptReport, StandsOnOneLineForEachThingWhateverIsInIt) {
    const QString text = ToText(AnalyseScript(Text("var items = []; for (var i = 0; i < 21; ++i) items.push(i);"
                                                   "({ Info: { Title: 'a\\nb', Variables: { m: { Type: 'Enum', Items: "
                                                   "items }, n: { Type: 'Enum', Items: ['x', 'y'] } } },"
                                                   "   Device: { m: 0, n: 0, s: 'a\\tb\\u0000c\\r' } })"),
                                              Text("a.js")),
                                Text("a.js"));
    EXPECT_TRUE(text.contains(Text("title  a\\nb\n"))) << text.toStdString();
    EXPECT_TRUE(text.contains(Text("s  String  a\\tb\\x00c\\r\n"))) << text.toStdString();
    EXPECT_TRUE(text.contains(Text("18|19|... (21 items)\n"))) << text.toStdString();
    EXPECT_TRUE(text.contains(Text("x|y\n")));
}

TEST(ScriptReport, SaysWhenNothingIsPublished) {
    EXPECT_TRUE(ToText(AnalyseScript(Text("function f() {}"), Text("a.js")), Text("a.js"))
                    .contains(Text("Nothing is published")));
}

/// The built program.
class CheckProgram : public testing::Test {
protected:
    void Run(const QStringList& words) {
        QProcess process;
        process.start(Text(CHECKER), words);
        ASSERT_TRUE(process.waitForFinished(30000));
        exitCode = process.exitCode();
        output = process.readAllStandardOutput();
        errors = process.readAllStandardError();
    }
    QString File(const QByteArray& content) {
        QFile file(folder.filePath(Text("a.js")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }
    QJsonObject Json() const { return QJsonDocument::fromJson(output).object(); }

    QTemporaryDir folder;
    int exitCode = -1;
    QByteArray output;
    QByteArray errors;
};

TEST_F(CheckProgram, EndsInTheStatedCodes) {
    Run({File("({ f: function() {} })")});
    EXPECT_EQ(exitCode, 0);
    EXPECT_TRUE(output.contains("4  f")) << output.toStdString();
    Run({File("throw 'text'")});
    EXPECT_EQ(exitCode, 1);
    EXPECT_TRUE(output.contains("a.js:1: text\n    | throw 'text'\n    | ^\n    at the top level ("))
        << output.toStdString();
    for (const QStringList& bad :
         {QStringList(), QStringList{folder.path()}, QStringList{Text("nowhere.js")},
          QStringList{Text("--wrong"), File("")}, QStringList{Text("--timeout"), Text("0"), File("")},
          QStringList{File(""), File("")}}) {
        Run(bad);
        EXPECT_EQ(exitCode, 2) << bad.join(QLatin1Char(' ')).toStdString();
        EXPECT_TRUE(output.isEmpty());
        EXPECT_FALSE(errors.isEmpty());
    }
    for (const char* endless : {"while (true) {}", "({ Device: { get x() { while (true) {} } } })"}) {
        Run({Text("--timeout"), Text("300"), File(endless)});
        EXPECT_EQ(exitCode, 3) << endless;
        EXPECT_TRUE(errors.contains("no answer within 300 ms"));
    }
}

TEST_F(CheckProgram, CountsNotesAsAFailureOnlyWhenItIsStrict) {
    const QString file = File("({ f: function () {\nQCalverin.Preform(); } })");
    Run({file});
    EXPECT_EQ(exitCode, 0);
    EXPECT_TRUE(output.contains("a.js: ok\n")) << output.toStdString();
    EXPECT_TRUE(output.contains("a.js:2: note: ")) << output.toStdString();
    Run({Text("--strict"), file});
    EXPECT_EQ(exitCode, 1);
    EXPECT_TRUE(output.contains("a.js: 1 note counts as a failure\n")) << output.toStdString();
    EXPECT_TRUE(output.contains("[unknown-call]\n")) << output.toStdString();
    Run({Text("--strict"), Text("--json"), file});
    EXPECT_EQ(exitCode, 1);
    EXPECT_TRUE(Json().value(Text("error")).isNull());
    EXPECT_EQ(Json().value(Text("notes")).toArray().at(0).toObject().value(Text("code")).toString(),
              Text("unknown-call"));
    Run({Text("--strict"), File("({ f: function () {} })")});
    EXPECT_EQ(exitCode, 0);
}

TEST_F(CheckProgram, GivesJsonForFailuresToo) {
    Run({Text("--json"), File("\nthrow 1")});
    EXPECT_EQ(exitCode, 1);
    EXPECT_EQ(Json().value(Text("error")).toObject().value(Text("line")).toInt(), 2);
    Run({Text("--json"), Text("--timeout"), Text("300"), File("while (true) {}")});
    EXPECT_EQ(exitCode, 3);
    EXPECT_EQ(Json().value(Text("error")).toObject().value(Text("line")).toInt(-1), 1);
    Run({Text("--json"), Text("nowhere.js")});
    EXPECT_EQ(exitCode, 2);
    EXPECT_FALSE(Json().value(Text("error")).isNull());
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
