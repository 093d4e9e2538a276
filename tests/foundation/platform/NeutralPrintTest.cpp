#include "NeutralPrint.h"

#include <array>
#include <clocale>
#include <string>

#include <gtest/gtest.h>

namespace {

std::string Printed(std::size_t size, int& length, const char* format, ...) {
    std::array<char, 64> buffer{};
    va_list arguments;
    va_start(arguments, format);
    length = NeutralPrint(size ? buffer.data() : nullptr, size, format, arguments);
    va_end(arguments);
    return buffer.data();
}

} // namespace

TEST(NeutralPrint, PrintsAndReturnsTheLength) {
    int length = 0;
    EXPECT_EQ(Printed(64, length, "%d-%s", 42, "x"), "42-x");
    EXPECT_EQ(length, 4);
}

TEST(NeutralPrint, CutsAtTheSizeAndTellsTheWholeLength) {
    int length = 0;
    EXPECT_EQ(Printed(4, length, "%s", "abcdef"), "abc");
    EXPECT_EQ(length, 6);
    EXPECT_EQ(Printed(0, length, "%s", "abcdef"), "");
    EXPECT_EQ(length, 6);
}

TEST(NeutralPrint, LeavesTheLocaleOfTheThreadAsItWas) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    int length = 0;
    EXPECT_EQ(Printed(64, length, "%.1f", 1.5), "1.5");
    EXPECT_EQ(before, std::setlocale(LC_ALL, nullptr));
}
