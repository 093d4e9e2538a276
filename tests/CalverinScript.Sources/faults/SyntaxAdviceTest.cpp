#include "SyntaxAdvice.h"

#include <gtest/gtest.h>

#include <QScriptEngine>

namespace {

/// A script that the engine does not take: where it breaks off, what is said, and a word of the note.
struct Broken {
    const char* script;
    int line;
    int column;
    const char* what;
    const char* note; ///< empty for none
};

constexpr Broken kBroken[] = {
    {"var a = 1;\nvar b = ;\n", 2, 9, "unexpected \";\"", ""},
    {"({ a: function () { if (x { } } })", 1, 27, "expected \";\" or \")\" before \"{\"", ""},
    {"({ a: 1\n  b: 2 })", 2, 3, "expected \"}\" before \"b\"", "\"{\" of line 1"},
    {"foo(1, 2;", 1, 9, "expected \";\" or \")\" before \";\"", ""},
    {"var s = \"it's\" and more\";", 1, 16, "expected \";\" before \"and\"", ""},
    {"var x = 'abc\n';", 1, 9, "the text in quotes is not closed on its line", ""},
    {"/* never", 1, 1, "the comment is never closed", ""},
    {"var a = 1; }", 1, 12, "unexpected \"}\"", ""},
    {"({ a: function () {\n  if (1) {\n  a();\n} })", 4, 4, "expected \"}\" before \")\"", "\"{\" of line 1"},
    {"f(function () {\n", 1, 15, "this \"{\" is never closed", ""},
    {"let x = 1;", 1, 5, "expected \";\" before \"x\"", "\"let\": write \"var\""},
    {"for (let i = 0; i < 3; i++) {}", 1, 10, "expected \";\" before \"i\"", "\"let\""},
    {"var f = (a) => a + 1;", 1, 14, "unexpected \"=>\"", "arrow functions"},
    {"var s = `abc ${x}`;", 1, 9, "unexpected \"`abc ${x}`\"", "template strings"},
    {"class A { }", 1, 1, "unexpected \"class\"", "classes"},
    {"for (var i of [1]) {}", 1, 12, "expected \";\" before \"of\"", "for ... of"},
    {"f(...x)", 1, 3, "unexpected \"...\"", "\"...\""},
    {"async function f() {}", 1, 7, "expected \";\" before \"function\"", "\"async\""},
    {"import x from 'y'", 1, 1, "unexpected \"import\"", "modules"},
    {"export default {}", 1, 1, "unexpected \"export\"", "modules"},
    {"a?.b", 1, 3, "unexpected \"?.\"", "\"?.\""},
    {"a ?? b", 1, 4, "unexpected \"??\"", "\"??\""},
    {"2 ** 3", 1, 4, "unexpected \"**\"", "Math.pow"},
    {"({ f() { return 1; } })", 1, 5, "expected \":\" before \"(\"", "short methods"},
    {"({a, b})", 1, 4, "expected \":\" before \",\"", "short members"},
    {"function f(a = 1) {}", 1, 14, "expected \")\" before \"=\"", "defaults of parameters"},
    {"var {a} = b;", 1, 5, "expected a name before \"{\"", "destructuring"},
    {"\n/abc", 2, 0, "the engine cannot read this line", ""},
};

class BrokenScript : public testing::TestWithParam<Broken> {};

} // namespace

TEST_P(BrokenScript, IsToldWithItsPlaceAndWhatWasExpected) {
    const Broken& row = GetParam();
    const QString script = QString::fromUtf8(row.script);
    QScriptEngine engine;
    engine.evaluate(script, QString(), 1);
    ASSERT_TRUE(engine.hasUncaughtException());
    const SyntaxAdvice advice = AdviceOn(script, engine.uncaughtExceptionLineNumber());
    EXPECT_EQ(advice.what.toStdString(), row.what);
    EXPECT_EQ(advice.line, row.line);
    EXPECT_EQ(advice.column, row.column);
    EXPECT_NE(advice.note.toStdString().find(row.note), std::string::npos) << advice.note.toStdString();
    EXPECT_EQ(advice.note.isEmpty(), *row.note == '\0') << advice.note.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Each, BrokenScript, testing::ValuesIn(kBroken));

TEST(SyntaxAdvice, OfAnyBeginningOfAScriptIsSomethingAndNoCrash) {
    const QString script = QString::fromLatin1(
        "({ Fade: function (a, b) { var x = [1, 'a\\'', \"b\"]; if (/[/]/.test(x)) { return a ? b : c; } // e\n"
        " for (var i in {}) { x => `t`; } /* c */ } })");
    for (int length = 0; length <= script.size(); ++length) {
        const SyntaxAdvice advice = AdviceOn(script.left(length), 1);
        EXPECT_FALSE(advice.what.isEmpty()) << length;
        EXPECT_GE(advice.line, 1) << length;
    }
}
