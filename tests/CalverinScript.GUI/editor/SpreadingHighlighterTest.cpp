#include "SpreadingHighlighter.h"

#include <QApplication>
#include <QPlainTextDocumentLayout>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTextBlock>
#include <QTextDocument>

#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "EditorFixture.h"
#include "Highlighter.h"

namespace {

/// More lines than one pass does.
constexpr int kLongScript = 2 * SpreadingHighlighter::kPassCost / SpreadingHighlighter::kLineCost;

std::unique_ptr<QTextDocument> NewDocument() {
    auto document = std::make_unique<QTextDocument>();
    document->setDocumentLayout(new QPlainTextDocumentLayout(document.get()));
    return document;
}

class SpreadingHighlighterTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_document = NewDocument();
        m_highlighter = new Highlighter(m_document.get());
    }

    void GivenLines(int count, const char* line = "var a = 1;\n") {
        m_document->setPlainText(QString::fromLatin1(line).repeated(count));
    }
    void GivenLoadedLines(const char* line) {
        m_highlighter->SpreadLoading([&] { GivenLines(kLongScript, line); });
    }
    void Replace(int from, int length, const QString& text) {
        QTextCursor cursor(m_document.get());
        cursor.setPosition(from);
        cursor.setPosition(from + length, QTextCursor::KeepAnchor);
        cursor.insertText(text);
    }
    void Replace(int from, int length, const char* text) { Replace(from, length, QString::fromLatin1(text)); }
    int StateOfLastLine() const { return m_document->lastBlock().userState(); }
    void Settle() {
        ASSERT_TRUE(WaitUntil([this] { return !m_highlighter->IsSpreading(); }));
    }

    /// A document that got the same text at once is the measure.
    void ExpectAsIfLoadedAtOnce() const {
        const auto fresh = NewDocument();
        Highlighter highlighter(fresh.get());
        fresh->setPlainText(m_document->toPlainText());
        ASSERT_EQ(fresh->blockCount(), m_document->blockCount());
        QTextBlock expected = fresh->begin();
        for (QTextBlock block = m_document->begin(); block.isValid();
             block = block.next(), expected = expected.next()) {
            ASSERT_EQ(block.userState(), expected.userState()) << "line " << block.blockNumber() + 1;
            ASSERT_EQ(block.layout()->formats(), expected.layout()->formats()) << "line " << block.blockNumber() + 1;
        }
    }

    std::unique_ptr<QTextDocument> m_document;
    Highlighter* m_highlighter;
};

} // namespace

TEST_F(SpreadingHighlighterTest, DoesALoadedScriptAtOnce) {
    GivenLines(kLongScript);
    EXPECT_FALSE(m_highlighter->IsSpreading());
    EXPECT_EQ(StateOfLastLine(), 0);
    EXPECT_FALSE(m_document->lastBlock().previous().layout()->formats().isEmpty());
}

TEST_F(SpreadingHighlighterTest, SpreadsALoadedScriptWhenAsked) {
    GivenLoadedLines("} /* \n"); // the first line's depth is -1, a state that a new line has, too
    EXPECT_TRUE(m_highlighter->IsSpreading());
    EXPECT_FALSE(m_document->findBlockByNumber(100).layout()->formats().isEmpty());
    EXPECT_TRUE(m_document->lastBlock().previous().layout()->formats().isEmpty());
    Settle();
    ExpectAsIfLoadedAtOnce();
    Replace(0, 0, QStringLiteral("var b;\n").repeated(kLongScript));
    EXPECT_FALSE(m_document->findBlockByNumber(kLongScript - 1).layout()->formats().isEmpty()) << "only what is loaded";
}

TEST_F(SpreadingHighlighterTest, ComesToTheSameEndWhenALoadedScriptIsEditedMeanwhile) {
    std::mt19937 random(7);
    for (int round = 0; round < 20; ++round) {
        GivenLoadedLines(round % 2 == 0 ? "if (a) { b } /* c */\n" : "} a /* {\n");
        for (int edit = 0; edit < 5; ++edit) {
            const int at = static_cast<int>(random() % (m_document->characterCount() - 1));
            const int length = std::min(static_cast<int>(random() % 9000), m_document->characterCount() - 1 - at);
            Replace(at, length, random() % 2 == 0 ? "/* {\n" : "*/ }");
        }
        Settle();
        ExpectAsIfLoadedAtOnce();
    }
}

TEST_F(SpreadingHighlighterTest, DoesAFewHundredLinesThatFollowAChangeAtOnce) {
    GivenLines(500);
    Replace(0, 0, "/*");
    EXPECT_FALSE(m_highlighter->IsSpreading());
    EXPECT_EQ(StateOfLastLine(), 4);
}

TEST_F(SpreadingHighlighterTest, LeavesLinesFarBelowAChangeForLater) {
    GivenLines(kLongScript);
    Replace(0, 0, "/*");
    EXPECT_EQ(m_document->findBlockByNumber(500).userState(), 4);
    EXPECT_TRUE(m_highlighter->IsSpreading());
    EXPECT_EQ(StateOfLastLine(), 0);
    Settle();
    EXPECT_EQ(StateOfLastLine(), 4);
    ExpectAsIfLoadedAtOnce();
}

TEST_F(SpreadingHighlighterTest, DoesEveryChangedLineAtOnceHoweverMany) {
    GivenLines(kLongScript);
    Replace(0, 0, QStringLiteral("{\n").repeated(kLongScript));
    EXPECT_EQ(m_document->findBlockByNumber(kLongScript - 1).userState(), 16 * kLongScript);
}

TEST_F(SpreadingHighlighterTest, ComesToTheSameEndWhenAChangeIsTakenBackMeanwhile) {
    GivenLines(kLongScript);
    Replace(0, 0, "/*");
    Replace(0, 2, "");
    Settle();
    EXPECT_EQ(StateOfLastLine(), 0);
    ExpectAsIfLoadedAtOnce();
}

TEST_F(SpreadingHighlighterTest, TellsOfAKeystrokeOnceHoweverManyPassesFollowIt) {
    QPlainTextEdit widget;
    auto* highlighter = new Highlighter(widget.document());
    widget.setPlainText(QStringLiteral("var a = 1;\n").repeated(10 * kLongScript));
    int told = 0;
    QObject::connect(&widget, &QPlainTextEdit::textChanged, [&] { ++told; });
    QTextCursor(widget.document()).insertText(QStringLiteral("/*"));
    ASSERT_TRUE(highlighter->IsSpreading());
    ASSERT_TRUE(WaitUntil([&] { return !highlighter->IsSpreading(); }));
    EXPECT_EQ(widget.document()->lastBlock().userState(), 4);
    EXPECT_EQ(told, 1);
}

TEST_F(SpreadingHighlighterTest, CarriesOnBehindALineThatIsJoinedWhileItWaits) {
    GivenLines(kLongScript, "a\n");
    Replace(0, 0, "{");
    ASSERT_TRUE(m_highlighter->IsSpreading());
    int waiting = 0;
    while (m_document->findBlockByNumber(waiting).userState() == 16)
        ++waiting;
    const int seam = m_document->findBlockByNumber(waiting).position();
    Replace(seam - 1, 2, "");
    Settle();
    EXPECT_EQ(StateOfLastLine(), 16);
    ExpectAsIfLoadedAtOnce();
}

TEST_F(SpreadingHighlighterTest, CarriesOnWhenTheWaitingLinesAreRemoved) {
    GivenLines(kLongScript, "a\n");
    Replace(0, 0, "{");
    ASSERT_TRUE(m_highlighter->IsSpreading());
    Replace(1000, kLongScript, "");
    Settle();
    EXPECT_EQ(StateOfLastLine(), 16);
    ExpectAsIfLoadedAtOnce();
}

TEST_F(SpreadingHighlighterTest, ScansTheLineBehindARemovalThatLeavesTheJoinedLineItsState) {
    m_document->setPlainText(QStringLiteral("x\n{ y\nz"));
    ASSERT_EQ(StateOfLastLine(), 16);
    Replace(1, 2, "");
    EXPECT_EQ(m_document->toPlainText(), QStringLiteral("x y\nz"));
    EXPECT_EQ(StateOfLastLine(), 0);
}

TEST_F(SpreadingHighlighterTest, FollowsUndoAndRedo) {
    GivenLines(kLongScript);
    Replace(0, 0, "/*");
    Settle();
    m_document->undo();
    Settle();
    EXPECT_EQ(StateOfLastLine(), 0);
    m_document->redo();
    Settle();
    EXPECT_EQ(StateOfLastLine(), 4);
    ExpectAsIfLoadedAtOnce();
}

TEST_F(SpreadingHighlighterTest, ComesToTheSameEndAfterAnyEdits) {
    const char* const pieces[] = {"/*", "*/", "{", "}", "\n", "\n\n/* x\n", "'", "//", "if (a) {\n b();\n}\n", ""};
    std::mt19937 random(20240601);
    GivenLines(kLongScript, "f({ /* a */ b: 'c' });\n");
    for (int edit = 0; edit < 300; ++edit) {
        const int from = static_cast<int>(random() % static_cast<unsigned>(m_document->characterCount() - 1));
        const int room = m_document->characterCount() - 1 - from;
        const int length = std::min(room, static_cast<int>(random() % 60));
        Replace(edit % 3 ? from : from / 100, std::min(length, room), pieces[random() % std::size(pieces)]);
        if (edit % 7 == 0)
            QApplication::processEvents();
        if (edit % 11 == 0)
            m_document->undo();
    }
    Settle();
    ExpectAsIfLoadedAtOnce();
}

TEST_F(SpreadingHighlighterTest, HighlightsWholeDocumentsAtOnce) {
    GivenLines(kLongScript);
    m_highlighter->setColor(3, Qt::yellow);
    EXPECT_FALSE(m_highlighter->IsSpreading());
    const auto runs = m_document->lastBlock().previous().layout()->formats();
    EXPECT_EQ(runs[2].format.foreground().color(), QColor(Qt::yellow));
}

TEST(SpreadingHighlighterStart, ColoursTheTextThatIsThereAlready) {
    const auto document = NewDocument();
    document->setPlainText(QStringLiteral("1\n").repeated(kLongScript));
    const Highlighter highlighter(document.get());
    EXPECT_EQ(document->begin().userState(), -1);
    ASSERT_TRUE(WaitUntil([&] { return document->lastBlock().userState() == 0; }));
    EXPECT_EQ(document->begin().layout()->formats().size(), 1);
}

TEST(SpreadingHighlighterStart, ColoursTheTextAboveAnEditThatComesFirst) {
    const auto document = NewDocument();
    document->setPlainText(QStringLiteral("1\n2\n3"));
    const Highlighter highlighter(document.get());
    QTextCursor cursor(document->lastBlock());
    cursor.insertText(QStringLiteral("4"));
    ASSERT_TRUE(WaitUntil([&] { return !highlighter.IsSpreading(); }));
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next())
        EXPECT_EQ(block.layout()->formats().size(), 1) << block.blockNumber();
}

TEST(SpreadingHighlighterEnd, MayComeWhileLinesWait) {
    auto document = NewDocument();
    auto* highlighter = new Highlighter(document.get());
    document->setPlainText(QStringLiteral("1\n").repeated(kLongScript));
    QTextCursor(document.get()).insertText(QStringLiteral("/*"));
    ASSERT_TRUE(highlighter->IsSpreading());
    delete highlighter;
    QTextCursor(document.get()).insertText(QStringLiteral("x"));
    EXPECT_TRUE(document->lastBlock().previous().layout()->formats().isEmpty());
}

TEST(SpreadingHighlighterEnd, MayComeWithTheDocumentWhileLinesWait) {
    auto document = NewDocument();
    const QPointer<Highlighter> highlighter = new Highlighter(document.get());
    document->setPlainText(QStringLiteral("1\n").repeated(kLongScript));
    QTextCursor(document.get()).insertText(QStringLiteral("/*"));
    ASSERT_TRUE(highlighter->IsSpreading());
    document.reset();
    EXPECT_TRUE(highlighter.isNull());
    QApplication::processEvents();
}

TEST(SpreadingHighlighterEnd, LetsTheHighlighterBeTakenToAnotherDocument) {
    const auto first = NewDocument();
    const auto second = NewDocument();
    Highlighter highlighter(first.get());
    first->setPlainText(QStringLiteral("1\n").repeated(kLongScript));
    QTextCursor(first.get()).insertText(QStringLiteral("/*"));
    highlighter.setDocument(second.get());
    second->setPlainText(QStringLiteral("{\n1"));
    QTextCursor(first.get()).deleteChar();
    EXPECT_EQ(second->firstBlock().userState(), 16);
    QTextCursor(second.get()).insertText(QStringLiteral("{"));
    EXPECT_EQ(second->lastBlock().userState(), 32);
    ASSERT_TRUE(WaitUntil([&] { return !highlighter.IsSpreading(); }));
    highlighter.setDocument(nullptr);
    QTextCursor(second.get()).insertText(QStringLiteral("y"));
    EXPECT_TRUE(second->lastBlock().layout()->formats().isEmpty());
}
