#include "ParameterText.h"

#include <gtest/gtest.h>

using namespace stagehost;

TEST(ParameterText, ReadsNamesAndValues) {
    const auto read =
        ReadParameters("<parameters>\n\t<parameter name=\"a\" value=\"1\"/>"
                       "<parameter value='d=e=f' name='b &amp; c'>x</parameter><parameter name='n'/></parameters>\n");
    ASSERT_TRUE(read.has_value());
    ASSERT_EQ(read->List().size(), 3u);
    EXPECT_EQ(read->Text("a"), "1");
    EXPECT_EQ(read->Text("b & c"), "d=e=f");
    EXPECT_EQ(read->Text("n"), "");
    EXPECT_FALSE(read->Text("z"));
}

TEST(ParameterText, TakesEmptyTextsAsTheEmptyList) {
    for (const char* text : {"", "  \n", "<parameters/>", "<parameters>  </parameters>", "<parameters />\n"}) {
        const auto read = ReadParameters(text);
        ASSERT_TRUE(read.has_value()) << text;
        EXPECT_TRUE(read->List().empty()) << text;
    }
}

TEST(ParameterText, RefusesWhatIsNoList) {
    for (const char* text :
         {"x", "<p/>", "<parameters>", "<parameters><parameter value='1'/></parameters>",
          "<parameters><other name='a'/></parameters>", "<parameters/><more/>", "<parameters><parameter name='a'",
          "<parameters><parameter name='a' name='b'/></parameters>", "\xE4<parameters/>"})
        EXPECT_FALSE(ReadParameters(text).has_value()) << text;
}

TEST(ParameterText, KeepsLatin1) {
    const auto read = ReadParameters("<parameters><parameter name='\xE4' value='&#xFC;\xDF'/></parameters>");
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(read->Text("\xE4"), "\xFC\xDF");
}

TEST(ParameterText, LetsTheLastOfANameCount) {
    const auto read =
        ReadParameters("<parameters><parameter name='a' value='1'/><parameter name='a' value='2'/></parameters>");
    EXPECT_EQ(read->Text("a"), "2");
    EXPECT_EQ(read->WholeOr("a", 7), 2);
    EXPECT_EQ(read->WholeOr("b", 7), 7);
    EXPECT_TRUE(read->AreAmong({"a", "b"}));
    EXPECT_FALSE(read->AreAmong({"b"}));
}

TEST(ParameterText, TakesWholeNumbersOfThirtyTwoBitsAlone) {
    const auto number = [](const std::string& text) { return Parameters({{"n", text, false}}).WholeOr("n", 0); };
    EXPECT_EQ(number("-2147483648"), -2147483647 - 1);
    for (const char* text : {"", "1.5", "1 ", "x", "2147483648", "0x10"})
        EXPECT_FALSE(number(text).has_value()) << text;
}
