#include "DateFormat.h"

#include <string>

#include <gtest/gtest.h>

namespace {

struct PatternRow {
    const char* pattern;
    char format;
};

constexpr PatternRow kPatterns[] = {
    {"M/d/yy", '0'},
    {"dd/MM/yyyy", '1'},
    {"yyyy/MM/dd", '2'},
    {"MM-dd-yyyy", '3'},
    {"dd-MM-yy", '4'},
    {"yyyy-MM-dd", '5'},
    {"MM.dd.yyyy", '6'},
    {"dd.MM.yyyy", '7'},
    {"yyyy. MM. dd.", '8'},
    {"d. M. yyyy", '7'},
    {"yyyy", '2'},
    {"", '1'},
    {"nothing", '1'},
    {"'May-' dd.MM.yy", '7'},
    {"d.MM.yyyy 'y-'", '7'},
    {"'unclosed dd-MM", '1'},
    {"%m/%d/%Y", '0'},
    {"%d.%m.%Y", '7'},
    {"-", '4'},
    {"dd MM yyyy", '1'},
};

class DateFormatDefault : public testing::Test {
protected:
    ~DateFormatDefault() override { SetDefaultDateFormat('1'); }
};

} // namespace

TEST(DateFormat, IsThreeOrdersByThreeSeparators) {
    constexpr DateOrder kOrders[] = {DateOrder::MonthFirst, DateOrder::DayFirst, DateOrder::YearFirst};
    constexpr char kSeparators[] = {'/', '-', '.'};
    for (int i = 0; i < 9; ++i) {
        const char format = static_cast<char>('0' + i);
        EXPECT_EQ(DateOrderOf(format), kOrders[i % 3]) << format;
        EXPECT_EQ(WrittenSeparator(format), kSeparators[i / 3]) << format;
        EXPECT_EQ(ReadSeparator(format), kSeparators[i / 3]) << format;
    }
}

TEST(DateFormat, MeansItThatOtherCharactersWriteDayFirstButReadBySize) {
    for (int code = 0; code < 256; ++code) {
        const char format = static_cast<char>(code);
        if (format >= '0' && format <= '8')
            continue;
        EXPECT_EQ(DateOrderOf(format), DateOrder::DayFirst) << code;
        EXPECT_EQ(WrittenSeparator(format), '/') << code;
        EXPECT_EQ(ReadSeparator(format), code < '0' ? '/' : '.') << code;
    }
}

TEST(DateFormat, ComesFromALocalesPattern) {
    for (const PatternRow& row : kPatterns)
        EXPECT_EQ(DateFormatOfPattern(row.pattern), row.format) << row.pattern;
}

TEST_F(DateFormatDefault, IsDayFirstUntilAHostSetsAnother) {
    EXPECT_EQ(DefaultDateFormat(), '1');
    SetDefaultDateFormat('8');
    EXPECT_EQ(DefaultDateFormat(), '8');
}

TEST_F(DateFormatDefault, FallsBackWhenSetToWhatIsNoFormat) {
    for (const char format : {'9', '\0', 'x', '\xFF', '/'}) {
        SetDefaultDateFormat('8');
        SetDefaultDateFormat(format);
        EXPECT_EQ(DefaultDateFormat(), '1');
    }
}
