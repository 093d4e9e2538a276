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
    {"({ a: function () { if (x { } } })", 1, 27, "expected \")\" before \"{\"", ""},
    {"({ a: 1\n  b: 2 })", 2, 3, "expected \",\" or \"}\" before \"b\"", ""},
    {"foo(1, 2;", 1, 9, "expected \",\" or \")\" before \";\"", ""},
    {"var s = \"it's\" and more\";", 1, 16, "expected \";\" before \"and\"", ""},
    {"var x = 'abc\n';", 1, 9, "the text in quotes is not closed on its line", ""},
    {"/* never", 1, 1, "the comment is never closed", ""},
    {"var a = 1; }", 1, 12, "unexpected \"}\"", ""},
    {"({ a: function () {\n  if (1) {\n  a();\n} })", 4, 4, "expected \"}\" before \")\"", "\"{\" of line 1"},
    {"f(function () {\n", 1, 15, "this \"{\" is never closed", ""},
    {"let x = 1;", 1, 5, "expected \";\" before \"x\"", "\"let\": write \"var\""},
    {"for (let i = 0; i < 3; i++) {}", 1, 10, "expected \";\" before \"i\"", "\"let\""},
    {"var f = (a) => a + 1;", 1, 13, "unexpected \"=>\"", "arrow functions"},
    {"var s = `abc ${x}`;", 1, 9, "unexpected \"`abc ${x}`\"", "template strings"},
    {"class A { }", 1, 1, "unexpected \"class\"", "classes"},
    {"for (var i of [1]) {}", 1, 12, "expected \";\" before \"of\"", "for ... of"},
    {"f(...x)", 1, 3, "unexpected \"...\"", "\"...\""},
    {"async function f() {}", 1, 7, "expected \";\" before \"function\"", "\"async\""},
    {"import x from 'y'", 1, 1, "unexpected \"import\"", "modules"},
    {"export default {}", 1, 1, "unexpected \"export\"", "modules"},
    {"a?.b", 1, 2, "unexpected \"?.\"", "\"?.\""},
    {"a ?? b", 1, 3, "unexpected \"??\"", "\"??\""},
    {"2 ** 3", 1, 3, "unexpected \"**\"", "Math.pow"},
    {"({ f() { return 1; } })", 1, 5, "expected \":\" before \"(\"", "short methods"},
    {"({a, b})", 1, 4, "expected \":\" before \",\"", "short members"},
    {"function f(a = 1) {}", 1, 14, "expected \",\" or \")\" before \"=\"", "defaults of parameters"},
    {"var {a} = b;", 1, 5, "expected a name before \"{\"", "destructuring"},
    {"\n/abc", 2, 1, "the regular expression is not closed on its line", ""},
    {"({ a: function () {\n  if (1) {\n  a();\n},\n b: 2 })", 4, 2, "expected \"}\" before \",\"", "\"{\" of line 1"},
    {"a.delete();", 1, 3, "expected a name before \"delete\"", "a[\"delete\"]"},
    {"({ a: 1, default: 2 })", 1, 10, "expected a name before \"default\"", "{ \"default\": 1 }"},
    {"var a = 3px;", 1, 10, "unexpected \"3px\"", ""},
    {"try { a(); }\nb();", 2, 1, "expected \"catch\" or \"finally\" before \"b\"", ""},
    {"switch (a) { b(); }", 1, 14, "expected \"case\" or \"default\" or \"}\" before \"b\"", ""},
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

TEST(SyntaxAdvice, OfATextThatNestsDeepHarmsNobody) {
    for (const int depth : {16, 128, 2000, 50000}) {
        const QString text = QStringLiteral("(function () { return ").repeated(depth);
        EXPECT_FALSE(AdviceOn(text, 1).what.isEmpty()) << depth;
    }
}
