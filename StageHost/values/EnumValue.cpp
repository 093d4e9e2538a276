#include "EnumValue.h"

#include <algorithm>
#include <cmath>

#include "PlainNumbers.h"

namespace stagehost {

EnumValue::EnumValue(const ValueSpec& spec)
    : ValueFace(spec) {
    Configure(spec);
}

void EnumValue::AddItem(const char* text) {
    Apply([this, text] {
        m_items.emplace_back(text == nullptr ? "" : text);
        return Taken::Changed;
    });
}

void EnumValue::ClearItems(std::uint32_t, std::uint32_t) {
    Apply([this] {
        m_items.clear();
        m_current = 0;
        return Taken::Changed;
    });
}

std::vector<std::string> EnumValue::Items() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_items;
}

std::string EnumValue::ReadText() const {
    const auto index = static_cast<std::size_t>(m_current);
    return index < m_items.size() ? m_items[index] : std::string();
}

HostValue::Taken EnumValue::WriteInt(std::int32_t value) {
    const bool inside = value >= 0 && static_cast<std::size_t>(value) < m_items.size();
    return inside ? Assign(m_current, value) : Taken::No;
}

HostValue::Taken EnumValue::WriteReal(double value) {
    return std::isfinite(value) ? WriteInt(RoundToInt(value)) : Taken::No;
}

HostValue::Taken EnumValue::WriteText(std::string_view text) {
    const auto item = std::find(m_items.begin(), m_items.end(), text);
    if (item != m_items.end())
        return WriteInt(static_cast<std::int32_t>(item - m_items.begin()));
    const auto number = ParseNumber(text);
    return number ? WriteReal(*number) : Taken::No;
}

void EnumValue::ReadLimits(const ValueSpec& spec) {
    m_items = spec.items;
    m_current = 0;
}

} // namespace stagehost
