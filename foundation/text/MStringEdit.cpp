#include <algorithm>
#include <cstring>
#include <string>

#include "MString.h"

namespace {

constexpr unsigned char kFirstVisible = 33;

/// What the trims with `all` remove.
auto Removable(bool all) {
    return [all](char character) {
        return all ? character == ' ' : static_cast<unsigned char>(character) < kFirstVisible;
    };
}

auto Removable(char unwanted) {
    return [unwanted](char character) { return character == unwanted; };
}

char Upper(char character) {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

char Lower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

} // namespace

std::int32_t MString::Find(const char* text, std::int32_t from) const {
    if (text == nullptr || !m_buffer || from < 0 || from > m_length)
        return -1;
    const std::size_t found = View().find(text, static_cast<std::size_t>(from));
    return found == std::string_view::npos ? -1 : static_cast<std::int32_t>(found);
}

std::int32_t MString::Find(const char* text) const {
    return Find(text, 0);
}

std::int32_t MString::FindChar(char character, std::int32_t from, bool backward) const {
    if (from < 0 || from > m_length)
        return -1;
    const std::string_view view = View();
    const auto start = static_cast<std::size_t>(from);
    const std::size_t found = backward ? view.rfind(character, start) : view.find(character, start);
    if (found == std::string_view::npos || (backward && found == 0))
        return -1;
    return static_cast<std::int32_t>(found);
}

std::int32_t MString::FindChar(char character, bool backward) const {
    return FindChar(character, backward ? m_length : 0, backward);
}

bool MString::Insert(const char* text, std::int32_t position) {
    return InsertText(text != nullptr ? std::string_view(text) : std::string_view(), position);
}

bool MString::Remove(std::int32_t position, std::int32_t count) {
    if (position < 0 || position >= m_length || count < 0)
        return false;
    RemoveText(position, std::min(count, m_length - position));
    return true;
}

void MString::RemoveText(std::int32_t position, std::int32_t count) {
    char* place = m_buffer.get() + position;
    std::memmove(place, place + count, static_cast<std::size_t>(m_length - position - count) + 1);
    m_length -= count;
}

// Both texts may be parts of this string, which changes under them.
std::int32_t MString::ReplaceAll(const char* old, const char* replacement) {
    const std::string searched = old != nullptr ? old : "";
    const std::string inserted = replacement != nullptr ? replacement : "";
    if (searched.empty())
        return 0;
    std::int32_t replaced = 0;
    std::int32_t from = 0;
    while ((from = Find(searched.c_str(), from)) >= 0) {
        if (!Remove(from, static_cast<std::int32_t>(searched.size())) || !InsertText(inserted, from))
            break;
        from += static_cast<std::int32_t>(inserted.size());
        ++replaced;
    }
    return replaced;
}

bool MString::Replace(std::int32_t position, std::int32_t count, const char* text) {
    const std::string inserted = text != nullptr ? text : "";
    return Remove(position, count) && InsertText(inserted, position);
}

template <class Change>
std::int32_t MString::ChangeCharacters(Change change) {
    std::int32_t changed = 0;
    std::for_each(m_buffer.get(), m_buffer.get() + m_length, [&](char& character) {
        const char before = character;
        character = change(character);
        changed += character != before ? 1 : 0;
    });
    return changed;
}

std::int32_t MString::ToUpper() {
    return ChangeCharacters(&Upper);
}
std::int32_t MString::ToLower() {
    return ChangeCharacters(&Lower);
}

template <class Predicate>
std::int32_t MString::CutLeft(Predicate removable) {
    const char* begin = c_str();
    const auto count = static_cast<std::int32_t>(std::find_if_not(begin, begin + m_length, removable) - begin);
    if (count > 0)
        RemoveText(0, count);
    return count;
}

template <class Predicate>
std::int32_t MString::CutRight(Predicate removable) {
    std::int32_t count = 0;
    while (m_length - count > 1 && removable(m_buffer[static_cast<std::size_t>(m_length - count - 1)]))
        ++count;
    if (count > 0)
        RemoveText(m_length - count, count);
    return count;
}

std::int32_t MString::Trim(bool all) {
    return TrimLeft(all) + TrimRight(all);
}
std::int32_t MString::TrimLeft(bool all) {
    return CutLeft(Removable(all));
}
std::int32_t MString::TrimRight(bool all) {
    return CutRight(Removable(all));
}
std::int32_t MString::Trim(char character) {
    return TrimLeft(character) + TrimRight(character);
}
std::int32_t MString::TrimLeft(char character) {
    return CutLeft(Removable(character));
}
std::int32_t MString::TrimRight(char character) {
    return CutRight(Removable(character));
}

MString MString::Mid(std::int32_t position, std::int32_t count) const {
    if (position < 0 || position >= m_length || count < 1)
        return {};
    return {m_buffer.get() + position, std::min(count, m_length - position)};
}

std::int32_t MString::Reverse() {
    std::reverse(m_buffer.get(), m_buffer.get() + m_length);
    return m_length / 2;
}

bool MString::IsNumeric(bool integerOnly) const {
    const std::string_view view = View();
    return m_buffer && std::all_of(view.begin(), view.end(), [integerOnly](char character) {
               return IsDigit(character) || character == '-' || (!integerOnly && character == '.');
           });
}

MString& MString::ChainAppend(const char* text) {
    Append(text);
    return *this;
}

MString& MString::ChainAppend(const char* text, std::int32_t maxChars) {
    Append(text, maxChars);
    return *this;
}

MString& MString::ChainInsert(const char* text, std::int32_t position) {
    Insert(text, position);
    return *this;
}

MString& MString::ChainRemove(std::int32_t position, std::int32_t count) {
    Remove(position, count);
    return *this;
}

MString& MString::ChainReplaceAll(const char* old, const char* replacement) {
    ReplaceAll(old, replacement);
    return *this;
}

MString& MString::ChainReplace(std::int32_t position, std::int32_t count, const char* text) {
    Replace(position, count, text);
    return *this;
}

MString& MString::ChainToUpper() {
    ToUpper();
    return *this;
}

MString& MString::ChainToLower() {
    ToLower();
    return *this;
}

MString& MString::ChainTrim(bool all) {
    Trim(all);
    return *this;
}

MString& MString::ChainTrimLeft(bool all) {
    TrimLeft(all);
    return *this;
}

MString& MString::ChainTrimRight(bool all) {
    TrimRight(all);
    return *this;
}

MString& MString::ChainTrim(char character) {
    Trim(character);
    return *this;
}

MString& MString::ChainTrimLeft(char character) {
    TrimLeft(character);
    return *this;
}

MString& MString::ChainTrimRight(char character) {
    TrimRight(character);
    return *this;
}

MString& MString::ChainReverse() {
    Reverse();
    return *this;
}
