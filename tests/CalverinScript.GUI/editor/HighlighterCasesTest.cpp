#include <QApplication>
#include <QDir>
#include <QFile>
#include <QPlainTextDocumentLayout>
#include <QTextBlock>
#include <QTextDocument>

#include <gtest/gtest.h>

#include "Highlighter.h"
#include "JSBlockData.h"

// Each highlighter/NAME.js is shown in a document and compared with NAME.expected. Of every line that has a picture with
// one letter for each character, '|', the state of the line, and the columns of its curly braces if it has any:
//
//     var x = 1; {        k keyword, n number, s text or regular expression, c comment, o operator,
//     kkk   o no  |16 11  blank: the default colour
namespace {

/// Black at first, as plain text is: another colour tells them apart here.
const QColor kOperatorColor(1, 1, 1);

char LetterOf(const QTextCharFormat& format) {
    const QColor color = format.foreground().color();
    if (color == kOperatorColor)
        return 'o';
    for (const ScriptColorEntry& entry : kScriptColors) {
        if (QColor(entry.color) != color)
            continue;
        switch (entry.role) {
        case ScriptColor::Comment:
            return 'c';
        case ScriptColor::Number:
            return 'n';
        case ScriptColor::String:
            return 's';
        case ScriptColor::Normal:
            return ' ';
        case ScriptColor::Keyword:
            return format.fontItalic() && format.fontWeight() == QFont::Bold ? 'k' : '?';
        default:
            return '?';
        }
    }
    return '?';
}

QString PictureOf(const QTextBlock& block) {
    QString picture(block.text().length(), QLatin1Char('?'));
    const auto runs = block.layout()->formats();
    for (const QTextLayout::FormatRange& run : runs) {
        for (int column = run.start; column < run.start + run.length; ++column)
            picture[column] = QLatin1Char(LetterOf(run.format));
    }
    picture += QLatin1Char('|') + QString::number(block.userState());
    if (const auto* data = static_cast<JSBlockData*>(block.userData())) {
        for (const int column : data->bracketPositions)
            picture += QLatin1Char(' ') + QString::number(column);
    }
    return picture;
}

QString ReadAll(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    QString text = QString::fromUtf8(file.readAll());
    if (text.endsWith(QLatin1Char('\n')))
        text.chop(1);
    return text;
}

const QString kFolder = QStringLiteral(CALVERIN_HIGHLIGHTER_CASES);

std::vector<std::string> CaseNames() {
    std::vector<std::string> names;
    const QStringList files = QDir(kFolder).entryList({QStringLiteral("*.js")}, QDir::Files, QDir::Name);
    for (const QString& file : files)
        names.push_back(file.chopped(3).toStdString());
    return names;
}

class HighlighterCases : public ::testing::TestWithParam<std::string> {};

} // namespace

TEST_P(HighlighterCases, LooksAsExpected) {
    const QString path = kFolder + QLatin1Char('/') + QString::fromStdString(GetParam());
    QTextDocument document;
    document.setDocumentLayout(new QPlainTextDocumentLayout(&document));
    Highlighter highlighter(&document);
    highlighter.setColor(static_cast<int>(ScriptColor::Operator), kOperatorColor);
    document.setPlainText(ReadAll(path + QStringLiteral(".js")));

    const QStringList expected = ReadAll(path + QStringLiteral(".expected")).split(QLatin1Char('\n'));
    ASSERT_EQ(document.blockCount(), expected.size());
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        EXPECT_EQ(PictureOf(block).toStdString(), expected[block.blockNumber()].toStdString())
            << "line " << block.blockNumber() + 1 << ": " << block.text().toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Files, HighlighterCases, ::testing::ValuesIn(CaseNames()),
                         [](const auto& testCase) { return testCase.param; });

TEST(HighlighterCaseFiles, AreThere) {
    EXPECT_GE(CaseNames().size(), 15u);
}
