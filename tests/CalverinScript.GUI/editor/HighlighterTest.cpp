#include "Highlighter.h"

#include <QPlainTextDocumentLayout>
#include <QTextBlock>
#include <QTextDocument>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "Contrast.h"
#include "EditorColors.h"
#include "JSBlockData.h"

namespace {

class HighlighterTest : public ::testing::Test {
protected:
    HighlighterTest() {
        m_document.setDocumentLayout(new QPlainTextDocumentLayout(&m_document));
        m_highlighter = new Highlighter(&m_document);
    }

    void GivenScript(const char* text) { m_document.setPlainText(QString::fromLatin1(text)); }
    QTextBlock Line(int number) const { return m_document.findBlockByNumber(number - 1); }
    int State(int line) const { return Line(line).userState(); }
    QVector<QTextLayout::FormatRange> AllRuns(int line = 1) const { return Line(line).layout()->formats(); }
    /// Without those of plain black text.
    QVector<QTextLayout::FormatRange> Runs(int line = 1) const {
        QVector<QTextLayout::FormatRange> runs = AllRuns(line);
        QTextCharFormat plain;
        plain.setForeground(QColor(Qt::black));
        const auto end = std::remove_if(runs.begin(), runs.end(), [&](const auto& run) { return run.format == plain; });
        runs.erase(end, runs.end());
        return runs;
    }

    void ExpectRun(int index, int start, int length, const char* color) const {
        const auto runs = Runs();
        ASSERT_LT(index, runs.size());
        EXPECT_EQ(runs[index].start, start);
        EXPECT_EQ(runs[index].length, length);
        EXPECT_EQ(runs[index].format.foreground().color(), QColor(QLatin1String(color)));
    }
    void Replace(int from, int length, const char* text) {
        QTextCursor cursor(&m_document);
        cursor.setPosition(from);
        cursor.setPosition(from + length, QTextCursor::KeepAnchor);
        cursor.insertText(QString::fromLatin1(text));
    }
    QList<int> Brackets(int line) const {
        const auto* data = static_cast<JSBlockData*>(Line(line).userData());
        return data ? data->bracketPositions : QList<int>{-1};
    }

    QTextDocument m_document;
    Highlighter* m_highlighter;
};

/// Numbers and texts have the colours that their users know, though these are a little pale on white.
TEST_F(HighlighterTest, ColoursStandOutFromThePaperButForTwoThatAreMeant) {
    for (const ScriptColorEntry& entry : kScriptColors) {
        const double contrast = Contrast(QColor(entry.color), QColor(kPaper));
        if (entry.role == ScriptColor::Number)
            EXPECT_NEAR(contrast, 4.0, 0.05);
        else if (entry.role == ScriptColor::String)
            EXPECT_NEAR(contrast, 3.95, 0.05);
        else
            EXPECT_GE(contrast, 4.5) << static_cast<int>(entry.role);
    }
    EXPECT_GE(Contrast(QColor(kInk), QColor(kPaper)), 4.5);
    EXPECT_GE(Contrast(QColor(kGutterText), QColor(kGutterBackground)), 4.5);
    EXPECT_GE(Contrast(QColor(kInk), QColor(kCurrentLineBase).lighter(kCurrentLineLighter)), 4.5);
}

} // namespace

TEST_F(HighlighterTest, HasOneColourForEachRole) {
    GivenScript("var 12 'a' + /* c */");
    ASSERT_EQ(Runs().size(), 4);
    ExpectRun(0, 0, 3, "#000080");
    ExpectRun(1, 4, 2, "#FF0000");
    ExpectRun(2, 7, 3, "#808080");
    ExpectRun(3, 13, 7, "#008000");
    m_highlighter->setColor(5, QColor(QStringLiteral("#00FF00")));
    ExpectRun(3, 11, 1, "#00FF00");
}

TEST_F(HighlighterTest, GivesEveryCharacterAColourOfTheTable) {
    GivenScript("  var x = (y) + '1'; // z\n\t\n'open");
    for (int line = 1; line <= 3; ++line) {
        int end = 0;
        for (const QTextLayout::FormatRange& run : AllRuns(line)) {
            EXPECT_EQ(run.start, end);
            EXPECT_TRUE(run.format.hasProperty(QTextFormat::ForegroundBrush));
            end = run.start + run.length;
        }
        EXPECT_EQ(end, Line(line).text().length());
    }
}

TEST_F(HighlighterTest, ColoursTheFirstColumnsOfAVeryLongLineAndFollowsItToItsEnd) {
    const QString unit = QStringLiteral("f(1);");
    m_document.setPlainText(unit.repeated(2 * Highlighter::kMostColumns / unit.length()) + QStringLiteral("{/*\nx"));
    const auto runs = Runs();
    ASSERT_EQ(runs.size(), Highlighter::kMostColumns / unit.length());
    EXPECT_EQ(runs.back().start, Highlighter::kMostColumns - 3);
    EXPECT_EQ(AllRuns().back().start + AllRuns().back().length, Line(1).text().length());
    EXPECT_EQ(State(2), 16 + 4);
}

TEST_F(HighlighterTest, ShowsKeywordsInBoldItalicsAndNothingElse) {
    GivenScript("true 12");
    const auto runs = Runs();
    ASSERT_EQ(runs.size(), 2);
    EXPECT_TRUE(runs[0].format.fontItalic());
    EXPECT_EQ(runs[0].format.fontWeight(), 75);
    EXPECT_FALSE(runs[1].format.hasProperty(QTextFormat::FontItalic));
    EXPECT_FALSE(runs[1].format.hasProperty(QTextFormat::FontWeight));
}

TEST_F(HighlighterTest, LeavesNamesInPlainBlackAlsoThatOfTheScriptGlobal) {
    GivenScript("QCalverin Function x1");
    EXPECT_TRUE(Runs().isEmpty());
    ASSERT_EQ(AllRuns().size(), 1);
    EXPECT_EQ(AllRuns()[0].format.foreground().color(), QColor(Qt::black));
}

TEST_F(HighlighterTest, TellsItsKeywords) {
    QStringList keywords = m_highlighter->keywords();
    QStringList expected = DefaultKeywords();
    keywords.sort();
    expected.sort();
    EXPECT_EQ(keywords, expected);
    EXPECT_EQ(keywords.size(), 28);
}

TEST_F(HighlighterTest, TakesOtherKeywordsAndShowsThemAtOnce) {
    GivenScript("var let");
    m_highlighter->setKeywords({QStringLiteral("let")});
    ASSERT_EQ(Runs().size(), 1);
    ExpectRun(0, 4, 3, "#000080");
    EXPECT_EQ(m_highlighter->keywords(), QStringList{QStringLiteral("let")});
}

TEST_F(HighlighterTest, TakesAnotherColourAndShowsItAtOnce) {
    GivenScript("12 var");
    m_highlighter->setColor(3, QColor(QStringLiteral("#123456")));
    m_highlighter->setColor(7, QColor(QStringLiteral("#abcdef")));
    ExpectRun(0, 0, 2, "#123456");
    ExpectRun(1, 3, 3, "#abcdef");
    EXPECT_TRUE(Runs()[1].format.fontItalic());
}

TEST_F(HighlighterTest, TakesAColourForANumberThatNothingUses) {
    GivenScript("12");
    m_highlighter->setColor(10, QColor(QStringLiteral("#123456")));
    ExpectRun(0, 0, 2, "#FF0000");
}

TEST_F(HighlighterTest, MarksNothingAtStartAndWithAnEmptyText) {
    GivenScript("abc");
    EXPECT_TRUE(Runs().isEmpty());
    m_highlighter->mark(QString(), Qt::CaseSensitive);
    EXPECT_TRUE(Runs().isEmpty());
}

TEST_F(HighlighterTest, MarksEachOccurrenceOverTheColoursOfTheScript) {
    GivenScript("var cover\nvar");
    m_highlighter->mark(QStringLiteral("V"), Qt::CaseInsensitive);
    const auto runs = Runs();
    ASSERT_EQ(runs.size(), 3);
    EXPECT_EQ(runs[0].start, 0);
    EXPECT_EQ(runs[0].length, 1);
    EXPECT_EQ(runs[0].format.background(), QBrush(QColor(QStringLiteral("#000000")), Qt::SolidPattern));
    EXPECT_EQ(runs[0].format.foreground(), QBrush(QColor(QStringLiteral("#000000")), Qt::SolidPattern));
    EXPECT_FALSE(runs[0].format.fontItalic());
    EXPECT_EQ(runs[1].start, 1);
    EXPECT_TRUE(runs[1].format.fontItalic());
    EXPECT_EQ(runs[2].start, 6);
    EXPECT_EQ(Runs(2).size(), 2);
}

TEST_F(HighlighterTest, MarksWithTheCaseItWasTold) {
    GivenScript("aAa");
    m_highlighter->mark(QStringLiteral("A"), Qt::CaseSensitive);
    ASSERT_EQ(Runs().size(), 1);
    EXPECT_EQ(Runs()[0].start, 1);
    m_highlighter->mark(QStringLiteral("A"), Qt::CaseInsensitive);
    ASSERT_EQ(Runs().size(), 1);
    EXPECT_EQ(Runs()[0].length, 3);
}

TEST_F(HighlighterTest, MarksOverlappingOccurrences) {
    GivenScript("xababay");
    m_highlighter->mark(QStringLiteral("aba"), Qt::CaseSensitive);
    ASSERT_EQ(Runs().size(), 1);
    EXPECT_EQ(Runs()[0].start, 1);
    EXPECT_EQ(Runs()[0].length, 5);
}

TEST_F(HighlighterTest, MarksInTheColoursOfTheTable) {
    GivenScript("a");
    m_highlighter->setColor(12, QColor(QStringLiteral("#ffff00")));
    m_highlighter->setColor(1, QColor(QStringLiteral("#111111")));
    m_highlighter->mark(QStringLiteral("a"), Qt::CaseSensitive);
    EXPECT_EQ(Runs()[0].format.background().color(), QColor(QStringLiteral("#ffff00")));
    EXPECT_EQ(Runs()[0].format.foreground().color(), QColor(QStringLiteral("#111111")));
}

TEST_F(HighlighterTest, KeepsTheColumnsOfCurlyBracesAtTheirLine) {
    GivenScript("a { b } {\nplain\n}");
    EXPECT_EQ(Brackets(1), (QList<int>{2, 6, 8}));
    EXPECT_EQ(Line(2).userData(), nullptr);
    EXPECT_EQ(Brackets(3), QList<int>{0});
}

TEST_F(HighlighterTest, SeesNoBracesInTextsAndComments) {
    GivenScript("'{' /*{*/ /{/ // {");
    EXPECT_EQ(Line(1).userData(), nullptr);
    EXPECT_EQ(State(1), 0);
}

TEST_F(HighlighterTest, LeavesALineThatHasLostItsBracesItsOldColumnsAsIsMeant) {
    GivenScript("a {");
    Replace(2, 1, "");
    EXPECT_EQ(m_document.toPlainText(), QStringLiteral("a "));
    EXPECT_EQ(Brackets(1), QList<int>{2});
    EXPECT_EQ(State(1), 0);
}

TEST_F(HighlighterTest, TakesNewColumnsInTheOldRecord) {
    GivenScript("a {");
    const QTextBlockUserData* before = Line(1).userData();
    Replace(0, 1, "abc");
    EXPECT_EQ(Line(1).userData(), before);
    EXPECT_EQ(Brackets(1), QList<int>{4});
}

TEST_F(HighlighterTest, CarriesDepthAndCommentIntoTheLinesBelow) {
    GivenScript("{\n{ /*\nx\n*/ }\n}");
    EXPECT_EQ(State(1), 16);
    EXPECT_EQ(State(2), 36);
    EXPECT_EQ(State(3), 36);
    EXPECT_EQ(State(4), 16);
    EXPECT_EQ(State(5), 0);
}

TEST_F(HighlighterTest, LosesDepthAndCommentBehindAnUnmatchedBraceAsIsMeant) {
    GivenScript("} /* open\n12 {\n");
    EXPECT_EQ(State(1), -12);
    ASSERT_EQ(Runs(2).size(), 1);
    EXPECT_EQ(Runs(2)[0].start, 0);
    EXPECT_EQ(Runs(2)[0].length, 2);
    EXPECT_EQ(State(2), 16);
}

TEST_F(HighlighterTest, FollowsAnEditThroughTheLinesBelow) {
    GivenScript("a\nb\nc\n1");
    Replace(0, 1, "/*");
    for (int line = 1; line <= 4; ++line) {
        EXPECT_EQ(State(line), 4) << line;
        ASSERT_EQ(Runs(line).size(), 1) << line;
        EXPECT_EQ(Runs(line)[0].format.foreground().color(), QColor(QStringLiteral("#008000"))) << line;
    }
    Replace(0, 2, "");
    EXPECT_EQ(State(4), 0);
    EXPECT_TRUE(Runs(2).isEmpty());
    EXPECT_EQ(Runs(4)[0].format.foreground().color(), QColor(QStringLiteral("#FF0000")));
}

TEST_F(HighlighterTest, BelongsToItsDocument) {
    EXPECT_EQ(m_highlighter->parent(), &m_document);
}

TEST_F(HighlighterTest, TakesItsColoursAlongWhenItGoes) {
    GivenScript("var a");
    delete m_highlighter;
    EXPECT_TRUE(Runs().isEmpty());
    Replace(0, 0, "var ");
    EXPECT_TRUE(Runs().isEmpty());
}
