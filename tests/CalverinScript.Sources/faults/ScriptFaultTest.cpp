#include "ScriptFault.h"

#include <gtest/gtest.h>

#include <QScriptEngine>

#include "FaultText.h"

namespace {

/// Runs a script as a device does, and then its function Run.
class ScriptFaults : public testing::Test {
protected:
    std::string Told(const char* script) {
        const QString text = QString::fromUtf8(script);
        engine.pushContext();
        const QScriptValue published = engine.evaluate(text, QStringLiteral(""), 1);
        engine.popContext();
        if (!engine.hasUncaughtException())
            published.property(QStringLiteral("Run"))
                .call(published, QScriptValueList{QScriptValue(QStringLiteral("50"))});
        if (!engine.hasUncaughtException())
            return "nothing was thrown";
        return LinesOf(reader.Read(engine, engine.uncaughtException(), text), QStringLiteral("a.js"))
            .join(QLatin1Char('\n'))
            .toStdString();
    }

    QScriptEngine engine;
    FaultReader reader;
};

} // namespace

TEST_F(ScriptFaults, TellThePlaceTheLineAndTheCalls) {
    EXPECT_EQ(Told("function half(x) {\n"
                   "\treturn x / two;\n"
                   "}\n"
                   "({\n"
                   "  Run: function (level) {\n"
                   "    return half(level);\n"
                   "  }\n"
                   "})\n"),
              "a.js:2:13: ReferenceError: Can't find variable: two\n"
              "| return x / two;\n"
              "|            ^\n"
              "at half (a.js:2)\n"
              "at Run (a.js:6)");
}

TEST_F(ScriptFaults, PointAtWhatIsThrownAndAtExpressions) {
    EXPECT_EQ(Told("({ Run: function () {\n   throw new Error('bad thing');\n} })"),
              "a.js:2:4: Error: bad thing\n| throw new Error('bad thing');\n| ^\nat Run (a.js:2)");
    EXPECT_EQ(Told("({ Run: function () { var x = {};\n return 1 + x.y();\n} })"),
              "a.js:2:13: TypeError: Result of expression 'x.y' [undefined] is not a function.\n"
              "| return 1 + x.y();\n|            ^\nat Run (a.js:2)");
}

TEST_F(ScriptFaults, OfTheTopLevelNameIt) {
    EXPECT_EQ(Told("\n\nnull.x = 1;"), "a.js:3:1: TypeError: Result of expression 'null' [null] is not an object.\n"
                                       "| null.x = 1;\n| ^\nat the top level (a.js:3)");
}

TEST_F(ScriptFaults, HaveNoColumnForWhatIsNoObject) {
    EXPECT_EQ(Told("({ Run: function () {\n    throw 'text'; } })"),
              "a.js:2: text\n| throw 'text'; } })\n| ^\nat Run (a.js:2)");
}

TEST_F(ScriptFaults, OfSyntaxSayWhatWasExpected) {
    EXPECT_EQ(Told("var a = 1;\nvar b = ;\n"), "a.js:2:9: SyntaxError: unexpected \";\"\n| var b = ;\n|         ^");
    EXPECT_EQ(Told("let x = 1;"), "a.js:1:5: SyntaxError: expected \";\" before \"x\"\n| let x = 1;\n|     ^\n"
                                  "note: this engine speaks ECMAScript 5.1, which has no \"let\": write \"var\"");
}

TEST_F(ScriptFaults, OfTextsThatTheScriptReadsAreWhereItReadsThem) {
    EXPECT_EQ(Told("({ Run: function () {\n  JSON.parse('{');\n} })").substr(0, 20), "a.js:2: SyntaxError:");
    EXPECT_EQ(Told("({ Run: function () {\n  eval('1 +');\n} })"),
              "a.js:2: SyntaxError: Parse error\n| eval('1 +');\n| ^\nat Run (a.js:2)");
}

TEST_F(ScriptFaults, SayWhatToWriteForNamesThatOtherProgramsHave) {
    EXPECT_NE(Told("({ Run: function () {\n  setTimeout(1, 2);\n} })").find("\nnote: write \"QCalverin.SetTimeout("),
              std::string::npos);
    EXPECT_EQ(Told("({ Run: function () {\n  mine(1, 2);\n} })").find("note:"), std::string::npos);
}

TEST_F(ScriptFaults, OfDeepRecursionHaveALine) {
    EXPECT_EQ(Told("({ Run: function () {\n  function f() { return f() + 1; }\n  f();\n} })").substr(0, 20),
              "a.js:2: RangeError: ");
}

TEST_F(ScriptFaults, OfManyCallsTellTheFirstAndTheLast) {
    const std::string told = Told("function f(n) { if (n > 0) f(n - 1); else throw new Error('deep'); }\n"
                                  "({ Run: function () {\n  f(100);\n} })");
    EXPECT_NE(told.find("\n... 87 more calls\nat f (a.js:1)\nat f (a.js:1)\nat Run (a.js:3)"), std::string::npos)
        << told;
    EXPECT_LT(told.size(), 1000U);
}

TEST_F(ScriptFaults, OfALongLineShowThePartAboutThePlace) {
    const std::string blanks(300, ' ');
    const std::string told = Told(("({ Run: function () { var a = 1;" + blanks + "boom();" + blanks + "} })").c_str());
    EXPECT_NE(told.find("boom();"), std::string::npos);
    const std::size_t source = told.find("| ");
    const std::size_t mark = told.find("| ", source + 2);
    EXPECT_EQ(told.find("boom", source) - source, told.find('^', mark) - mark) << told;
    EXPECT_LT(told.size(), 400U);
}

TEST_F(ScriptFaults, WithGettersAndTextsOfTheScriptsOwnAreReadAllTheSame) {
    EXPECT_EQ(Told("({ Run: function () {\n  throw { toString: function () { throw 1; } };\n} })").substr(0, 6),
              "a.js:2");
    EXPECT_NE(
        Told("Error.prototype.toString = function () { for (;;); };\n({ Run: function () { throw new Error('x'); } })")
            .find("Error: x"),
        std::string::npos);
}
