#include "SyntaxReader.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QScriptEngine>

namespace {

constexpr const char* kTaken[] = {
    "",
    "// nothing",
    "({ a: 1, 'b': 2, 3: [,, 1, , ], get c() { return 1; }, set c(v) {}, get: 4, set: function () {}, })",
    "var a = 1\nvar b = 2\n++a\nb",
    "a\n++\nb",
    "x: for (;;) { continue x; }",
    "for (var i = 0, n = 3; i < n; ++i) ;",
    "for (var k in o) for (k in o) for (o.k in (1 in o)) {}",
    "do a(); while (0) b()",
    "if (a) b; else if (c) d; else e",
    "if (a) if (b) c; else d; else e",
    "switch (a) { case 1: case 2: b(); default: }",
    "try { } catch (e) { } finally { }",
    "function f(a, b) { return\na } function g() { throw a }",
    "new new X(1)(2).y[3](4)",
    "a = b ? c : d ? e : f, g",
    "a?.5:1",
    "a = b\n/c/d",
    "if (a) /b/.test(c)",
    "a++ / b / c; (a) / b / c",
    "s.replace(/[/\\]]/g, '/')",
    "a = /=/",
    "'it\\'s\\\n longer' + \"\\\\\"",
    "1..toString() + 0x1F + .5e-3 + 1e9 + 0",
    "a.b.get = typeof void delete a.b",
    "while (a) with (b) debugger",
    "var \\u0061b, $, _1, \xc3\xa9t\xc3\xa9",
    "/* a\n */ a /* b */ \n b",
};

QString Repeated(const char* text, int times) {
    return QString::fromLatin1(text).repeated(times);
}

/// Asks the engine without running anything.
bool EngineTakes(const QString& text) {
    QScriptEngine engine;
    engine.evaluate(QStringLiteral("(function () {\n%1\n})").arg(text));
    return !engine.hasUncaughtException();
}

/// A few signs taken away, doubled, or exchanged.
QString Mutated(QString text, std::mt19937& dice) {
    const QString signs = QStringLiteral("(){}[];:,.=+/'\"\n x1");
    const auto below = [&](int limit) { return static_cast<int>(dice() % static_cast<unsigned>(limit)); };
    for (int times = 1 + below(2); times > 0 && !text.isEmpty(); --times) {
        const int at = below(text.size());
        switch (below(3)) {
        case 0:
            text.remove(at, 1 + below(3));
            break;
        case 1:
            text.insert(at, signs[below(signs.size())]);
            break;
        default:
            text[at] = signs[below(signs.size())];
            break;
        }
    }
    return text;
}

} // namespace

TEST(SyntaxReader, TakesWhatTheEngineTakes) {
    for (const char* script : kTaken) {
        const QString text = QString::fromUtf8(script);
        const SyntaxBreak found = ReadSyntax(text);
        EXPECT_EQ(found.kind, SyntaxBreak::Kind::None) << script << " at " << found.offset;
        EXPECT_TRUE(EngineTakes(text)) << script;
    }
}

TEST(SyntaxReader, KnowsTheReservedWordsOfTheEngine) {
    for (const char* word : {"let", "of", "async", "await", "yield", "static", "get", "implements", "interface",
                             "package", "private", "public", "undefined", "eval", "int", "goto"}) {
        const QString text = QStringLiteral("var %1 = { %1: 1 }.%1;").arg(QLatin1String(word));
        EXPECT_TRUE(EngineTakes(text)) << word;
        EXPECT_EQ(ReadSyntax(text).kind, SyntaxBreak::Kind::None) << word;
    }
    for (const char* word :
         {"break", "case",   "catch", "class",      "const",   "continue", "debugger", "default", "delete",
          "do",    "else",   "enum",  "export",     "extends", "false",    "finally",  "for",     "function",
          "if",    "import", "in",    "instanceof", "new",     "null",     "return",   "super",   "switch",
          "this",  "throw",  "true",  "try",        "typeof",  "var",      "void",     "while",   "with"}) {
        const QString text = QStringLiteral("var %1 = 1;").arg(QLatin1String(word));
        EXPECT_FALSE(EngineTakes(text)) << word;
        EXPECT_EQ(ReadSyntax(text).expected, QStringList(QStringLiteral("a name"))) << word;
    }
}

TEST(SyntaxReader, FindsNothingInMutatedDriversThatTheEngineTakesAndMostOfWhatItRefuses) {
    std::mt19937 dice(1);
    int refused = 0;
    int found = 0;
    int tried = 0;
    for (const char* folder : {"/examples", "/templates"}) { // beside connection.js there stand forms to be filled in
        const auto depth = QLatin1String(folder) == QLatin1String("/examples") ? QDirIterator::Subdirectories
                                                                               : QDirIterator::NoIteratorFlags;
        QDirIterator files(QStringLiteral(SOURCE_ROOT) + QLatin1String(folder), {QStringLiteral("*.js")}, QDir::Files,
                           depth);
        while (files.hasNext()) {
            QFile file(files.next());
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            const QString whole = QString::fromUtf8(file.readAll());
            ASSERT_EQ(ReadSyntax(whole).kind, SyntaxBreak::Kind::None) << file.fileName().toStdString();
            for (int i = 0; i < 60; ++i) {
                const QString text = Mutated(whole, dice);
                const bool isTaken = EngineTakes(text);
                const SyntaxBreak place = ReadSyntax(text);
                const bool finds = place.kind != SyntaxBreak::Kind::None;
                ++tried;
                refused += isTaken ? 0 : 1;
                found += finds && !isTaken ? 1 : 0;
                EXPECT_FALSE(finds && isTaken) << file.fileName().toStdString() << " at " << place.offset << ": "
                                               << text.mid(place.offset - 40, 60).toStdString();
            }
        }
    }
    EXPECT_GT(refused, tried / 5);
    EXPECT_GT(found, refused * 9 / 10);
}

TEST(SyntaxReader, FindsTheJumpsThatTheEngineFindsWhenTheirFunctionIsCalled) {
    struct Row {
        const char* body;
        const char* lost; ///< with commas
    };
    const Row rows[] = {
        {"for (;;) break; while (0) { continue; } do { break } while (0)", ""},
        {"for (var k in {}) switch (k) { case 1: break; default: continue; }", ""},
        {"switch (1) { default: continue; }", "continue"},
        {"break;", "break"},
        {"if (0) { continue }", "continue"},
        {"with ({}) break;", "break"},
        {"a: { break a; }", ""},
        {"a: for (;;) { b: for (;;) { break a; } }", ""},
        {"a: for (;;) { break b; }", "break b"},
        {"a: b: for (;;) { c: { continue a; } continue b; }", ""},
        {"a: { for (;;) { continue a; } }", ""},
        {"a: switch (1) { case 1: continue a; }", "continue a"},
        {"a: for (;;) { b: { continue b; } }", "continue b"},
        {"a: while (0) do { continue a; } while (0)", ""},
        {"a: ; for (;;) { break a; }", "break a"},
        {"for (;;) { break\na }", ""},
        {"for (;;) { (function () { for (;;) break; continue; }); break; }", "continue"},
        {"a: for (;;) { x = { get y() { break a; } }; break; }", "break a"},
        {"break; for (;;) ; continue /* no loop */ ;", "break, continue"},
    };
    for (const Row& row : rows) {
        const QString text = QStringLiteral("(function () {\n%1\n})").arg(QLatin1String(row.body));
        QStringList lost;
        for (const LostJump& jump : FindLostJumps(text)) {
            lost.append(jump.word);
            EXPECT_EQ(text.mid(jump.offset, jump.word.size()), jump.word) << row.body;
        }
        EXPECT_EQ(lost.join(QStringLiteral(", ")), QLatin1String(row.lost)) << row.body;
    }
}

TEST(SyntaxReader, CallsNoJumpLostThatTheEngineFollows) {
    QScriptEngine engine;
    for (const char* body :
         {"for (;;) break;", "do { break } while (0)", "a: { break a; }", "switch (1) { default: break; }",
          "a: for (;;) { for (;;) { break a; } }", "for (;;) { break\na }"}) {
        engine.evaluate(QStringLiteral("(function () {\n%1\n})()").arg(QLatin1String(body)));
        EXPECT_FALSE(engine.hasUncaughtException()) << body;
        EXPECT_TRUE(FindLostJumps(QLatin1String(body)).empty()) << body;
    }
    for (const char* body :
         {"break;", "switch (1) { default: continue; }", "a: for (;;) { break b; }", "with ({}) break;",
          "a: { continue a; }", "a: switch (1) { default: continue a; }", "[1].forEach(function () { continue; })"}) {
        engine.evaluate(QStringLiteral("(function () {\n%1\n})()").arg(QLatin1String(body)));
        EXPECT_TRUE(engine.hasUncaughtException()) << body;
        engine.clearExceptions();
        EXPECT_EQ(FindLostJumps(QLatin1String(body)).size(), 1U) << body;
    }
}

TEST(SyntaxReader, FollowsDeepTextsAsFarAsItCanAndGivesUpBeyond) {
    for (const char* open :
         {"(", "[", "{", "(function () { ", "({ a: ", "for (;;) ", "if (a) ", "a ? ", "!", "new ", "a = "}) {
        for (const int times : {100, 100000}) {
            const SyntaxBreak found = ReadSyntax(Repeated(open, times));
            if (found.kind != SyntaxBreak::Kind::None) {
                EXPECT_EQ(found.offset, static_cast<int>(std::string(open).size()) * times) << open << times;
            }
            EXPECT_TRUE(times > 100 || found.kind == SyntaxBreak::Kind::Unexpected) << open;
        }
    }
}

TEST(SyntaxReader, FindsAMistakeBehindTwoThousandBranches) {
    const QString text = Repeated("if (a) { b(); } else ", 2000) + QStringLiteral("{ c( }");
    const SyntaxBreak found = ReadSyntax(text);
    EXPECT_EQ(found.kind, SyntaxBreak::Kind::Unexpected);
    EXPECT_EQ(found.offset, text.size() - 1);
}
