#include "CallNotes.h"

#include <string>

#include <gtest/gtest.h>

#include "ScriptCalls.h"
#include "ScriptReport.h"
#include "ScriptSource.h"

namespace {

/// "1 unknown-call QCalverin.Nope", a line for each note.
std::string CallNotesOf(const std::string& script) {
    std::string text;
    for (const ScriptNote& note : FindCallNotes(ScriptSource(QString::fromStdString(script))))
        text += std::to_string(note.line) + " " + note.Code().toStdString() + " " + note.where.toStdString() + "\n";
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
        CallNotesOf("QCalverin.SetValeu('a', 1);\n\nif (x) QCalverin\n  . startTask ( 'y' );\nQCalverin['Preform']();"),
        "1 unknown-call QCalverin.SetValeu\n4 unknown-call QCalverin.startTask\n5 unknown-call QCalverin.Preform\n");
}

TEST(CallNotes, PassOverTextsCommentsPatternsAndObjectsOfTheScriptsOwn) {
    EXPECT_EQ(
        CallNotesOf("'QCalverin.A()'; \"\\\"QCalverin.B()\"; // QCalverin.C()\n/* QCalverin.D(\n QCalverin.E() */\n"
                    "my.QCalverin.F(); myQCalverin.G(); 'it\\'s QCalverin.H()';\n"
                    "x = /QCalverin.I()/.test(s); return /[/]QCalverin.J()/g; if (a) /QCalverin.K()/.exec(b);"),
        "");
    EXPECT_EQ(CallNotesOf("var QCalverin = { Nope: function () {} }; QCalverin.Nope();"), "");
    EXPECT_EQ(CallNotesOf("QCalverin.mine = function () {}; QCalverin.mine(); QCalverin.hasOwnProperty('x');"), "");
}

TEST(CallNotes, ArePutBehindDivisionsWhichAreNoPatterns) {
    EXPECT_EQ(
        CallNotesOf("a = b / 2; QCalverin.No(); c = (d) / 2; QCalverin.Nor(); e[0] / 2; QCalverin.Not(); f++ / 2"),
        "1 unknown-call QCalverin.No\n1 unknown-call QCalverin.Nor\n1 unknown-call QCalverin.Not\n");
}

TEST(CallNotes, LetAScriptAskWhetherACallIsThere) {
    EXPECT_EQ(CallNotesOf("if (QCalverin.New) x(); if (!QCalverin.New) y(); typeof QCalverin.New === 'function';"), "");
    EXPECT_EQ(CallNotesOf("var f = QCalverin.New;"), "1 unknown-member QCalverin.New\n");
}

TEST(CallNotes, CountArgumentsAsTheCallTakesThem) {
    EXPECT_EQ(
        CallNotesOf("QCalverin.SetTimeout(function (a, b) { return [1, 2]; });\nQCalverin.GetValueAsString('a', 'b');\n"
                    "QCalverin.PostponeResult(1);\nQCalverin.SetResult();"),
        "1 too-few-arguments QCalverin.SetTimeout\n2 too-many-arguments QCalverin.GetValueAsString\n"
        "3 too-many-arguments QCalverin.PostponeResult\n4 too-few-arguments QCalverin.SetResult\n");
    EXPECT_EQ(CallNotesOf(
                  "QCalverin.SetTimeout(function (a, b) { f(a, b); }, 10); QCalverin.Perform('a', 'b', 'LIST', 'c=1');"
                  "QCalverin.SetTimeout.apply(QCalverin, x); QCalverin.PostponeResult();"),
              "");
}

TEST(CallNotes, StandInTheReportOfAScript) {
    const ScriptReport report = AnalyseScript(
        QStringLiteral("({\nFade: function () { QCalverin.Preform('a', 'b'); }\n})"), QStringLiteral("a.js"));
    ASSERT_FALSE(report.problem);
    ASSERT_EQ(report.notes.size(), 1);
    EXPECT_NE(
        ToText(report, QStringLiteral("x/a.js"))
            .indexOf(QStringLiteral("\nx/a.js:2: note: QCalverin.Preform does not exist, and the call will throw: "
                                    "correct the name, it may be meant as Perform [unknown-call]\n")),
        -1);
}

TEST(CallNotes, OfALongTextAreTakenAtOnce) {
    const std::string longText(2000000, 'x');
    EXPECT_EQ(CallNotesOf("var a = '" + longText + "'; /*" + longText + "*/ QCalverin.Nope();"),
              "1 unknown-call QCalverin.Nope\n");
}

} // namespace
