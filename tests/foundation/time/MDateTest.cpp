#include "MDate.h"

#include <atomic>
#include <cstring>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "DateFormat.h"
#include "TimeVocabulary.h"

namespace {

MDate DateOf(std::int32_t day, std::int32_t month, std::int32_t year) {
    MDate date;
    date.SetDay(day);
    date.SetMonth(month);
    date.SetYear(year);
    return date;
}

std::string TextOf(const MDate& date, char format = 0) {
    char text[MDate::kTextSize];
    return date.GetText(text, format);
}

/// What a text gives, as day.month.year; "stayed" when the date was left alone.
std::string Read(const char* text, char format = 0) {
    MDate date = DateOf(7, 8, 2009);
    const bool taken = date.SetFromText(text, format);
    EXPECT_EQ(taken, TextOf(date, '7') != "07.08.2009");
    return taken ? TextOf(date, '7') : "stayed";
}

struct WrittenDateRow {
    char format;
    const char* text;
};

constexpr WrittenDateRow kWrittenDates[] = {
    {'0', "02/01/2003"}, {'1', "01/02/2003"}, {'2', "2003/02/01"}, {'3', "02-01-2003"},
    {'4', "01-02-2003"}, {'5', "2003-02-01"}, {'6', "02.01.2003"}, {'7', "01.02.2003"},
    {'8', "2003.02.01"}, {'9', "01/02/2003"}, {'x', "01/02/2003"}, {'\xFF', "01/02/2003"},
};

struct DateTextRow {
    const char* says;
    char format;
    const char* text;
    const char* date;
};

constexpr DateTextRow kDateTexts[] = {
    {"29 February of a leap year", '1', "29/02/2000", "29.02.2000"},
    {"29 February of 1900, which is no leap year", '1', "29/02/1900", "stayed"},
    {"29 February of 2100, which is no leap year", '1', "29/02/2100", "stayed"},
    {"30 February", '1', "30/02/2000", "stayed"},
    {"31 April", '1', "31/04/2001", "stayed"},
    {"31 May", '1', "31/05/2001", "31.05.2001"},
    {"a year too early is clamped before the check", '1', "05/06/1899", "05.06.1900"},
    {"a clamped year may make the date impossible", '1', "29/02/1896", "stayed"},
    {"the last year", '1', "31/12/9999", "31.12.9999"},
    {"a day too large is clamped", '1', "45/01/2001", "31.01.2001"},
    {"a month too large is clamped", '1', "05/13/2001", "05.12.2001"},
    {"day and month zero are clamped", '1', "00/00/2001", "01.01.2001"},
    {"fields with one digit, day first", '1', "5/6/2001", "05.06.2001"},
    {"fields with one digit, month first", '0', "5/6/2001", "06.05.2001"},
    {"a year of two digits is not there", '1', "05/06/01", "05.06.1900"},
    {"of a year of five digits four count", '1', "05/06/20017", "05.06.2001"},
    {"a day alone", '1', "5", "05.01.1900"},
    {"day and month alone", '1', "05/06", "05.06.1900"},
    {"a month of one digit at the end is not there", '1', "05/6", "05.01.1900"},
    {"a day of one digit at the end is not there", '2', "2001/06/5", "01.06.2001"},
    {"a year alone", '2', "2001", "01.01.2001"},
    {"three digits of a year first", '2', "201", "01.01.1900"},
    {"a year first is four characters whatever they are", '2', "99/01/02", "02.01.1900"},
    {"the empty text is the first date", '1', "", "01.01.1900"},
    {"letters are the first date", '1', "ab/cd/efgh", "01.01.1900"},
    {"another separator hides the fields behind", '1', "05.06.2001", "05.01.1900"},
    {"separators alone", '1', "//", "01.01.1900"},
    {"many separators", '1', "////////", "01.01.1900"},
    {"a negative day", '1', "-5/06/2001", "01.06.2001"},
    {"blanks in front of numbers", '1', " 5/ 6/ 200", "05.06.1900"},
    {"blanks in front of the text shift nothing but the day", '1', "  5/06/2001", "01.06.2001"},
    {"text behind the date", '1', "05/06/2001 12:00", "05.06.2001"},
    {"bytes beyond ASCII", '1', "\xB2\xB3/\xFF\xFE/\x80\x80\x80\x80", "01.01.1900"},
    {"a character that is no format reads with points, day first", 'x', "05.06.2001", "05.06.2001"},
    {"a character that is no format below '0' reads with slashes", '!', "05/06/2001", "05.06.2001"},
};

class MDateDefaultFormat : public testing::Test {
protected:
    ~MDateDefaultFormat() override { SetDefaultDateFormat('1'); }
};

} // namespace

TEST(MDate, BeginsOnTheFirstOfJanuary1900) {
    const MDate date;
    EXPECT_EQ(date.GetDay(), 1);
    EXPECT_EQ(date.GetMonth(), 1);
    EXPECT_EQ(date.GetYear(), 1900);
    EXPECT_TRUE(date.IsValid());
    EXPECT_EQ(date.GetDayNumber(), 0);
    EXPECT_EQ(date.GetWeekday(), 0);
}

TEST(MDate, WritesEveryFormat) {
    for (const WrittenDateRow& row : kWrittenDates)
        EXPECT_EQ(TextOf(DateOf(1, 2, 2003), row.format), row.text);
}

TEST(MDate, ReadsBackEveryFormatThatItWrites) {
    for (char format = '0'; format <= '8'; ++format)
        for (std::int32_t number = 0; number < 2958464; number += 997) {
            MDate date;
            date.SetFromDayNumber(number);
            MDate back;
            ASSERT_TRUE(back.SetFromText(TextOf(date, format).c_str(), format));
            ASSERT_EQ(back.GetDayNumber(), number) << format;
        }
}

TEST(MDate, ReadsFieldsByTheirPlace) {
    for (const DateTextRow& row : kDateTexts)
        EXPECT_EQ(Read(row.text, row.format), row.date) << row.says;
}

TEST(MDate, StaysWhenTheTextIsNull) {
    EXPECT_EQ(Read(nullptr, '1'), "stayed");
    EXPECT_EQ(Read(nullptr), "stayed");
}

TEST(MDate, ReadsLongTextsByTheirFirstFields) {
    EXPECT_EQ(Read(("05/06/2001" + std::string(1000000, '9')).c_str(), '1'), "05.06.2001");
    EXPECT_EQ(Read(std::string(1000000, '9').c_str(), '1'), "31.01.1900");
    EXPECT_EQ(Read((std::string(1000000, '9') + "/05/2001").c_str(), '1'), "31.05.2001");
}

TEST(MDate, WritesNothingWithoutABuffer) {
    EXPECT_EQ(MDate().GetText(nullptr, '1'), nullptr);
}

TEST(MDate, WritesAnyNumbersWithinItsBuffer) {
    EXPECT_EQ(TextOf(DateOf(-5, 100, 12345), '1'), "-5/100/12345");
    EXPECT_EQ(TextOf(DateOf(kSmallest, kSmallest, kSmallest), '2').size(), MDate::kTextSize - 1);
}

TEST(MDate, WritesADateOfElevenBytesAndNotOneMore) {
    char text[16];
    std::memset(text, '#', sizeof text);
    DateOf(31, 12, 9999).GetText(text, '5');
    EXPECT_EQ(std::string(text), "9999-12-31");
    EXPECT_EQ(std::string(text + 11, 5), "#####");
}

TEST(MDate, IsValidWhenTheCalendarHasIt) {
    EXPECT_TRUE(DateOf(29, 2, 2000).IsValid());
    EXPECT_FALSE(DateOf(29, 2, 1900).IsValid());
    EXPECT_TRUE(DateOf(29, 2, 2004).IsValid());
    EXPECT_FALSE(DateOf(29, 2, 2001).IsValid());
    EXPECT_FALSE(DateOf(31, 12, 1899).IsValid());
    EXPECT_TRUE(DateOf(1, 1, 12345).IsValid());
    for (const std::int32_t bad : {0, -1, kSmallest, 32, kLargest}) {
        EXPECT_FALSE(DateOf(bad, 1, 2000).IsValid()) << bad;
        EXPECT_EQ(DateOf(bad, 1, 2000).GetWeekday(), -1) << bad;
        EXPECT_FALSE(DateOf(1, bad, 2000).IsValid()) << bad;
        EXPECT_EQ(DateOf(1, bad, 2000).GetWeekday(), -1) << bad;
    }
    EXPECT_FALSE(DateOf(1, 13, 2000).IsValid());
    EXPECT_EQ(DateOf(1, 1, -4).GetWeekday(), -1);
}

TEST(MDate, AdjustsFebruaryWithTheYear) {
    MDate date = DateOf(29, 2, 2000);
    date.SetYear(2001);
    EXPECT_FALSE(date.IsValid());
    date.SetYear(2400);
    EXPECT_TRUE(date.IsValid());
    date.SetFromDayNumber(0);
    date.SetMonth(2);
    date.SetDay(29);
    EXPECT_FALSE(date.IsValid());
}

TEST(MDate, CountsDaysFrom1900) {
    EXPECT_EQ(DateOf(2, 1, 1900).GetDayNumber(), 1);
    EXPECT_EQ(DateOf(1, 1, 2000).GetDayNumber(), 36524);
    EXPECT_EQ(DateOf(1, 1, 2001).GetDayNumber(), 36890);
    EXPECT_EQ(DateOf(31, 12, 9999).GetDayNumber(), 2958463);
    EXPECT_EQ(DateOf(31, 12, 1899).GetDayNumber(), 0);
    EXPECT_EQ(DateOf(15, 6, kSmallest).GetDayNumber(), 0);
}

TEST(MDate, EndsAtTheLastDayOf9999) {
    for (const std::int32_t number : {2958463, 2958464, kLargest}) {
        MDate date;
        date.SetFromDayNumber(number);
        EXPECT_EQ(TextOf(date, '7'), "31.12.9999");
    }
    MDate date;
    date.SetFromDayNumber(2958462);
    EXPECT_EQ(TextOf(date, '7'), "30.12.9999");
}

TEST(MDate, BeginsAtTheFirstDayForNegativeNumbers) {
    for (const std::int32_t number : {-1, kSmallest}) {
        MDate date = DateOf(5, 5, 2005);
        date.SetFromDayNumber(number);
        EXPECT_EQ(TextOf(date, '7'), "01.01.1900");
    }
}

TEST(MDate, CountsDaysOfImpossibleDatesWithoutHangingOrOverflow) {
    EXPECT_EQ(DateOf(1, 1, kLargest).GetDayNumber(), kLargest);
    EXPECT_EQ(DateOf(kLargest, kLargest, kLargest).GetDayNumber(), kLargest);
    EXPECT_EQ(DateOf(kSmallest, 1, 1900).GetDayNumber(), kSmallest);
    EXPECT_EQ(DateOf(1, kSmallest, 2000).GetDayNumber(), 36524);
    EXPECT_EQ(DateOf(1, 99, 1900).GetDayNumber(), 365);
}

TEST_F(MDateDefaultFormat, ReadsAndWritesItWhenNoFormatIsGiven) {
    EXPECT_EQ(TextOf(DateOf(1, 2, 2003)), "01/02/2003");
    EXPECT_EQ(Read("01/02/2003"), "01.02.2003");
    SetDefaultDateFormat('5');
    EXPECT_EQ(TextOf(DateOf(1, 2, 2003)), "2003-02-01");
    EXPECT_EQ(Read("2003-02-01"), "01.02.2003");
}

TEST_F(MDateDefaultFormat, MayBeSetWhileOtherThreadsReadDates) {
    std::atomic<bool> done{false};
    std::thread setter([&done] {
        for (int i = 0; i < 20000; ++i)
            SetDefaultDateFormat(i % 2 == 0 ? '1' : '7');
        done = true;
    });
    do {
        const std::string text = TextOf(DateOf(1, 2, 2003));
        EXPECT_TRUE(text == "01/02/2003" || text == "01.02.2003") << text;
    } while (!done);
    setter.join();
}
