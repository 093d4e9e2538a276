#include "HostText.h"

#include <filesystem>

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace {

TEST(ToHostText, KeepsEveryCharacterOfLatin1) {
    QString all;
    QByteArray bytes;
    for (int code = 0; code < 256; ++code) {
        all += QChar(code);
        bytes += static_cast<char>(code);
    }
    EXPECT_EQ(ToHostText(all), bytes);
}

TEST(ToHostText, WritesAQuestionMarkForACharacterBeyondLatin1) {
    EXPECT_EQ(ToHostText(QString(QChar(0x20AC)) + QLatin1Char('5')), QByteArray("?5"));
    EXPECT_EQ(ToHostText(QString(QChar(0x0100))), QByteArray("?"));
}

TEST(ToHostText, OfANullTextIsEmpty) {
    EXPECT_EQ(ToHostText(QString()).size(), 0);
}

TEST(ToHostText, GivesAllOfATextThatFits) {
    EXPECT_TRUE(FitsHostText(QString()));
    EXPECT_TRUE(FitsHostText(QString::fromLatin1("a\x01\xFF")));
    EXPECT_FALSE(FitsHostText(QStringLiteral("a") + QChar(0x100)));
    EXPECT_FALSE(FitsHostText(QString::fromLatin1("a\0b", 3)));
}

TEST(ToFilePath, NamesTheFileThatTheHostMeans) {
    const QTemporaryDir folder;
    QFile file(folder.filePath(QString(QChar(0xE9))));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const QByteArray inHostText = ToHostText(file.fileName());
    EXPECT_TRUE(std::filesystem::exists(ToFilePath(inHostText.constData())));
    EXPECT_EQ(ToFilePath("/plain"), "/plain");
    EXPECT_EQ(ToFilePath(nullptr), "");
}

TEST(FromHostText, TakesEveryByteForACharacterOfLatin1) {
    for (int code = 1; code < 256; ++code) {
        const char text[] = {static_cast<char>(code), '\0'};
        EXPECT_EQ(FromHostText(text), QString(QChar(code))) << code;
    }
}

TEST(FromHostText, DoesNotReadUtf8) {
    EXPECT_EQ(FromHostText("\xC3\xA9").size(), 2);
}

TEST(FromHostText, OfNullIsEmpty) {
    EXPECT_TRUE(FromHostText(nullptr).isEmpty());
}

struct ScriptBytesCase {
    const char* sentence;
    QByteArray bytes;
    QString text;
};

TEST(FromScriptBytes, ReadsUtf8WhenItIsValidAndLatin1Otherwise) {
    const QString eAcute(QChar(0xE9));
    const ScriptBytesCase cases[] = {
        {"no bytes are the empty text", "", QString()},
        {"ASCII is itself", "var a", QStringLiteral("var a")},
        {"valid UTF-8 is read as such", "\xC3\xA9", eAcute},
        {"four bytes are one character of two units", "\xF0\x9F\x8E\xAD", QString::fromUcs4(U"\U0001F3AD", 1)},
        {"a byte order mark is dropped", "\xEF\xBB\xBFx", QStringLiteral("x")},
        {"a lone byte of Latin-1 makes the text Latin-1", "\xE9", eAcute},
        {"one bad byte makes the whole text Latin-1", "\xC3\xA9\xFF", QString(QChar(0xC3)) + QChar(0xA9) + QChar(0xFF)},
        {"a text cut inside a character is Latin-1", "a\xC3", QStringLiteral("a") + QChar(0xC3)},
        {"an overlong form is Latin-1", "\xC0\x80", QString(QChar(0xC0)) + QChar(0x80)},
        {"a NUL stays", QByteArray("a\0b", 3), QString::fromLatin1("a\0b", 3)},
    };
    for (const ScriptBytesCase& row : cases)
        EXPECT_EQ(FromScriptBytes(row.bytes), row.text) << row.sentence;
}

} // namespace
