#include "CallNotes.h"

#include <string>

#include <gtest/gtest.h>

#include "ScriptCalls.h"
#include "ScriptReport.h"

namespace {

/// "line 1: text", a line for each note.
std::string CallNotesOf(const std::string& script) {
    std::string text;
    for (const ScriptNote& note : FindCallNotes(QString::fromStdString(script)))
        text += note.where.toStdString() + ": " + note.text.toStdString() + "\n";
    return text;
}

TEST(CallNotes, AreTakenOfNoCallThatCompletionOffersOrThatExistsBeside) {
    std::string script;
    for (const ScriptCall& call : kScriptCalls)
        script += std::string(call.insertion) + "\n";
    for (const char* call : kUnofferedCalls)
        script += std::string(call) + "(1);\n";
    EXPECT_EQ(CallNotesOf(script), "");
}

TEST(CallNotes, TellTheLineOfEachCallThatDoesNotExist) {
    EXPECT_EQ(
        CallNotesOf("QCalverin.SetValeu('a', 1);\n\nif (x) QCalverin\n  . startTask ( 'y' );\nQCalverin.Perform();"),
        "line 1: QCalverin.SetValeu: there is no such call\nline 3: QCalverin.startTask: there is no such call\n");
}

TEST(CallNotes, PassOverTextsCommentsAndWhatIsNoCall) {
    EXPECT_EQ(
        CallNotesOf("'QCalverin.A()'; \"\\\"QCalverin.B()\"; // QCalverin.C()\n/* QCalverin.D(\n QCalverin.E() */\n"
                    "my.QCalverin.F(); myQCalverin.G(); QCalverin.H; var it's = QCalverin['I']();"),
        "");
}

TEST(CallNotes, StandInTheReportOfAScript) {
    const ScriptReport report = AnalyseScript(
        QStringLiteral("({\nFade: function () { QCalverin.Preform('a', 'b'); }\n})"), QStringLiteral("a.js"));
    ASSERT_FALSE(report.problem);
    ASSERT_EQ(report.notes.size(), 1);
    EXPECT_NE(ToText(report).indexOf(QStringLiteral("line 2  QCalverin.Preform: there is no such call")), -1);
}

TEST(CallNotes, OfALongTextAreTakenAtOnce) {
    const std::string longText(2000000, 'x');
    EXPECT_EQ(CallNotesOf("var a = '" + longText + "'; /*" + longText + "*/ QCalverin.Nope();"),
              "line 1: QCalverin.Nope: there is no such call\n");
}

} // namespace
