#include "BufferText.h"

#include <gtest/gtest.h>

namespace {

TEST(BufferText, ReadsTextByTheNameOfTheEncoding) {
    EXPECT_EQ(BytesFromText(QStringLiteral("\u00e9"), QStringLiteral("utf8")), QByteArray("\xc3\xa9"));
    EXPECT_EQ(BytesFromText(QStringLiteral("\u00e9"), QStringLiteral("ascii")), QByteArray("\xe9"));
    EXPECT_EQ(BytesFromText(QStringLiteral("QUI="), QStringLiteral("base64")), QByteArray("AB"));
    EXPECT_EQ(BytesFromText(QStringLiteral("4142"), QStringLiteral("hex")), QByteArray("AB"));
    EXPECT_EQ(BytesFromText(QStringLiteral("\u00e9"), QStringLiteral("HEX")), QByteArray("\xc3\xa9"));
    EXPECT_EQ(BytesFromText(QStringLiteral("\u00e9"), QString()), QByteArray("\xc3\xa9"));
}

TEST(BufferText, EndsUtf8AndAsciiAtTheFirstZeroByteAsIsMeant) {
    const QByteArray bytes("A\0B", 3);
    EXPECT_EQ(TextFromBytes(bytes, QStringLiteral("utf8")), QStringLiteral("A"));
    EXPECT_EQ(TextFromBytes(bytes, QStringLiteral("other")), QStringLiteral("A"));
    EXPECT_EQ(TextFromBytes(bytes, QStringLiteral("ascii")), QStringLiteral("A"));
    EXPECT_EQ(TextFromBytes(bytes, QStringLiteral("hex")), QStringLiteral("410042"));
    EXPECT_EQ(TextFromBytes(bytes, QStringLiteral("base64")), QStringLiteral("QQBC"));
}

TEST(BufferText, LooksAtSevenBitsInAsciiAsIsMeant) {
    EXPECT_EQ(TextFromBytes("\xc1\xc2", QStringLiteral("ascii")), QStringLiteral("AB"));
    EXPECT_EQ(TextFromBytes("A\x80"
                            "B",
                            QStringLiteral("ascii")),
              QStringLiteral("A"));
}

TEST(BufferText, NeverGivesMoreCharactersThanItSays) {
    for (const char* name : {"utf8", "ascii", "base64", "hex", "other"})
        for (int size : {0, 1, 2, 3, 4, 100}) {
            const QString encoding = QString::fromLatin1(name);
            EXPECT_LE(TextFromBytes(QByteArray(size, 'x'), encoding).size(), LongestText(size, encoding))
                << name << size;
        }
}

} // namespace
