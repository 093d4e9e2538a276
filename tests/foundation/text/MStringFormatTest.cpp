#include <algorithm>
#include <clocale>
#include <cstdarg>
#include <cstring>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "MString.h"

namespace {

std::int32_t FormatLength(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::int32_t length = MString().GetFormatLength(format, arguments);
    va_end(arguments);
    return length;
}

/// Keeps the compiler from seeing that a text is null.
const char* NullText() {
    static const char* volatile null = nullptr;
    return null;
}

/// By a pointer to the function: compilers hold a format against its arguments, and some here do not fit on purpose.
template <class... Arguments>
std::string Print(const char* format, Arguments... arguments) {
    MString string("before");
    const auto print = &MString::Format;
    const std::int32_t length = (string.*print)(format, arguments...);
    EXPECT_EQ(length, string.GetLength()) << format;
    EXPECT_EQ(std::strlen(string.c_str()), static_cast<std::size_t>(length)) << format;
    return string.c_str();
}

/// Restores the locale of the process.
class LocaleGuard {
public:
    LocaleGuard()
        : m_before(std::setlocale(LC_ALL, nullptr)) {}
    ~LocaleGuard() { std::setlocale(LC_ALL, m_before.c_str()); }
    LocaleGuard(const LocaleGuard&) = delete;
    LocaleGuard& operator=(const LocaleGuard&) = delete;

    /// The locale that the build made for these tests.
    bool UseDecimalComma() const {
        setenv("LOCPATH", TEST_LOCALES, 1);
        return std::setlocale(LC_ALL, "comma") && *std::localeconv()->decimal_point == ',';
    }

private:
    std::string m_before;
};

std::string longText;

std::int32_t LoadFromTable(void* module, std::uint32_t id, char* buffer, std::int32_t size) {
    if (module == nullptr || id == 404)
        return id == 404 ? -1 : 0;
    const std::string text = id == 1000 ? "short" : longText;
    const auto count = std::min<std::size_t>(text.size(), static_cast<std::size_t>(size) - 1);
    std::memcpy(buffer, text.data(), count);
    buffer[count] = '\0';
    return static_cast<std::int32_t>(count);
}

std::int32_t FillAlways(void* /*module*/, std::uint32_t /*id*/, char* buffer, std::int32_t size) {
    std::memset(buffer, 'x', static_cast<std::size_t>(size));
    return size;
}

/// Sets a loader for one test.
class LoaderGuard {
public:
    explicit LoaderGuard(MString::ResourceLoader loader) { MString::SetResourceLoader(loader); }
    ~LoaderGuard() { MString::SetResourceLoader(nullptr); }
    LoaderGuard(const LoaderGuard&) = delete;
    LoaderGuard& operator=(const LoaderGuard&) = delete;
};

int anyModule = 0;

} // namespace

TEST(MStringFormat, PrintsAsPrintfDoes) {
    EXPECT_EQ(Print("%d of %s", 3, "four"), "3 of four");
    EXPECT_EQ(Print("%5d|%-5d|%05d", 42, 42, 42), "   42|42   |00042");
    EXPECT_EQ(Print("%*d", 6, 42), "    42");
    EXPECT_EQ(Print("%-*d|", 4, 7), "7   |");
    EXPECT_EQ(Print("%.2f %e %g", 1.005, 12.5, 0.5), "1.00 1.250000e+01 0.5");
    EXPECT_EQ(Print("%x %X %#x %o", 255U, 255U, 255U, 8U), "ff FF 0xff 10");
    EXPECT_EQ(Print("%c%c", 'a', 'b'), "ab");
    EXPECT_EQ(Print("%ld %lld %hd %zu", -1L, -2LL, 3, sizeof(int)), "-1 -2 3 4");
    EXPECT_EQ(Print("%.3s", "abcdef"), "abc");
    EXPECT_EQ(Print("100%%"), "100%");
    EXPECT_EQ(Print("plain"), "plain");
    EXPECT_EQ(Print(""), "");
}

TEST(MStringFormat, PrintsWhatIsLongerThanTheEstimate) {
    EXPECT_EQ(Print("%d", std::numeric_limits<int>::min()), "-2147483648");
    EXPECT_EQ(Print("%.3f", 1e300).size(), 305U);
    EXPECT_EQ(Print("%f", std::numeric_limits<double>::max()).size(), 316U);
    EXPECT_EQ(Print("%s", NullText()), "(null)");
    EXPECT_EQ(Print("%.500d", 1).size(), 500U);
    EXPECT_EQ(Print("%s", std::string(100000, 'x').c_str()).size(), 100000U);
}

TEST(MStringFormat, ANullFormatClearsTheString) {
    MString string("abc");
    EXPECT_EQ(string.Format(nullptr), 0);
    EXPECT_EQ(string.GetBuffer(), nullptr);
}

TEST(MStringFormat, MayPrintItsOwnText) {
    MString string("abc");
    EXPECT_EQ(string.Format("<%s|%s>", string.c_str(), string.c_str()), 9);
    EXPECT_STREQ(string.c_str(), "<abc|abc>");
}

TEST(MStringFormat, ATextLimitedByItsPrecisionNeedNotBeTerminated) {
    const char unterminated[] = {'a', 'b', 'c'};
    EXPECT_EQ(Print("%.3s|", static_cast<const char*>(unterminated)), "abc|");
}

TEST(MStringFormat, AFormatThatWritesToMemoryIsRefused) {
    int written = 77;
    EXPECT_EQ(Print("abc%n", &written), "");
    EXPECT_EQ(Print("%d%hhn", 1, &written), "");
    EXPECT_EQ(Print("%-5.3lln", &written), "");
    EXPECT_EQ(Print("%s%n"), "") << "even where no argument is there at all";
    EXPECT_EQ(Print("%1$n", &written), "");
    EXPECT_EQ(written, 77);
    EXPECT_EQ(Print("100%%n"), "100%n") << "a percent sign and a letter";
}

TEST(MStringFormat, BadConversionsDoNotCrash) {
    EXPECT_EQ(Print("abc%"), "") << "ends within a conversion";
    EXPECT_EQ(Print("%-"), "");
    EXPECT_EQ(Print("%5."), "");
    EXPECT_EQ(Print("%1$d", 5), "") << "numbered arguments";
    EXPECT_EQ(Print("%2000000d", 5), "") << "a width beyond a million columns";
    EXPECT_EQ(Print("%*d", std::numeric_limits<int>::max(), 5), "");
    EXPECT_EQ(Print("%*d", std::numeric_limits<int>::min(), 5), "");
    EXPECT_EQ(Print("%.999999999999f", 5.0), "");
    EXPECT_NE(Print("%y %d", 5).find('5'), std::string::npos) << "not a conversion, takes no argument";
    EXPECT_EQ(Print("%1000000d", 5).size(), 1000000U);
}

TEST(MStringFormat, TheEstimateFollowsItsTable) {
    EXPECT_EQ(FormatLength("%c", 'a'), 1 + 1);
    EXPECT_EQ(FormatLength("%C", L'a'), 1 + 1);
    EXPECT_EQ(FormatLength("%lc", L'a'), 1 + 1);
    EXPECT_EQ(FormatLength("%hc", 'a'), 1 + 1);
    for (const char* format : {"%d", "%i", "%u"})
        EXPECT_EQ(FormatLength(format, 1), 7 + 1) << format;
    for (const char* format : {"%ld", "%li", "%lu"})
        EXPECT_EQ(FormatLength(format, 1L), 7 + 1) << format;
    for (const char* format : {"%hd", "%hi", "%hu"})
        EXPECT_EQ(FormatLength(format, 1), 5 + 1) << format;
    for (const char* format : {"%f", "%F", "%e", "%E", "%g", "%G"})
        EXPECT_EQ(FormatLength(format, 1.0), 12 + 1) << format;
    EXPECT_EQ(FormatLength("%x", 1), 8 + 1);
    EXPECT_EQ(FormatLength("%X", 1), 8 + 1);
    EXPECT_EQ(FormatLength("%#x", 1), 10 + 1);
    EXPECT_EQ(FormatLength("%s", "abc"), 4 + 1);
    EXPECT_EQ(FormatLength("%hs", "abc"), 4 + 1);
    EXPECT_EQ(FormatLength("%S", L"abc"), 4 + 1);
    EXPECT_EQ(FormatLength("%ls", L"abc"), 4 + 1);
    EXPECT_EQ(FormatLength("%s", NullText()), 1 + 1);
    EXPECT_EQ(FormatLength("%p", nullptr), 8 + 1);
    EXPECT_EQ(FormatLength("%%"), 1 + 1);
}

TEST(MStringFormat, TheEstimateCountsWidthsAndTheFormatsOwnCharacters) {
    EXPECT_EQ(FormatLength(""), 1);
    EXPECT_EQ(FormatLength("abc"), 4);
    EXPECT_EQ(FormatLength("a%%b"), 4);
    EXPECT_EQ(FormatLength("%20d", 1), 20 + 1);
    EXPECT_EQ(FormatLength("%3d", 1), 7 + 1) << "the larger of the two";
    EXPECT_EQ(FormatLength("%*d", 30, 1), 30 + 1);
    EXPECT_EQ(FormatLength("%-*d", -30, 1), 30 + 1);
    EXPECT_EQ(FormatLength("%*.*f", 30, 2, 1.0), 30 + 1) << "a star takes its value from the arguments";
    EXPECT_EQ(FormatLength("<%d, %s>", 1, "ab"), 1 + 7 + 2 + 3 + 1 + 1);
    EXPECT_EQ(FormatLength("%f%s%lld%s", 1.0, "a", 2LL, "bc"), 12 + 2 + 7 + 3 + 1);
    EXPECT_EQ(FormatLength(nullptr), 0);
    EXPECT_EQ(FormatLength("abc%"), 5);
    EXPECT_EQ(FormatLength("%y"), 3);
}

TEST(MStringFormat, NumbersDoNotDependOnTheLocaleOfTheProcess) {
    const LocaleGuard guard;
    ASSERT_TRUE(guard.UseDecimalComma()) << "no locale in " << TEST_LOCALES;
    EXPECT_EQ(Print("%.1f", 1.5), "1.5");
    EXPECT_STREQ(MString(1.5).c_str(), "1.5");
    EXPECT_STREQ(MString(1.5, 2, true).c_str(), "1.50");
    EXPECT_STREQ((MString("x") + 1.5).c_str(), "x1.5");
    EXPECT_EQ(MString("1.5").ToDouble(), 1.5);
}

TEST(MStringFormat, LoadsATextOfTheModuleAndCompactsIt) {
    const LoaderGuard loader(&LoadFromTable);
    MString string("before");
    EXPECT_TRUE(string.LoadResource(&anyModule, 1000));
    EXPECT_STREQ(string.c_str(), "short");
    EXPECT_EQ(string.GetCapacity(), 6);
}

TEST(MStringFormat, LoadsTextsOfAnyLengthAroundTheStepsOfItsBuffer) {
    const LoaderGuard loader(&LoadFromTable);
    for (const std::size_t length : {1U, 1022U, 1023U, 1024U, 1025U, 2047U, 2048U, 5000U}) {
        longText.assign(length, 'y');
        MString string;
        EXPECT_TRUE(string.LoadResource(&anyModule, 1030)) << length;
        EXPECT_EQ(string.c_str(), longText);
        EXPECT_EQ(string.GetCapacity(), static_cast<std::int32_t>(length) + 1);
    }
}

TEST(MStringFormat, AMissingTextClearsTheString) {
    MString string("before");
    EXPECT_FALSE(string.LoadResource(&anyModule, 1000)) << "no loader is set";
    EXPECT_EQ(string.GetBuffer(), nullptr);
    const LoaderGuard loader(&LoadFromTable);
    for (const std::uint32_t id : {404U, 1000U}) {
        string = "before";
        EXPECT_FALSE(string.LoadResource(id == 404 ? &anyModule : nullptr, id));
        EXPECT_EQ(string.GetBuffer(), nullptr);
    }
}

TEST(MStringFormat, ALoaderThatNeverEndsIsGivenUp) {
    const LoaderGuard loader(&FillAlways);
    MString string("before");
    EXPECT_FALSE(string.LoadResource(&anyModule, 1));
    EXPECT_EQ(string.GetBuffer(), nullptr);
}
