#include "HttpRequest.h"

#include <string>

#include <gtest/gtest.h>
#include <QUrl>

namespace {

std::string Address(const char* address, const QString& items, int encoding = 0) {
    const QNetworkRequest request = MakeHttpRequest(QString::fromUtf8(address), QString(), items, encoding);
    return request.url().toEncoded().toStdString();
}

std::string Items(const char* items, int encoding = 0) {
    const std::string all = Address("http://h/p", QString::fromUtf8(items), encoding);
    return all.substr(std::string("http://h/p").size());
}

QNetworkRequest WithHeaders(const char* headers) {
    return MakeHttpRequest(QStringLiteral("http://h/"), QString::fromUtf8(headers), QString(), 0);
}

} // namespace

TEST(RequestItems, AnItemWithoutEqualsSignIsLeftOut) {
    EXPECT_EQ(Items("x=1&y&z=2"), "?x=1&z=2");
    EXPECT_EQ(Items("y"), "");
    EXPECT_EQ(Items("&&"), "");
    EXPECT_EQ(Items(""), "");
}

TEST(RequestItems, ThePartsAreCutAtTheFirstEqualsSign) {
    EXPECT_EQ(Items("x=1=2", 1), "?x=1=2");
    EXPECT_EQ(Items("x=1=2"), "?x=1%3D2");
    EXPECT_EQ(Items("x="), "?x=");
    EXPECT_EQ(Items("=1"), "?=1");
}

TEST(RequestItems, JoinAQueryThatIsThere) {
    EXPECT_EQ(Address("http://h/p?a=%261", QStringLiteral("b=2")), "http://h/p?a=%261&b=2");
    EXPECT_EQ(Address("http://h/p?", QStringLiteral("b=2")), "http://h/p?b=2");
    EXPECT_EQ(Address("http://h/p?a=1#end", QStringLiteral("b=2")), "http://h/p?a=1&b=2#end");
}

TEST(RequestItems, PlainOnesAreEncodedWhole) {
    EXPECT_EQ(Items("full name=Ada L"), "?full%20name=Ada%20L");
    EXPECT_EQ(Items("x=50%25"), "?x=50%2525");
    EXPECT_EQ(Items("x=a#b"), "?x=a%23b");
    EXPECT_EQ(Items("x=caf\xC3\xA9"), "?x=caf%C3%A9");
}

TEST(RequestItems, EncodedOnesStayAsTheyAre) {
    EXPECT_EQ(Items("x=50%25+%26", 1), "?x=50%25+%26");
    EXPECT_EQ(Items("x=caf%E9", 1), "?x=caf%E9");
}

TEST(RequestItems, EncodedOnesNeverBreakTheRequestLine) {
    EXPECT_EQ(Items("x=a b\r\nEvil: 1", 1), "?x=a%20b%0D%0AEvil:%201");
    EXPECT_EQ(Items("x=caf\xC3\xA9", 1), "?x=caf%E9");
}

TEST(RequestItems, EveryEncodingNumberButOneMeansPlain) {
    for (const int encoding : {-1, 0, 2, 1000})
        EXPECT_EQ(Items("x=%20", encoding), "?x=%2520") << encoding;
}

TEST(RequestTexts, CharactersBeyondLatin1BecomeQuestionMarks) {
    EXPECT_EQ(Items("x=\xE2\x82\xAC"), "?x=?");
    EXPECT_EQ(WithHeaders("X:\xE2\x82\xAC\xC3\xA9").rawHeader("X").toStdString(), "?\xE9");
}

TEST(RequestHeaders, LinesWithoutColonAreLeftOut) {
    const QNetworkRequest request = WithHeaders("A:1\r\nplain\r\n\r\nB:x:y");
    EXPECT_EQ(request.rawHeaderList().size(), 2);
    EXPECT_EQ(request.rawHeader("A"), "1");
    EXPECT_EQ(request.rawHeader("B"), "x:y");
}

TEST(RequestHeaders, TheLastOfTwoOfOneNameCounts) {
    EXPECT_EQ(WithHeaders("A:1\r\nA:2").rawHeader("A"), "2");
}

TEST(HttpAddress, OnlyHttpAndHttpsGoOut) {
    for (const char* good : {"http://h/", "https://h/", "HTTP://h/", "HttpS://h:1/x"})
        EXPECT_TRUE(IsHttpAddress(QUrl(QString::fromLatin1(good)))) << good;
    for (const char* bad : {"", "file:///etc/passwd", "data:text/plain,x", "ftp://h/", "qrc:/x", "/etc/passwd",
                            "passwd", "preconnect-http://h/", "http2://h/", "://", "http", "h:80"})
        EXPECT_FALSE(IsHttpAddress(QUrl(QString::fromLatin1(bad)))) << bad;
}
