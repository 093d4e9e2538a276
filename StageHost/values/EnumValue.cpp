#include "EnumValue.h"

#include <algorithm>
#include <cmath>

#include "NumberText.h"

namespace stagehost {

EnumValue::EnumValue(const ValueSpec& spec)
    : ValueFace(spec) {
    Configure(spec);
}

void EnumValue::AddItem(const char* text) {
    Apply([this, text] {
        items_.emplace_back(text == nullptr ? "" : text);
        return Taken::Changed;
    });
}

void EnumValue::ClearItems(std::uint32_t, std::uint32_t) {
    Apply([this] {
        items_.clear();
        current_ = 0;
        return Taken::Changed;
    });
}

std::vector<std::string> EnumValue::Items() const {
    const std::lock_guard<std::mutex> hold(lock_);
    return items_;
}

std::string EnumValue::ReadText() const {
    const auto index = static_cast<std::size_t>(current_);
    return index < items_.size() ? items_[index] : std::string();
}

HostValue::Taken EnumValue::WriteInt(std::int32_t value) {
    const bool inside = value >= 0 && static_cast<std::size_t>(value) < items_.size();
    return inside ? Assign(current_, value) : Taken::No;
}

HostValue::Taken EnumValue::WriteReal(double value) {
    return std::isfinite(value) ? WriteInt(RoundToInt(value)) : Taken::No;
}

HostValue::Taken EnumValue::WriteText(std::string_view text) {
    const auto item = std::find(items_.begin(), items_.end(), text);
    if (item != items_.end())
        return WriteInt(static_cast<std::int32_t>(item - items_.begin()));
    const auto number = ParseNumber(text);
    return number ? WriteReal(*number) : Taken::No;
}

void EnumValue::ReadLimits(const ValueSpec& spec) {
    items_ = spec.items;
    current_ = 0;
}

} // namespace stagehost
