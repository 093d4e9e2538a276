#include <algorithm>
#include <cstdio>
#include <optional>
#include <random>

#include "TimeVocabulary.h"

// What people type, made at random and compared with a model that rewrites the text instead of walking it.

namespace {

constexpr std::int32_t kUnits[] = {24, 25, 30, 30, 100, 1000};

class Typist {
public:
    explicit Typist(std::uint32_t seed)
        : m_random(seed) {}

    std::size_t Number(std::size_t least, std::size_t most) {
        return std::uniform_int_distribution<std::size_t>(least, most)(m_random);
    }
    std::int32_t Type() { return static_cast<std::int32_t>(Number(0, 5)); }

    std::string Text(const std::string& alphabet, std::size_t longest) {
        std::string text;
        for (std::size_t i = Number(0, longest); i > 0; --i)
            text += alphabet[Number(0, alphabet.size() - 1)];
        return text;
    }

private:
    std::mt19937 m_random;
};

std::int64_t Simple(std::int64_t value, std::int32_t type) {
    const std::int64_t minutes = value / 1800;
    return type == kDropFrame ? value - (minutes - minutes / 10) * 2 : value;
}

/// A colon with a colon behind it, and one at the end, are two zeros; all others are nothing.
std::string WithoutColons(const std::string& text) {
    std::string digits;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != ':')
            digits += text[i];
        else if (i + 1 == text.size() || text[i + 1] == ':')
            digits += "00";
    }
    return digits;
}

std::int64_t ModelOfFreeForm(const std::string& text, std::int32_t type) {
    const std::size_t split = std::min(text.find_first_of("/."), text.size());
    std::string digits = "000000" + WithoutColons(text.substr(0, split));
    digits = digits.substr(digits.size() - 6);
    const std::string behind = split < text.size() ? text.substr(split + 1) : "";
    const std::string frameDigits = "0" + behind.substr(0, behind.find_first_of(":./"));
    std::int64_t frames = std::min(std::stoll(frameDigits), 99LL);
    if (frames > kUnits[type])
        frames %= kUnits[type];
    const std::int64_t seconds =
        std::stoll(digits.substr(0, 2)) * 3600 + std::stoll(digits.substr(2, 2)) * 60 + std::stoll(digits.substr(4));
    return Simple(seconds * kUnits[type] + frames, type);
}

/// The full form as the C library reads it.
std::optional<std::int64_t> ModelOfFullForm(const std::string& text, std::int32_t type) {
    long long hours = 0, minutes = 0, seconds = 0, frames = 0;
    if (std::sscanf(text.c_str(), "%lld:%lld:%lld/%lld", &hours, &minutes, &seconds, &frames) != 4)
        return std::nullopt;
    if (hours >= 24 || minutes >= 60 || seconds >= 60 || frames > kUnits[type])
        return std::nullopt;
    return Simple((hours * 3600 + minutes * 60 + seconds) * kUnits[type] + frames, type);
}

} // namespace

TEST(MTimeProperty, ReadsAnyMixOfDigitsAndSeparatorsAsTheModelDoes) {
    Typist typist(1);
    for (int i = 0; i < 30000; ++i) {
        const std::string text = typist.Text(i % 2 == 0 ? "0123456789:/." : "0012:::/", 15);
        const std::int32_t type = typist.Type();
        const std::int64_t expected = ModelOfFullForm(text, type).value_or(ModelOfFreeForm(text, type));
        ASSERT_EQ(ValueOf(text.c_str(), type), expected) << type << ": " << text;
    }
}

TEST(MTimeProperty, ReadsTheFullFormWithBlanksAndSignsAsTheCLibraryDoes) {
    Typist typist(5);
    int full = 0;
    for (int i = 0; i < 30000; ++i) {
        const auto field = [&typist] { return typist.Text(" +-", 1) + typist.Text("012345", 2); };
        const std::string text = field() + ":" + field() + ":" + field() + "/" + field() + typist.Text("x: ", 1);
        const std::int32_t type = typist.Type();
        const auto expected = ModelOfFullForm(text, type);
        if (!expected || text.front() == '-' || text.front() == '+')
            continue;
        ASSERT_EQ(ValueOf(text.c_str(), type), *expected) << type << ": " << text;
        ++full;
    }
    EXPECT_GT(full, 1000);
}

TEST(MTimeProperty, NegatesWhatStandsBehindAMinus) {
    Typist typist(2);
    for (int i = 0; i < 10000; ++i) {
        const std::string text = "1" + typist.Text("0123456789:/.", 13);
        const std::int32_t type = typist.Type();
        ASSERT_EQ(ValueOf(("-" + text).c_str(), type), -ValueOf(text.c_str(), type)) << text;
        ASSERT_EQ(ValueOf(("+" + text).c_str(), type), ValueOf(text.c_str(), type)) << text;
    }
}

TEST(MTimeProperty, TakesAColonBetweenDigitsForNothing) {
    Typist typist(3);
    for (int i = 0; i < 10000; ++i) {
        const std::string digits = "1" + typist.Text("0123456789", 5);
        std::string withColon = digits;
        if (digits.size() > 1)
            withColon.insert(typist.Number(1, digits.size() - 1), ":");
        const std::int32_t type = typist.Type();
        ASSERT_EQ(ValueOf(withColon.c_str(), type), ValueOf(digits.c_str(), type)) << withColon;
        ASSERT_EQ(ValueOf((digits + ":").c_str(), type), ValueOf((digits + "00").c_str(), type)) << digits;
    }
}

TEST(MTimeProperty, RefusesTheFreeFormWithAnyOtherCharacter) {
    Typist typist(4);
    for (int code = 1; code < 256; ++code) {
        const char character = static_cast<char>(code);
        if (std::string("0123456789:/.").find(character) != std::string::npos)
            continue;
        std::string text = "1" + typist.Text("0123456789", 12);
        text.insert(typist.Number(1, text.size()), 1, character);
        ASSERT_EQ(ValueOf(text.c_str(), typist.Type()), kStayed) << text;
    }
}

TEST(MTimeProperty, SurvivesAnyBytesInAnyType) {
    Typist typist(6);
    std::string bytes;
    for (int code = 1; code < 256; ++code)
        bytes += static_cast<char>(code);
    for (int i = 0; i < 30000; ++i) {
        const std::string text = typist.Text(i % 3 == 0 ? bytes : "0123456789:/.-+ ", 40);
        MTime time = Converting(0, static_cast<std::int32_t>(typist.Number(0, 4294967295U)), typist.Type());
        time.SetFromText(text.c_str());
        ASSERT_LE(std::string(time.GetText()).size(), 15U);
        time.SetType(typist.Type());
        ASSERT_LE(std::string(time.GetConvertedText()).size(), 15U);
        ASSERT_GE(time.GetConvertedFrames(), 0);
        time.GetConvertedValue();
    }
}
