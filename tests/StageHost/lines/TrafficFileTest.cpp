#include <gtest/gtest.h>

#include <QJsonDocument>

#include "TrafficFixture.h"

using namespace stagehost;

namespace {

class TrafficFiles : public testing::Test, protected TrafficFixture {
protected:
    /// "request -> answer answer; request -> ..." of the first connection.
    std::string Exchanges(const QByteArray& lines, const char* kind = "tcp") {
        QStringList texts;
        const TrafficFile file = Read(lines, kind);
        if (file.talks.empty())
            return "none";
        for (const TrafficExchange& exchange : file.talks.front().exchanges) {
            QString text = exchange.request.ForPeople() + QStringLiteral(" ->");
            for (const TrafficAnswer& answer : exchange.answers)
                text += QLatin1Char(' ') +
                        (answer.what == TrafficAnswer::What::Say ? answer.bytes.ForPeople() : QStringLiteral("(end)"));
            texts += text;
        }
        return texts.join(QStringLiteral("; ")).toStdString();
    }
};

TrafficPattern Pattern(const char* json) {
    TrafficPattern pattern;
    EXPECT_EQ(pattern.Read(QJsonDocument::fromJson(json).object()).toStdString(), "");
    return pattern;
}

/// "whole 5", "begins", "no".
std::string Fit(const TrafficPattern& pattern, const QByteArray& bytes, FreePlaces places = {}) {
    const TrafficPattern::Match match = pattern.Fits(bytes, places);
    if (match.kind == TrafficPattern::Match::Whole)
        return "whole " + std::to_string(match.size);
    return match.kind == TrafficPattern::Match::Begins ? "begins" : "no";
}

} // namespace

TEST_F(TrafficFiles, ARequestHasTheAnswersThatFollowIt) {
    EXPECT_EQ(Exchanges(Device("hello") + Program("a") + Device("1") + Device("2") + Program("b") +
                        R"({"connection":1,"event":"ended","by":"device"})" + "\n"),
              "a -> 1 2; b -> (end)");
}

TEST_F(TrafficFiles, WhatComesBeforeAnyRequestIsTheGreeting) {
    const TrafficFile file = Read(Device("PJLINK 0\\r") + Program("x"));
    ASSERT_EQ(file.talks.size(), 1U);
    ASSERT_EQ(file.talks.front().greeting.size(), 1U);
    EXPECT_EQ(file.talks.front().greeting.front().bytes.ForPeople().toStdString(), "PJLINK 0\\r");
}

TEST_F(TrafficFiles, ARequestInPiecesIsOneButDatagramsStayApart) {
    EXPECT_EQ(Exchanges(Program("ab") + Program("c") + Device("1")), "abc -> 1");
    EXPECT_EQ(Exchanges(Program("ab") + Program("c") + Device("1"), "udp"), "ab ->; c -> 1");
}

TEST_F(TrafficFiles, LinesThatWereAskedAndAnsweredTogetherArePartedAndOthersAreNot) {
    EXPECT_EQ(Exchanges(Program("a?\\rb?\\r") + Device("a=1\\rb=2\\r")), "a?\\r -> a=1\\r; b?\\r -> b=2\\r");
    EXPECT_EQ(Exchanges(Program("a?\\rb?\\r") + Device("both\\r")), "a?\\rb?\\r -> both\\r");
    EXPECT_EQ(Exchanges(Program("GET /\\n\\n") + Device("ok\\n\\n")), "GET /\\n\\n -> ok\\n\\n");
}

TEST_F(TrafficFiles, TimesBetweenWhatGoesByAreKept) {
    const TrafficFile file = Read(R"({"at":1.5,"connection":1,"from":"program","text":"a"})"
                                  "\n"
                                  R"({"at":1.75,"connection":1,"from":"device","text":"1"})"
                                  "\n"
                                  R"({"at":1.7,"connection":1,"from":"device","text":"2"})"
                                  "\n");
    const auto& answers = file.talks.front().exchanges.front().answers;
    ASSERT_EQ(answers.size(), 2U);
    EXPECT_EQ(answers[0].delay, 250);
    EXPECT_EQ(answers[1].delay, 0);
}

TEST_F(TrafficFiles, WhatIsWrongIsToldWithItsLine) {
    EXPECT_EQ(Problem(Program("a") + "{"), ":3: unterminated object");
    EXPECT_EQ(Problem(R"({"connection":1,"from":"nobody","text":"a"})"),
              ":2: \"from\": expected \"program\" or \"device\"");
    EXPECT_EQ(Problem(R"({"connection":1,"event":"opend"})"), ":2: there is no event \"opend\"");
    EXPECT_EQ(Problem(R"({"connection":1,"from":"device"})"), ":2: expected \"text\", \"hex\" or \"parts\"");
    EXPECT_EQ(Problem(R"({"connection":1,"from":"program","parts":[{"free":"[0-9"}]})").substr(0, 17),
              ":2: \"free\": [0-9:");
    EXPECT_EQ(Problem(R"({"connection":1,"from":"program","parts":[{"free":true}]})"),
              ":2: \"free\": expected a regular expression or a count of bytes");
    EXPECT_EQ(Problem(R"({"at":"now","connection":1,"from":"device","text":""})"), ":2: \"at\": expected seconds");
    EXPECT_EQ(Problem(R"({"connection":1,"from":"program","parts":[{"free":"[0-9]+","as":"id"}]})"
                      "\n"
                      R"({"connection":1,"from":"device","parts":[{"same":"di"}]})"),
              ":3: \"same\": no free place of this file has the name \"di\" (\"as\")");
    for (const char* counting :
         {R"~(([a-z])\\1)~", R"~((?<id>[0-9]+))~", R"~((?1)x)~", R"~(\\k<id>)~", R"~((?P<id>.))~"})
        EXPECT_NE(Problem(QByteArray(R"({"connection":1,"from":"program","parts":[{"free":")") + counting + "\"}]}")
                      .find("groups have no names here"),
                  std::string::npos)
            << counting;
    for (const char* plain : {R"~((?:a|b)(?<=b))~", R"~(\\\\1)~", R"~([0-9]{1,3}(a))~"})
        EXPECT_EQ(Problem(QByteArray(R"({"connection":1,"from":"program","parts":[{"free":")") + plain + "\"}]}"), "")
            << plain;
    EXPECT_EQ(Problem(R"({"connection":1,"from":"device","parts":[{"free":4}]})"),
              ":2: \"free\": of what the program says; an answer has \"same\"");
    EXPECT_EQ(Problem(R"({"connection":1,"from":"device","parts":[{"same":1}]})"),
              ":2: \"same\": expected the name of a free place");
    EXPECT_EQ(Problem({}, "can"), ":1: \"kind\": expected \"tcp\", \"udp\" or \"serial\"");
    EXPECT_EQ(Problem("\n" + Program("a") + "\n"), "");
}

TEST(TrafficPatterns, FitBytesHoweverMuchHasCome) {
    const TrafficPattern plain(QByteArray("%1POWR ?\r"));
    EXPECT_EQ(Fit(plain, "%1POWR ?\r%1"), "whole 9");
    EXPECT_EQ(Fit(plain, "%1PO"), "begins");
    EXPECT_EQ(Fit(plain, "%1PI"), "no");
}

TEST(TrafficPatterns, AFreePlaceTakesWhatItsExpressionTakes) {
    const TrafficPattern counter = Pattern(R"({"parts":["n",{"free":"[0-9]+"},"\r"]})");
    EXPECT_EQ(Fit(counter, "n17\rn18"), "whole 4");
    EXPECT_EQ(Fit(counter, "n1"), "begins");
    EXPECT_EQ(Fit(counter, "n\r"), "no");
    const TrafficPattern four = Pattern(R"({"parts":[{"hex":"01"},{"free":4},{"hex":"ff"}]})");
    EXPECT_EQ(Fit(four, QByteArray("\x01\x00\n\xFF\x80\xFF", 6)), "whole 6");
    EXPECT_EQ(Fit(four, QByteArray("\x01\x00", 2)), "begins");
    EXPECT_EQ(Fit(four, QByteArray("\x01\x00\x00\x00\x00\x00", 6)), "no");
}

TEST(TrafficPatterns, WhatStandsInAFreePlaceIsSaidAgainWhereItIsTheSame) {
    FreePlaces places;
    const TrafficPattern named = Pattern(R"({"parts":["id ",{"free":"[a-z(]+","as":"id"},"\n"]})");
    EXPECT_EQ(named.Fits("id a(c\n", places).size, 7);
    EXPECT_EQ(Pattern(R"({"parts":["ok ",{"same":"id"}]})").Filled(places).toStdString(), "ok a(c");
    EXPECT_EQ(Fit(Pattern(R"({"parts":["end ",{"same":"id"},"."]})"), "end a(c.", places), "whole 8");
}

TEST(TrafficPatterns, ExpressionsSeeBytes) {
    EXPECT_EQ(Fit(Pattern(R"({"parts":[{"free":"[\\x80-\\xff]{2}"},"!"]})"), "\xC3\xBC!"), "whole 3");
}
