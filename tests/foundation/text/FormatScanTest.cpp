#include "FormatScan.h"

#include <gtest/gtest.h>

namespace {

FormatScan Scan(TextArguments texts, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const FormatScan scan = ScanFormat(format, arguments, texts);
    va_end(arguments);
    return scan;
}

} // namespace

TEST(FormatScan, RefusesFormatsThatMustNotBePrinted) {
    for (const char* format : {"%n", "%5n", "%hhn", "%", "abc%-", "%1$d", "%1000001d", "%.1000001f"})
        EXPECT_FALSE(Scan(TextArguments::Skip, format, 1, 2).printable) << format;
    for (const char* format : {"", "%%n", "%d", "%1000000d", "%y", "%m"})
        EXPECT_TRUE(Scan(TextArguments::Skip, format, 1, 2).printable) << format;
}

TEST(FormatScan, SkippedTextsCountAsNullOnes) {
    EXPECT_EQ(Scan(TextArguments::Measure, "%s", "abc").length, 5);
    EXPECT_EQ(Scan(TextArguments::Skip, "%s", "abc").length, 2);
}

TEST(FormatScan, KeepsItsPlaceAmongArgumentsOfEverySize) {
    const FormatScan scan = Scan(TextArguments::Measure, "%c%hhd%ld%lld%zu%f%Lf%p%s", 'a', 1, 2L, 3LL, sizeof(int), 4.0,
                                 5.0L, nullptr, "abc");
    EXPECT_EQ(scan.length, 1 + 5 + 7 + 7 + 7 + 12 + 12 + 8 + 4 + 1);
}
