#include "NearNames.h"

#include <gtest/gtest.h>

using namespace stagehost;

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

QStringList Words(const char* text) {
    return Text(text).split(QLatin1Char(' '));
}

} // namespace

TEST(NearNames, CountsLettersThatAreMissingTooManyChangedOrExchanged) {
    EXPECT_EQ(DistanceBetween(Text("Level"), Text("Level")), 0);
    EXPECT_EQ(DistanceBetween(Text("Level"), Text("level")), 0) << "letter case is no distance";
    EXPECT_EQ(DistanceBetween(Text("Levl"), Text("Level")), 1);
    EXPECT_EQ(DistanceBetween(Text("Levvel"), Text("Level")), 1);
    EXPECT_EQ(DistanceBetween(Text("Lewel"), Text("Level")), 1);
    EXPECT_EQ(DistanceBetween(Text("Leevl"), Text("Level")), 1);
    EXPECT_EQ(DistanceBetween(Text(""), Text("Level")), 5);
    EXPECT_EQ(DistanceBetween(Text("kitten"), Text("sitting")), 3);
}

TEST(NearNames, FindsTheOneThatWasMeantAndNoneThatIsFar) {
    EXPECT_EQ(NearestName(Text("lihgts"), Words("doorman lights printer")), Text("lights"));
    EXPECT_EQ(NearestName(Text("LIGHTS"), Words("doorman lights")), Text("lights"));
    EXPECT_TRUE(NearestName(Text("sound"), Words("doorman lights")).isNull());
    EXPECT_TRUE(NearestName(Text("sound"), {}).isNull());
}

TEST(NearNames, SaysWhatWasProbablyMeantAndWhatThereIs) {
    EXPECT_EQ(NamesInstead(Text("dsek"), Words("desk printer")),
              Text("; did you mean \"desk\"? There are: desk, printer"));
    EXPECT_EQ(NamesInstead(Text("x"), Words("desk printer")), Text("; there are: desk, printer"));
    EXPECT_EQ(NamesInstead(Text("dsek"), Words("desk")), Text("; did you mean \"desk\"?"));
    EXPECT_EQ(NamesInstead(Text("dsek"), {}), QString());
}

TEST(NearNames, CutsALongList) {
    QStringList many;
    for (int number = 0; number < 40; ++number)
        many += Text("name") + QString::number(number);
    EXPECT_TRUE(NamesInstead(Text("x"), many).endsWith(Text("name10, name11 and 28 more")));
}
