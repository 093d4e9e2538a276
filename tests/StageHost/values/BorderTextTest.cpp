#include "BorderText.h"

#include <gtest/gtest.h>

using namespace stagehost;

TEST(BorderText, CarriesLatin1BothWays) {
    QString all;
    for (int code = 1; code <= 0xFF; ++code)
        all += QChar(code);
    bool lost = false;
    const std::string border = ToBorderText(all, &lost);
    EXPECT_EQ(border.size(), 255u);
    EXPECT_EQ(static_cast<unsigned char>(border.back()), 0xFFu);
    EXPECT_EQ(FromBorderText(border), all);
    EXPECT_FALSE(lost);
}

TEST(BorderText, WritesOneQuestionMarkForEachCharacterBeyondLatin1) {
    bool lost = false;
    EXPECT_EQ(ToBorderText(QString::fromUtf8("a\xE2\x82\xAC\xF0\x9F\x8E\xADz"), &lost), "a??z");
    EXPECT_TRUE(lost);
}

TEST(BorderText, EndsATextAtANul) {
    bool lost = false;
    EXPECT_EQ(ToBorderText(QStringLiteral("ab") + QChar(0) + QStringLiteral("c"), &lost), "ab");
    EXPECT_TRUE(lost);
}

TEST(BorderText, ReadsOutsideBytesAsUtf8AndElseAsLatin1) {
    EXPECT_EQ(FromOutsideText("\xC3\xA4"), QString(QChar(0xE4)));
    EXPECT_EQ(FromOutsideText("\xE4z"), QString(QChar(0xE4)) + QLatin1Char('z'));
    EXPECT_EQ(FromOutsideText("cut \xC3"), QStringLiteral("cut ") + QChar(0xC3));
}

TEST(BorderText, TakesNullAsTheEmptyText) {
    EXPECT_TRUE(FromBorderText(static_cast<const char*>(nullptr)).isEmpty());
    FreeBorderText(nullptr);
    char* text = CopyBorderText("x");
    FreeBorderText(&text);
    EXPECT_EQ(text, nullptr);
    FreeBorderText(&text);
}
