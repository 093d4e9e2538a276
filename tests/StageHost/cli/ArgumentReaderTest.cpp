#include "ArgumentReader.h"

#include <gtest/gtest.h>

using namespace stagehost;

namespace {

QStringList Words(const char* line) {
    return QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

Options Read(const char* line) {
    ArgumentReader reader;
    EXPECT_EQ(reader.Read(Words(line)).toStdString(), "") << line;
    return reader.Result();
}

std::string ProblemOf(const char* line) {
    return ArgumentReader().Read(Words(line)).toStdString();
}

} // namespace

TEST(ArgumentReader, FindsOptionsAnywhere) {
    for (const char* line :
         {"--timeout 5 --json check a.js", "check --json --timeout=5 a.js", "check a.js --timeout 5 --json"}) {
        const Options options = Read(line);
        EXPECT_EQ(options.command, QStringLiteral("check"));
        EXPECT_EQ(options.arguments, Words("a.js"));
        EXPECT_EQ(options.timeout.count(), 5);
        EXPECT_TRUE(options.json);
    }
}

TEST(ArgumentReader, GivesAllWordsBehindTheFunctionToTheFunction) {
    const Options options = Read("--timeout 7 exec --link older a.js f -5 --json --timeout 9 -- --x -h");
    EXPECT_EQ(options.arguments, Words("a.js f -5 --json --timeout 9 -- --x -h"));
    EXPECT_EQ(options.timeout.count(), 7);
    EXPECT_EQ(options.link, Link::Older);
    EXPECT_FALSE(options.json);
    EXPECT_FALSE(options.help);
}

TEST(ArgumentReader, TakesWordsBehindTwoDashesAsTheyAre) {
    EXPECT_EQ(Read("exec -- -a.js --f -5").arguments, Words("-a.js --f -5"));
    EXPECT_EQ(Read("check -- --json").arguments, Words("--json"));
}

TEST(ArgumentReader, TakesAnyNumberOfSettings) {
    EXPECT_EQ(Read("send --set a=1 s.json --set=d.b=x=y d c").sets, Words("a=1 d.b=x=y"));
    EXPECT_EQ(Read("exec --set a=-1 a.js f --set b=2").sets, Words("a=-1")) << "the rest is the function's";
    EXPECT_EQ(ProblemOf("check a.js --set a"), "--set needs NAME=VALUE or DEVICE.NAME=VALUE, not \"a\"");
    EXPECT_EQ(ProblemOf("check a.js --set =a"), "--set needs NAME=VALUE or DEVICE.NAME=VALUE, not \"=a\"");
}

TEST(ArgumentReader, ReadsEveryLink) {
    EXPECT_EQ(Read("check a").link, Link::Both);
    EXPECT_EQ(Read("check a --link both").link, Link::Both);
    EXPECT_EQ(Read("check a --link newer").link, Link::Newer);
    EXPECT_EQ(Read("check a --link older").link, Link::Older);
    EXPECT_EQ(Read("check a --link none").link, Link::None);
}

TEST(ArgumentReader, SaysWhatIsWrong) {
    EXPECT_NE(ProblemOf("--timeout x check a").find("--timeout"), std::string::npos);
    EXPECT_NE(ProblemOf("--timeout 0 check a").find("--timeout"), std::string::npos);
    EXPECT_NE(ProblemOf("--timeout -5 check a").find("--timeout"), std::string::npos);
    EXPECT_NE(ProblemOf("--timeout 99999999999 check a").find("--timeout"), std::string::npos);
    EXPECT_NE(ProblemOf("check a --link all").find("--link"), std::string::npos);
    EXPECT_NE(ProblemOf("check a --wrong").find("wrong"), std::string::npos);
    EXPECT_NE(ProblemOf("check a --timeout").find("timeout"), std::string::npos);
    EXPECT_NE(ProblemOf("check --json=1 a").find("json"), std::string::npos);
}
