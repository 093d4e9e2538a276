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

TEST(PeerLines, KeepTheLastOfTheTrafficInWordsForPeople) {
    PeerLines lines;
    for (int count = 0; count < 30; ++count)
        lines.Take("{\"received\":\"early\"}\n");
    lines.Take("{\"ready\":true,\"tcp\":4352}\n{\"opened\":\"127.0.0.1:5\"}\n"
               "{\"received\":\"a\\r\\u0007\\u00ff\",\"line\":1}\n"
               "{\"said\":\"b\",\"line\":1,\"on\":\"control\",\"prank\":\"late\"}\n"
               "{\"unknown\":\"c\\\\r\",\"nearest\":\"d\\\\r\",\"line\":7,\"expected\":\"e\"}\n{\"done\":\"obey\"}"
               "\nsaid no JSON\n");
    lines.Take("{\"said\":\"" + QByteArray(100000, 'x') + "\"}\n");
    const QStringList& traffic = lines.LastTraffic();
    ASSERT_EQ(traffic.size(), 20);
    EXPECT_EQ(traffic.at(15).toStdString(), R"(received "early")");
    EXPECT_EQ(traffic.at(16).toStdString(), R"(received "a\r\x07\xff")");
    EXPECT_EQ(traffic.at(17).toStdString(), R"(on control said "b" (late))");
    EXPECT_EQ(traffic.at(18).toStdString(),
              R"(received what it does not know: "c\r"; expected: "e"; the nearest: "d\r", line 7 of its file)");
    EXPECT_EQ(traffic.at(19).size(), QString(Text("said \"...\"")).size() + 80);
}

TEST(PeerLines, ALineThatIsTooLongIsToldAndTheNextOneRead) {
    PeerLines lines;
    const QByteArray large(1024 * 1024, 'x');
    for (const char* begin : {"{\"received\":\"", "{\"done\":\"call\",\"result\":\""}) {
        lines.Take(begin);
        lines.Take(large);
        lines.Take(large + "\"}\n{\"received\":\"next\"}\n");
        ASSERT_NE(lines.NextReceived(), nullptr);
        EXPECT_EQ(*lines.NextReceived(), Text("next"));
        lines.TakeReceived();
    }
    EXPECT_EQ(lines.TakeProblems(), QStringList(Text("has told a line of 2097167 bytes, and 1048576 are the most that "
                                                     "are read")));
    const auto answer = lines.TakeAnswer();
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->value(Text("refused")).toString(),
              Text("has told a line of 2097179 bytes, and 1048576 are the most that are read"));
}
