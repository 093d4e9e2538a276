#include "StringValue.h"

#include <limits>

#include <QByteArray>

#include "PlainNumbers.h"

namespace stagehost {

StringValue::StringValue(const ValueSpec& spec)
    : ValueFace(spec) {
    Configure(spec);
}

std::int32_t StringValue::GetMaxLength() {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_maxLength;
}

std::int32_t StringValue::ReadInt() const {
    return RoundToInt(ReadReal());
}

double StringValue::ReadReal() const {
    return ParseNumber(m_text).value_or(0);
}

HostValue::Taken StringValue::WriteInt(std::int32_t value) {
    return WriteText(std::to_string(value));
}

HostValue::Taken StringValue::WriteReal(double value) {
    return WriteText(QByteArray::number(value, 'g', std::numeric_limits<double>::digits10).toStdString());
}

HostValue::Taken StringValue::WriteText(std::string_view text) {
    const auto length = m_maxLength < 0 ? text.size() : static_cast<std::size_t>(m_maxLength);
    return Assign(m_text, std::string(text.substr(0, length)));
}

void StringValue::ReadLimits(const ValueSpec& spec) {
    m_maxLength = spec.maxLength < 0 ? -1 : spec.maxLength;
}

} // namespace stagehost
