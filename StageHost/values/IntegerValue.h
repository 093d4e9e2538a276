#pragma once

#include <limits>

#include "ValueFace.h"

namespace stagehost {

/// A whole number of 32 bits, clamped to its bounds. Text that is no number and a real number that is not finite leave
/// it as it is; fractions are rounded.   [any]
class IntegerValue final : public ValueFace<IIntegerData> {
public:
    explicit IntegerValue(const ValueSpec& spec);

    std::int32_t GetMaxValue() override;
    std::int32_t GetMinValue() override;

protected:
    std::int32_t ReadInt() const override { return m_value; }
    double ReadReal() const override { return m_value; }
    std::string ReadText() const override { return std::to_string(m_value); }
    Taken WriteInt(std::int32_t value) override;
    Taken WriteReal(double value) override;
    Taken WriteText(std::string_view text) override;
    void ReadLimits(const ValueSpec& spec) override;

private:
    std::int32_t m_value = 0;
    std::int32_t m_minimum = std::numeric_limits<std::int32_t>::min();
    std::int32_t m_maximum = std::numeric_limits<std::int32_t>::max();
};

} // namespace stagehost
