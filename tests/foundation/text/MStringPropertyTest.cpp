#include <algorithm>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "MString.h"

namespace {

/// Runs the same random operations on an MString and on the standard string, and compares.
class Twins {
public:
    explicit Twins(std::uint32_t seed)
        : m_random(seed) {}

    void Step() {
        switch (Number(0, 12)) {
        case 0:
            return Append(Text());
        case 1:
            return Append(std::string(1, Character()));
        case 2:
            return Insert(Text(), Position());
        case 3:
            return Remove(Position(), Number(-2, 9));
        case 4:
            return ReplaceAll(Text(), Text());
        case 5:
            return Assign(Text());
        case 6:
            return Reverse();
        case 7:
            return Trim();
        case 8:
            return InsertOwnPart();
        case 9:
            return Replace(Position(), Number(-1, 5), Text());
        case 10:
            m_string.Compact();
            return;
        case 11:
            return Look();
        default:
            return Shorten();
        }
    }

    void ExpectEqual() const {
        ASSERT_EQ(m_string.c_str(), m_model);
        ASSERT_EQ(m_string.GetLength(), static_cast<std::int32_t>(m_model.size()));
        ASSERT_TRUE(m_string.GetCapacity() == 0 ? !m_string.GetBuffer()
                                                : m_string.GetCapacity() > m_string.GetLength());
    }

private:
    std::int32_t Number(std::int32_t from, std::int32_t to) {
        return std::uniform_int_distribution<std::int32_t>(from, to)(m_random);
    }
    char Character() { return "aab \t-"[Number(0, 5)]; } // few different ones, so that texts are found
    std::string Text() {
        std::string text;
        for (std::int32_t left = Number(0, 4); left > 0; --left)
            text += Character();
        return text;
    }
    std::int32_t Length() const { return static_cast<std::int32_t>(m_model.size()); }
    std::int32_t Position() { return Number(-2, Length() + 2); }

    void Append(const std::string& text) {
        m_string.Append(text.c_str());
        m_model += text;
    }
    void Insert(const std::string& text, std::int32_t position) {
        const bool valid = position >= 0 && position <= Length();
        ASSERT_EQ(m_string.Insert(text.c_str(), position), valid);
        if (valid)
            m_model.insert(static_cast<std::size_t>(position), text);
    }
    void Remove(std::int32_t position, std::int32_t count) {
        const bool valid = position >= 0 && position < Length() && count >= 0;
        ASSERT_EQ(m_string.Remove(position, count), valid);
        if (valid)
            m_model.erase(static_cast<std::size_t>(position), static_cast<std::size_t>(count));
    }
    void Replace(std::int32_t position, std::int32_t count, const std::string& text) {
        const bool valid = position >= 0 && position < Length() && count >= 0;
        ASSERT_EQ(m_string.Replace(position, count, text.c_str()), valid);
        if (valid)
            m_model.replace(static_cast<std::size_t>(position), static_cast<std::size_t>(count), text);
    }
    void ReplaceAll(const std::string& old, const std::string& text) {
        std::int32_t count = 0;
        for (std::size_t at = 0; !old.empty() && (at = m_model.find(old, at)) != std::string::npos; at += text.size()) {
            m_model.replace(at, old.size(), text);
            ++count;
        }
        ASSERT_EQ(m_string.ReplaceAll(old.c_str(), text.c_str()), count);
    }
    void Assign(const std::string& text) {
        m_string = text.c_str();
        m_model = text;
    }
    void Reverse() {
        ASSERT_EQ(m_string.Reverse(), Length() / 2);
        std::reverse(m_model.begin(), m_model.end());
    }
    void Trim() {
        const auto first = std::min(m_model.find_first_not_of(" \t"), m_model.size());
        const auto removed = static_cast<std::int32_t>(first);
        m_model.erase(0, first);
        ASSERT_EQ(m_string.TrimLeft(false), removed);
        std::int32_t cut = 0;
        for (; m_model.size() > 1 && m_model.back() == '-'; ++cut)
            m_model.pop_back();
        ASSERT_EQ(m_string.TrimRight('-'), cut);
    }
    void InsertOwnPart() {
        const std::int32_t from = Number(0, Length());
        const std::int32_t at = Number(0, Length());
        ASSERT_TRUE(m_string.Insert(m_string.c_str() + from, at));
        m_model.insert(static_cast<std::size_t>(at), m_model.substr(static_cast<std::size_t>(from)));
    }
    void Look() {
        const std::string text = "a" + Text();
        const std::int32_t from = Number(0, Length());
        ASSERT_EQ(m_string.Find(text.c_str(), from),
                  static_cast<std::int32_t>(m_model.find(text, static_cast<std::size_t>(from))));
        const auto last = static_cast<std::int32_t>(m_model.rfind('b'));
        ASSERT_EQ(m_string.FindChar('b', true), last > 0 ? last : -1);
        const std::string part = m_model.substr(static_cast<std::size_t>(from), 3);
        ASSERT_EQ(m_string.Mid(from, 3).c_str(), part);
        const std::string other = Text();
        ASSERT_EQ(m_string == other.c_str(), m_model == other);
        if (m_string.GetBuffer()) {
            ASSERT_EQ(m_string < MString(other.c_str()), m_model < other);
        }
    }
    void Shorten() // keeps the walk from growing for ever
    {
        if (Length() > 200)
            Assign(Text());
    }

    std::mt19937 m_random;
    MString m_string;
    std::string m_model;
};

} // namespace

TEST(MStringProperty, BehavesAsTheStandardStringUnderRandomOperations) {
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        Twins twins(seed);
        for (int step = 0; step < 200; ++step) {
            twins.Step();
            twins.ExpectEqual();
            if (HasFatalFailure())
                FAIL() << "seed " << seed << ", step " << step;
        }
    }
}
