#include "CompletionText.h"

#include <QStandardItemModel>

#include <gtest/gtest.h>

namespace {

/// The text with the caret where it goes.
std::string Inserted(const char* text) {
    QString shown = QString::fromLatin1(text);
    const int offset = CaretOffset(shown);
    return shown.insert(offset > 0 ? offset : shown.length(), QLatin1Char('|')).toStdString();
}

std::string TextOfEntry(const QVariant& inserted) {
    QStandardItemModel table;
    auto* item = new QStandardItem(QStringLiteral("shown"));
    item->setData(inserted, Qt::UserRole);
    table.appendRow(item);
    return CompletionText(table.index(0, 0)).toStdString();
}

} // namespace

TEST(CompletionText, PutsTheCaretBetweenTheFirstPairOfQuotes) {
    EXPECT_EQ(Inserted("SetValue( \"\", \"\" );"), "SetValue( \"|\", \"\" );");
}

TEST(CompletionText, PutsTheCaretBeforeAFirstCommaThatComesBeforeTheQuotes) {
    EXPECT_EQ(Inserted("PerformAsync(  , \"\" );"), "PerformAsync( | , \"\" );");
    EXPECT_EQ(Inserted("EnumStringToIndex( , \"\" );"), "EnumStringToIndex(| , \"\" );");
}

TEST(CompletionText, PutsTheCaretOneCharacterBeforeTheFirstCommaWithoutQuotes) {
    EXPECT_EQ(Inserted("SetInterval(  , 1000 );"), "SetInterval( | , 1000 );");
}

TEST(CompletionText, PutsTheCaretBehindATextWithoutEither) {
    EXPECT_EQ(Inserted("CreateSocket();"), "CreateSocket();|");
    EXPECT_EQ(Inserted(""), "|");
}

TEST(CompletionText, TakesNoSignAtTheVeryBeginningAndNoCommaBehindOneCharacter) {
    EXPECT_EQ(Inserted("\"a\""), "\"a\"|");
    EXPECT_EQ(Inserted(",a"), ",a|");
    EXPECT_EQ(Inserted("a,b"), "a,b|");
    EXPECT_EQ(Inserted("ab,c"), "a|b,c");
    EXPECT_EQ(Inserted("a,\"b\""), "a,\"|b\"");
    EXPECT_EQ(Inserted("\"ab\",c"), "\"ab|\",c");
}

TEST(CompletionText, InsertsWhatTheEntryShowsUnlessItHasATextToInsert) {
    EXPECT_EQ(TextOfEntry(QStringLiteral("inserted")), "inserted");
    EXPECT_EQ(TextOfEntry(QVariant()), "shown");
    EXPECT_EQ(TextOfEntry(QVariant(QString())), "shown");
    EXPECT_EQ(TextOfEntry(QStringLiteral("")), "");
    EXPECT_EQ(CompletionText(QModelIndex()).toStdString(), "");
}
