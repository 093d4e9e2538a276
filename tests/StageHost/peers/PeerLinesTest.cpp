#include "PeerLines.h"

#include <gtest/gtest.h>

using namespace stagehost;

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

} // namespace

TEST(PeerLines, AnyFirstLineOfAProgramSaysThatItIsReady) {
    PeerLines lines;
    lines.Take("rea");
    EXPECT_FALSE(lines.IsReady());
    lines.Take("dy\nmore\n");
    EXPECT_TRUE(lines.IsReady());
    EXPECT_EQ(lines.Find({}), nullptr);
    EXPECT_EQ(lines.NextReceived(), nullptr);
}

TEST(PeerLines, AProblemIsNoSignOfReadinessAndKeepsItsPlace) {
    PeerLines lines;
    lines.Take("{\"problem\":\"fake.js:3: Error: x\",\"place\":[\"| x();\",\"at f (fake.js:3)\"]}\n");
    EXPECT_FALSE(lines.IsReady());
    EXPECT_EQ(lines.TakeProblems(), QStringList(Text("fake.js:3: Error: x\n    | x();\n    at f (fake.js:3)")));
    EXPECT_TRUE(lines.TakeProblems().isEmpty());
}

TEST(PeerLines, ANoteIsNoSignOfReadiness) {
    PeerLines lines;
    lines.Take("{\"note\":\"here I am\"}\n");
    EXPECT_FALSE(lines.IsReady());
    lines.Take("{\"ready\":true,\"tcp\":4352}\n");
    EXPECT_TRUE(lines.IsReady());
    EXPECT_NE(lines.Find({}), nullptr);
}

TEST(PeerLines, TheReadyLineTellsWhereEachEndpointIs) {
    PeerLines lines;
    lines.Take("{\"ready\":true,\"tcp\":4352}\n");
    EXPECT_EQ(lines.Find({})->port, 4352);
    EXPECT_EQ(lines.Find({})->host, Text("127.0.0.1"));
    PeerLines many;
    many.Take(R"({"ready":true,"endpoints":{"control":{"tcp":1,"host":"::1"},"line":{"serial":"/dev/pts/4"}}})"
              "\n");
    EXPECT_EQ(many.Find({}), nullptr) << "which of them is not clear";
    EXPECT_EQ(many.Find(Text("control"))->host, Text("::1"));
    EXPECT_EQ(many.Find(Text("line"))->path, Text("/dev/pts/4"));
    EXPECT_EQ(many.EndpointNames(), (QStringList{Text("control"), Text("line")}));
}

TEST(PeerLines, FramesAreTakenInTheirOrderAndBounded) {
    PeerLines lines;
    for (int number = 0; number < 10005; ++number)
        lines.Take("{\"received\":\"" + QByteArray::number(number) + "\\r\"}\n");
    EXPECT_EQ(*lines.NextReceived(), Text("5\r"));
    lines.TakeReceived();
    EXPECT_EQ(*lines.NextReceived(), Text("6\r"));
}

TEST(PeerLines, ALineWithoutEndIsNotKept) {
    PeerLines lines;
    for (int piece = 0; piece < 20; ++piece)
        lines.Take(QByteArray(100000, 'x'));
    lines.Take("\n{\"done\":\"leave\"}\n");
    const auto answer = lines.TakeAnswer();
    ASSERT_TRUE(answer.has_value());
    EXPECT_EQ(answer->value(Text("done")).toString(), Text("leave"));
    EXPECT_FALSE(lines.TakeAnswer().has_value());
}

TEST(PeerLines, NonsenseIsLeftOut) {
    PeerLines lines;
    lines.Take("{\n{}\n{\"received\":7}\n[1]\n\xff\xfe\n{\"ready\":true,\"tcp\":\"x\"}\n");
    EXPECT_TRUE(lines.IsReady());
    EXPECT_EQ(lines.Find({}), nullptr);
    EXPECT_FALSE(lines.TakeAnswer().has_value());
}
