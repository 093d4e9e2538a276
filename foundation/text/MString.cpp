#include "MString.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <utility>

#include "NumberText.h"

namespace {

constexpr std::int64_t kMostBytes = std::numeric_limits<std::int32_t>::max();

std::string_view ViewOf(const char* text) {
    return text != nullptr ? std::string_view(text) : std::string_view();
}

/// At most maxChars of text, which need not be terminated behind them.
std::string_view ViewOf(const char* text, std::int32_t maxChars) {
    if (text == nullptr || maxChars < 1)
        return {};
    const auto most = static_cast<std::size_t>(maxChars);
    const auto* end = static_cast<const char*>(std::memchr(text, '\0', most));
    return {text, end != nullptr ? static_cast<std::size_t>(end - text) : most};
}

/// Away from zero, unless the value is 0 or so large that the sum means nothing.
double Nudged(double value) {
    constexpr double kNudge = 1e-15;
    constexpr double kLimit = 1.7e308;
    if (value == 0 || !(value >= -kLimit && value <= kLimit))
        return value;
    return value > 0 ? value + kNudge : value - kNudge;
}

} // namespace

MString::MString(const char* text) {
    if (text != nullptr)
        TakeText(text);
}

MString::MString(const char* text, std::int32_t maxChars) {
    if (text != nullptr && maxChars > 0)
        TakeText(ViewOf(text, maxChars));
}

MString::MString(const MString& other) {
    if (other.m_buffer)
        TakeText(other.View());
}

MString::MString(MString&& other) noexcept
    : m_buffer(std::move(other.m_buffer))
    , m_capacity(std::exchange(other.m_capacity, 0))
    , m_length(std::exchange(other.m_length, 0)) {}

MString::MString(std::int32_t value) {
    TakeText(TextFromInt(value));
}

MString::MString(double value, std::int32_t significantDigits) {
    TakeText(TextFromDouble(value, significantDigits));
}

MString::MString(double value, std::int32_t decimals, bool fixed) {
    TakeText(fixed ? FixedTextFromDouble(Nudged(value), decimals) : TextFromDouble(value, decimals));
}

MString::~MString() = default;

void MString::Clear() {
    m_buffer.reset();
    m_capacity = 0;
    m_length = 0;
}

// The text is copied before the old buffer goes, since it may be a part of it.
void MString::TakeText(std::string_view text) {
    const auto length = std::min(text.size(), static_cast<std::size_t>(kMostBytes - 1));
    std::unique_ptr<char[]> buffer(new char[length + 1]);
    std::copy_n(text.data(), length, buffer.get());
    buffer[length] = '\0';
    m_buffer = std::move(buffer);
    m_length = static_cast<std::int32_t>(length);
    m_capacity = m_length + 1;
}

void MString::AppendText(std::string_view text) {
    InsertText(text, m_length);
}

void MString::Append(const char* text) {
    AppendText(ViewOf(text));
}

void MString::Append(const char* text, std::int32_t maxChars) {
    AppendText(ViewOf(text, maxChars));
}

void MString::Append(char character) {
    if (character == '\0')
        return;
    if (m_length + 1 < m_capacity) {
        m_buffer[static_cast<std::size_t>(m_length)] = character;
        m_buffer[static_cast<std::size_t>(++m_length)] = '\0';
        return;
    }
    AppendText({&character, 1});
}

void MString::Append(const MString& other) {
    AppendText(other.View());
}

bool MString::Holds(const char* text) const {
    const char* begin = m_buffer.get();
    return begin != nullptr && !std::less<>()(text, begin) && std::less<>()(text, begin + m_capacity);
}

// A new buffer is twice the new size; the old one is kept until the text, which may be a part of it, has been copied.
bool MString::InsertText(std::string_view text, std::int32_t position) {
    if (position < 0 || position > m_length)
        return false;
    if (text.empty())
        return true;
    const std::int64_t total = std::int64_t{m_length} + static_cast<std::int64_t>(text.size()) + 1;
    if (total > kMostBytes)
        return false;
    const auto tail = static_cast<std::size_t>(m_length - position);
    const auto capacity = total > m_capacity ? static_cast<std::int32_t>(std::min(total * 2, kMostBytes)) : m_capacity;
    std::unique_ptr<char[]> grown(capacity > m_capacity ? new char[static_cast<std::size_t>(capacity)] : nullptr);
    const std::string held = !grown && Holds(text.data()) ? std::string(text) : std::string();
    const char* source = held.empty() ? text.data() : held.data();
    char* target = grown ? grown.get() : m_buffer.get();
    if (grown)
        std::copy_n(m_buffer.get(), position, target);
    std::memmove(target + position + text.size(), c_str() + position, tail);
    std::memcpy(target + position, source, text.size());
    target[total - 1] = '\0';
    if (grown)
        m_buffer = std::move(grown);
    m_capacity = capacity;
    m_length = static_cast<std::int32_t>(total - 1);
    return true;
}

void MString::Compact() {
    if (m_buffer && m_capacity > m_length + 1)
        TakeText(View());
}

void MString::Reserve(std::int32_t bytes) {
    Clear();
    if (bytes < 1)
        return;
    m_buffer.reset(new char[static_cast<std::size_t>(bytes)]);
    m_buffer[0] = '\0';
    m_capacity = bytes;
}

void MString::Assign(const char* text, std::int32_t maxChars) {
    if (text == nullptr || maxChars < 1)
        Clear();
    else
        TakeText(ViewOf(text, maxChars));
}

MString* MString::Clone() const {
    return new MString(*this);
}
const char* MString::c_str() const {
    return m_buffer ? m_buffer.get() : "";
}
std::int32_t MString::GetLength() const {
    return m_length;
}
char* MString::GetBuffer() const {
    return m_buffer.get();
}
bool MString::IsNotEmpty() const {
    return m_length > 0;
}

const char* MString::CharPointerAt(std::int32_t index) const {
    return index >= 0 && index < m_length ? m_buffer.get() + index : "";
}

char* MString::CharPointerAt(std::int32_t index) {
    static thread_local char outside;
    outside = '\0';
    return index >= 0 && index < m_length ? m_buffer.get() + index : &outside;
}

char* MString::Duplicate() const {
    const auto size = static_cast<std::size_t>(m_length) + 1;
    auto* copy = static_cast<char*>(std::malloc(size));
    return copy != nullptr ? static_cast<char*>(std::memcpy(copy, c_str(), size)) : nullptr;
}

MString& MString::operator=(const MString& other) {
    if (this == &other)
        return *this;
    if (other.m_buffer)
        TakeText(other.View());
    else
        Clear();
    return *this;
}

MString& MString::operator=(MString&& other) noexcept {
    if (this != &other) {
        m_buffer = std::move(other.m_buffer);
        m_capacity = std::exchange(other.m_capacity, 0);
        m_length = std::exchange(other.m_length, 0);
    }
    return *this;
}

MString& MString::operator=(const char* text) {
    if (text != nullptr)
        TakeText(text);
    else
        Clear();
    return *this;
}

MString& MString::operator+=(const MString& other) {
    Append(other);
    return *this;
}

MString& MString::operator+=(double value) {
    AppendText(TextFromDouble(value, kDoubleDigits));
    return *this;
}

MString& MString::operator+=(std::int32_t value) {
    AppendText(TextFromInt(value));
    return *this;
}

MString& MString::operator+=(char character) {
    Append(character);
    return *this;
}

MString& MString::operator+=(const char* text) {
    Append(text);
    return *this;
}

MString MString::operator+(const MString& other) const {
    return MString(*this) += other;
}
MString MString::operator+(double value) const {
    return MString(*this) += value;
}
MString MString::operator+(std::int32_t value) const {
    return MString(*this) += value;
}
MString MString::operator+(const char* text) const {
    return MString(*this) += text;
}

bool MString::operator==(const char* text) const {
    return View() == ViewOf(text);
}
bool MString::operator==(const MString& other) const {
    return View() == other.View();
}
bool MString::operator!=(const char* text) const {
    return !(*this == text);
}
bool MString::operator!=(const MString& other) const {
    return !(*this == other);
}
bool MString::operator<(const MString& other) const {
    return m_buffer && other.m_buffer && View() < other.View();
}
bool MString::operator>=(const MString& other) const {
    return m_buffer && other.m_buffer && View() >= other.View();
}
bool MString::IsNotLess(const MString& other) const {
    return !(*this < other);
}
bool MString::IsNotGreaterOrEqual(const MString& other) const {
    return !(*this >= other);
}
