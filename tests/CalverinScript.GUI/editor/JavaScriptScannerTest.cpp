#include "JavaScriptScanner.h"

#include <gtest/gtest.h>

namespace {

ScriptWords Words() {
    const QStringList keywords = DefaultKeywords();
    return {QSet<QString>(keywords.begin(), keywords.end()), {QStringLiteral("Math")}};
}

ScannedLine Scan(const char* text, int previousState = -1) {
    return ScanLine(QString::fromLatin1(text), previousState, Words());
}

std::string Tokens(const ScannedLine& line) {
    std::string all;
    for (const ScriptToken& token : line.tokens) {
        all += std::to_string(token.start) + "+" + std::to_string(token.length) + ":" +
               std::to_string(static_cast<int>(token.role)) + " ";
    }
    return all;
}

} // namespace

TEST(JavaScriptScanner, KnowsTheReservedWordsOfTheLanguageAndNoOthers) {
    EXPECT_EQ(
        DefaultKeywords().join(QLatin1Char(' ')).toStdString(),
        "break case catch continue default delete do else finally for function if in instanceof new return switch "
        "this throw try typeof var void while with true false null");
}

TEST(JavaScriptScanner, PacksTheScanStateBelowTheDepth) {
    EXPECT_EQ(PackLineState(ScanState::Start, 0), 0);
    EXPECT_EQ(PackLineState(ScanState::Comment, 0), 4);
    EXPECT_EQ(PackLineState(ScanState::Start, 2), 32);
    EXPECT_EQ(PackLineState(ScanState::Comment, 3), 52);
    EXPECT_EQ(PackLineState(ScanState::Start, -1), -16);
    EXPECT_EQ(PackLineState(ScanState::Comment, -1), -12);
}

TEST(JavaScriptScanner, GivesTokensFromLeftToRight) {
    EXPECT_EQ(Tokens(Scan("var x = 15;")), "0+3:7 6+1:5 8+2:3 10+1:5 ");
    EXPECT_EQ(Tokens(Scan("f('a') // c")), "2+3:4 7+4:2 ");
}

TEST(JavaScriptScanner, ColoursAKnownIdentifierThatIsNoKeyword) {
    EXPECT_EQ(Tokens(Scan("Math.PI")), "0+4:8 4+1:5 ");
    EXPECT_EQ(Tokens(Scan("math")), "");
}

TEST(JavaScriptScanner, PrefersAKeywordToAKnownIdentifierOfTheSameName) {
    ScriptWords words = Words();
    words.knownIdentifiers.insert(QStringLiteral("var"));
    EXPECT_EQ(Tokens(ScanLine(QStringLiteral("var"), -1, words)), "0+3:7 ");
}

TEST(JavaScriptScanner, GivesNothingForAnEmptyLine) {
    const ScannedLine line = Scan("");
    EXPECT_TRUE(line.tokens.empty());
    EXPECT_TRUE(line.brackets.isEmpty());
    EXPECT_EQ(line.state, 0);
}

TEST(JavaScriptScanner, GoesOnFromTheDepthAndTheCommentOfTheLineBefore) {
    EXPECT_EQ(Scan("}", PackLineState(ScanState::Start, 3)).state, PackLineState(ScanState::Start, 2));
    const ScannedLine line = Scan("a */ {", PackLineState(ScanState::Comment, 1));
    EXPECT_EQ(Tokens(line), "0+4:2 ");
    EXPECT_EQ(line.brackets, QList<int>{5});
    EXPECT_EQ(line.state, PackLineState(ScanState::Start, 2));
}

TEST(JavaScriptScanner, StartsAfreshBehindANegativeState) {
    EXPECT_EQ(Tokens(Scan("1", PackLineState(ScanState::Comment, -1))), "0+1:3 ");
    EXPECT_EQ(Scan("{", -16).state, 16);
}

TEST(JavaScriptScanner, KeepsTheStateOfACommentOnlyBesideAPositiveDepth) {
    EXPECT_EQ(Scan("} /* lost").state, -12);
    EXPECT_EQ(Scan("{ /* kept").state, 20);
}

TEST(JavaScriptScanner, TakesAnUnknownStateForStart) {
    for (int state = 6; state <= 15; ++state)
        EXPECT_EQ(Tokens(Scan("1", state)), "0+1:3 ") << state;
}

// No line ends in these states, but a line's state is an integer that anyone may write.
TEST(JavaScriptScanner, GoesOnInsideATokenWhenTheStateBeforeSaysSo) {
    EXPECT_EQ(Tokens(Scan("12 3", 1)), "0+2:3 3+1:3 ");
    EXPECT_EQ(Tokens(Scan("var", 2)), "0+3:7 ");
    EXPECT_EQ(Tokens(Scan("'a' 1", 3)), "0+1:4 ");
    EXPECT_EQ(Tokens(Scan("a/ 1", 5)), "0+2:4 3+1:3 ");
    for (int state = 0; state <= 15; ++state)
        EXPECT_GE(Scan("", state).state, 0) << state;
}

TEST(JavaScriptScanner, KeepsTokensInsideTheLine) {
    const char* const lines[] = {"//", "a //", "/*", "a /*", "'",   "\"",   "/",
                                 "*/", "1",    "\\", "'\\'", "/ /", "/**/", "/*/"};
    for (const char* text : lines) {
        for (int state = -1; state <= 15; ++state) {
            for (const ScriptToken& token : Scan(text, state).tokens) {
                EXPECT_GE(token.start, 0) << text;
                EXPECT_GT(token.length, 0) << text;
                EXPECT_LE(token.start + token.length, static_cast<int>(strlen(text))) << text;
            }
        }
    }
}

TEST(JavaScriptScanner, CountsDepthsToTheEndOfTheirBits) {
    const int deepest = PackLineState(ScanState::Start, (1 << 27) - 1);
    EXPECT_GT(deepest, 0);
    EXPECT_LT(Scan("{", deepest).state, 0);
    EXPECT_EQ(Scan("}", deepest).state, deepest - 16);
}

TEST(JavaScriptScanner, TakesALineOfAMillionCharacters) {
    const QString text = QStringLiteral("var a = { b: 1 }; ").repeated(60000);
    const ScannedLine line = ScanLine(text, -1, Words());
    EXPECT_EQ(line.brackets.size(), 120000);
    EXPECT_EQ(line.state, 0);
}

TEST(JavaScriptScanner, TakesLettersDigitsAndSpacesOfEveryScript) {
    EXPECT_EQ(Tokens(ScanLine(QStringLiteral("h\u00e9 \u0663\u0664\u00a0\u00fcvar"), -1, Words())), "3+2:3 ");
}
