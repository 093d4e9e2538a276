#include "NumberText.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace {

struct IntRow {
    const char* text;
    std::int32_t value;
};

constexpr IntRow kInts[] = {
    {"", 0},
    {"0", 0},
    {"42", 42},
    {"-42", -42},
    {"+42", 42},
    {"  \t\n7", 7},
    {"12abc", 12},
    {"1.9", 1},
    {"abc", 0},
    {"-", 0},
    {"+-5", 0},
    {"- 5", 0},
    {"2147483647", 2147483647},
    {"2147483648", 2147483647},
    {"-2147483648", -2147483647 - 1},
    {"-2147483649", -2147483647 - 1},
    {"99999999999999999999", 2147483647},
    {"-99999999999999999999", -2147483647 - 1},
};

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct DoubleRow {
    const char* text;
    double value;
};

constexpr DoubleRow kDoubles[] = {
    {"", 0},
    {"1.5", 1.5},
    {"-1.5", -1.5},
    {"+1.5", 1.5},
    {"  2", 2},
    {".5", 0.5},
    {"5.", 5},
    {"1,5", 1},
    {"1.5e3x", 1500},
    {"1E-2", 0.01},
    {"1e", 1},
    {"abc", 0},
    {"-", 0},
    {"+-5", 0},
    {"--5", 0},
    {"inf", kInfinity},
    {"-inf", -kInfinity},
    {"1e999", kInfinity},
    {"-1e999", -kInfinity},
    {"1e-999", 0},
    {"1e99999999999999999999", kInfinity},
    {"1e-99999999999999999999", 0},
    {"0e999", 0},
};

} // namespace

TEST(NumberText, WritesIntegers) {
    EXPECT_EQ(TextFromInt(0), "0");
    EXPECT_EQ(TextFromInt(2147483647), "2147483647");
    EXPECT_EQ(TextFromInt(-2147483647 - 1), "-2147483648");
}

TEST(NumberText, WritesDoublesInTheShorterNotation) {
    EXPECT_EQ(TextFromDouble(1.5, 15), "1.5");
    EXPECT_EQ(TextFromDouble(0.1, 15), "0.1");
    EXPECT_EQ(TextFromDouble(1e20, 15), "1e+20");
    EXPECT_EQ(TextFromDouble(123456.0, 3), "1.23e+05");
    EXPECT_EQ(TextFromDouble(0, 15), "0");
    EXPECT_EQ(TextFromDouble(3.14159, 0), "3");
    EXPECT_EQ(TextFromDouble(3.14159265, -1), "3.14159");
    EXPECT_EQ(TextFromDouble(kInfinity, 15), "inf");
    EXPECT_EQ(TextFromDouble(-kInfinity, 15), "-inf");
    EXPECT_EQ(TextFromDouble(std::nan(""), 15), "nan");
}

TEST(NumberText, WritesDecimals) {
    EXPECT_EQ(FixedTextFromDouble(1.5, 2), "1.50");
    EXPECT_EQ(FixedTextFromDouble(2.5, 0), "2");
    EXPECT_EQ(FixedTextFromDouble(1e20, 1), "100000000000000000000.0");
    EXPECT_EQ(FixedTextFromDouble(0.5, -3), "0.500000");
}

TEST(NumberText, SurvivesAnyPrecision) {
    for (const std::int32_t precision : {2147483647, -2147483647 - 1, 1000, 5000}) {
        EXPECT_FALSE(TextFromDouble(std::numeric_limits<double>::denorm_min(), precision).empty());
        EXPECT_FALSE(TextFromDouble(-std::numeric_limits<double>::max(), precision).empty());
        EXPECT_FALSE(FixedTextFromDouble(-std::numeric_limits<double>::max(), precision).empty());
    }
    EXPECT_EQ(FixedTextFromDouble(1, 2147483647).size(), 1102U);
}

TEST(NumberText, ReadsIntegers) {
    for (const IntRow& row : kInts)
        EXPECT_EQ(IntFromText(row.text), row.value) << '"' << row.text << '"';
}

TEST(NumberText, ReadsDoubles) {
    for (const DoubleRow& row : kDoubles)
        EXPECT_EQ(DoubleFromText(row.text), row.value) << '"' << row.text << '"';
    EXPECT_TRUE(std::isnan(DoubleFromText("nan")));
}

TEST(NumberText, TellsTooLargeFromTooSmallWithoutAnExponent) {
    EXPECT_EQ(DoubleFromText(std::string(400, '9')), kInfinity);
    EXPECT_EQ(DoubleFromText("-" + std::string(400, '9') + ".5"), -kInfinity);
    EXPECT_EQ(DoubleFromText("0." + std::string(400, '0') + "1"), 0);
    EXPECT_EQ(DoubleFromText(std::string(400, '9') + "e-10"), kInfinity);
    EXPECT_EQ(DoubleFromText("0." + std::string(400, '0') + "1e10"), 0);
    EXPECT_EQ(DoubleFromText(std::string(400, '0') + "7"), 7);
}
