#include "MStringParser.h"

#include <gtest/gtest.h>

namespace {

struct SplitRow {
    const char* sentence;
    const char* text;
    char open;
    char close;
    MStringParser::Parts parts;
};

const SplitRow kSplitRows[] = {
    {"empty fields are dropped", "a,,b", 0, 0, {"a", "b"}},
    {"separators alone give no part", ",,,", 0, 0, {}},
    {"at both ends too", ",a,", 0, 0, {"a"}},
    {"a text without separator is one part", "abc", 0, 0, {"abc"}},
    {"blanks are characters", " a , b ", 0, 0, {" a ", " b "}},
    {"a separator within equal quotes stays, and so do the quotes", "\"a,b\",c", '"', '"', {"\"a,b\"", "c"}},
    {"quotes may open within a part", "x\"a,b\"y,c", '"', '"', {"x\"a,b\"y", "c"}},
    {"empty quotes are a part", "\"\",c", '"', '"', {"\"\"", "c"}},
    {"different quotes", "(a,b),c", '(', ')', {"(a,b)", "c"}},
    {"quotes do not nest: the first closing one closes", "((a,b),c),d", '(', ')', {"((a,b)", "c)", "d"}},
    {"a closing quote alone closes nothing", "a),b", '(', ')', {"a)", "b"}},
    {"an open quote reaches to the end", "a,(b,c", '(', ')', {"a", "(b,c"}},
    {"with no opening quote nothing is quoted", "\"a,b\"", 0, '"', {"\"a", "b\""}},
    {"with no closing quote the first one reaches to the end", "\"a\",b", '"', 0, {"\"a\",b"}},
    {"a separator that is the closing quote ends a part", "(a,b", '(', ',', {"(a", "b"}},
};

} // namespace

TEST(MStringParser, SplitsAsItsTableSays) {
    for (const SplitRow& row : kSplitRows) {
        MStringParser parser(row.text);
        parser.SetQuotes(row.open, row.close);
        const MStringParser::Parts* parts = parser.Split(',');
        ASSERT_NE(parts, nullptr) << row.sentence;
        EXPECT_EQ(*parts, row.parts) << row.sentence;
    }
}

TEST(MStringParser, ANullOrEmptyTextGivesNull) {
    MStringParser parser;
    EXPECT_EQ(parser.Split(','), nullptr);
    parser.SetText("");
    EXPECT_EQ(parser.Split(','), nullptr);
    parser.SetText("a");
    EXPECT_NE(parser.Split(','), nullptr);
    parser.SetText(nullptr);
    EXPECT_EQ(parser.Split(','), nullptr);
    EXPECT_EQ(MStringParser(nullptr).Split(','), nullptr);
}

TEST(MStringParser, SplitsTheSameTextAgain) {
    MStringParser parser("a,b;c");
    EXPECT_EQ(*parser.Split(','), (MStringParser::Parts{"a", "b;c"}));
    EXPECT_EQ(*parser.Split(';'), (MStringParser::Parts{"a,b", "c"}));
    EXPECT_EQ(*parser.Split('\0'), (MStringParser::Parts{"a,b;c"})) << "no text holds a NUL";
}

TEST(MStringParser, KeepsACopyOfItsText) {
    std::string text = "a,b";
    MStringParser parser(text.c_str());
    text = "x,y,z";
    EXPECT_EQ(*parser.Split(','), (MStringParser::Parts{"a", "b"}));
}
