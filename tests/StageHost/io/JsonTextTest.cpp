#include "JsonText.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace stagehost;

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

constexpr const char* kShow = "{\n"
                              "    \"z\": [1, 2.50, \"a]\\\"}\"],\n"
                              "    \"devices\": [\n"
                              "        { \"name\": \"desk\" , \"setup\":\"old \\\" text\" },\n"
                              "        {\n"
                              "            \"name\": \"lamp\"\n"
                              "        }\n"
                              "    ]\n"
                              "}\n";

QByteArray Changed(const char* text, const QStringList& place, const char* name, const QJsonValue& value) {
    JsonText json(text);
    EXPECT_TRUE(json.SetMember(place, Text(name), value));
    EXPECT_FALSE(QJsonDocument::fromJson(json.Text()).isNull()) << json.Text().toStdString();
    return json.Text();
}

} // namespace

TEST(JsonText, ChangesAMemberAndLeavesAllElseAsItIs) {
    QByteArray expected(kShow);
    expected.replace("\"old \\\" text\"", "\"new\\n\"");
    EXPECT_EQ(Changed(kShow, {Text("devices"), Text("0")}, "setup", Text("new\n")), expected);
}

TEST(JsonText, AddsAMemberAsTheLastOneStands) {
    QByteArray expected(kShow);
    expected.replace("\"lamp\"\n", "\"lamp\",\n            \"setup\": \"s\"\n");
    EXPECT_EQ(Changed(kShow, {Text("devices"), Text("1")}, "setup", Text("s")), expected);
    EXPECT_EQ(Changed("{}", {}, "a", 1), QByteArray("{\"a\": 1}"));
    EXPECT_EQ(Changed("{ \"a\": true }", {}, "b", Text("x")), QByteArray("{ \"a\": true, \"b\": \"x\" }"));
}

TEST(JsonText, AddsAnItemBehindTheOthers) {
    JsonText json("{\"list\": [ 1,[2] ], \"empty\": [ ]}");
    EXPECT_TRUE(json.Append({Text("list")}, QJsonObject{{Text("k"), Text("v")}}));
    EXPECT_TRUE(json.Append({Text("empty")}, 5));
    EXPECT_EQ(json.Text(), QByteArray("{\"list\": [ 1,[2], {\"k\":\"v\"} ], \"empty\": [5]}"));
}

TEST(JsonText, KeepsTheMarkInFrontOfItsText) {
    EXPECT_EQ(Changed("\xEF\xBB\xBF {\"a\":1}", {}, "a", 3), QByteArray("\xEF\xBB\xBF {\"a\":3}"));
}

TEST(JsonText, KnowsWhatIsNotThere) {
    JsonText json(kShow);
    EXPECT_FALSE(json.SetMember({Text("devices"), Text("2")}, Text("a"), 1));
    EXPECT_FALSE(json.SetMember({Text("devices")}, Text("a"), 1)) << "a list has no members";
    EXPECT_FALSE(json.Append({Text("nothing")}, 1));
    EXPECT_FALSE(json.Append({}, 1));
    EXPECT_EQ(json.Text(), QByteArray(kShow));
}

TEST(JsonText, ChangesTheLastOfMembersWithOneNameAndThoseWithEscapedNames) {
    EXPECT_EQ(Changed("{\"a\":1,\"a\":2}", {}, "a", 3), QByteArray("{\"a\":1,\"a\":3}"));
    EXPECT_EQ(Changed("{\"\\u0061\":[1,{}]}", {}, "a", 3), QByteArray("{\"\\u0061\":3}"));
}
