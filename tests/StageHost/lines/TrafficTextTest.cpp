#include "TrafficText.h"

#include <gtest/gtest.h>

#include <QJsonDocument>

using namespace stagehost;

namespace {

std::string Json(const QByteArray& bytes) {
    return QJsonDocument(BytesToJson(bytes)).toJson(QJsonDocument::Compact).toStdString();
}

QByteArray Bytes(const char* json, QString* problem = nullptr) {
    QByteArray bytes;
    QString why;
    const bool isRead = BytesFromJson(QJsonDocument::fromJson(json).object(), bytes, why);
    if (problem != nullptr)
        *problem = isRead ? QString() : why;
    return bytes;
}

} // namespace

TEST(TrafficText, TextStaysText) {
    EXPECT_EQ(Json("%1POWR 1\r"), R"({"text":"%1POWR 1\r"})");
    EXPECT_EQ(Json("gr\xC3\xBC\xC3\x9F\n"), "{\"text\":\"gr\xC3\xBC\xC3\x9F\\n\"}");
    EXPECT_EQ(Json(""), R"({"text":""})");
}

TEST(TrafficText, WhatIsNoTextBecomesHex) {
    EXPECT_EQ(Json(QByteArray("\x02PON\x03", 5)), R"({"hex":"02 50 4f 4e 03"})");
    EXPECT_EQ(Json("\xFF\xFE"), R"({"hex":"ff fe"})");
    EXPECT_EQ(Json(QByteArray(1, '\0')), R"({"hex":"00"})");
}

TEST(TrafficText, LongerRunsOfTextAmongOtherBytesCanBeRead) {
    EXPECT_EQ(Json(QByteArray("/fader\0\0,i\0\0", 12)), R"({"parts":["/fader",{"hex":"00 00 2c 69 00 00"}]})");
    EXPECT_EQ(Json(QByteArray("\x02POWR\x03", 6)), R"({"parts":[{"hex":"02"},"POWR",{"hex":"03"}]})");
}

TEST(TrafficText, BrokenCharactersAreNoText) {
    for (const char* broken : {"\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xC2\x85", "\x7F", "\x1B"})
        EXPECT_EQ(Json(broken).substr(0, 6), "{\"hex\"") << Json(broken);
}

TEST(TrafficText, EveryByteComesBack) {
    QByteArray all;
    for (int number = 0; number < 256; ++number)
        all += static_cast<char>(number);
    all += "\xEF\xBF\xBDtext\xF0\x9F\x8E\xAD\xEF\xBB\xBF";
    EXPECT_EQ(Bytes(Json(all).c_str()), all);
    for (int size = 0; size < all.size(); ++size)
        EXPECT_EQ(Bytes(Json(all.right(size)).c_str()), all.right(size)) << size;
}

TEST(TrafficText, WhatAPersonGetsWrongIsTold) {
    QString problem;
    Bytes(R"({"hex":"0"})", &problem);
    EXPECT_EQ(problem.toStdString(), "\"hex\": expected pairs of hexadecimal digits");
    Bytes(R"({"hex":"0g"})", &problem);
    EXPECT_EQ(problem.toStdString(), "\"hex\": expected pairs of hexadecimal digits");
    Bytes(R"({"hex":"+1"})", &problem);
    EXPECT_EQ(problem.toStdString(), "\"hex\": expected pairs of hexadecimal digits");
    Bytes(R"({"txt":""})", &problem);
    EXPECT_EQ(problem.toStdString(), "expected \"text\", \"hex\" or \"parts\"");
    Bytes(R"({"parts":["a",{"hex":"x"}]})", &problem);
    EXPECT_EQ(problem.toStdString(), "\"hex\": expected pairs of hexadecimal digits");
    Bytes(R"({"parts":["a",7]})", &problem);
    EXPECT_EQ(problem.toStdString(), "expected \"text\", \"hex\" or \"parts\"");
}

TEST(TrafficText, PeopleSeeOneLine) {
    EXPECT_EQ(BytesForPeople(QByteArray("a\\\r\n\t\0\xFF\xC3\xBC", 9)).toStdString(),
              "a\\\\\\r\\n\\t\\x00\\xff\xC3\xBC");
}
