#pragma once

#include <limits>

#include "ValueFace.h"

namespace stagehost {

/// A real number, clamped to its bounds. The precision is the count of decimals of the text form; the number itself is
/// kept in full. What is not finite or no number leaves it as it is.   [any]
class RealValue final : public ValueFace<IRealData> {
public:
    explicit RealValue(const ValueSpec& spec);

    double GetMaxValue() override;
    double GetMinValue() override;
    std::int32_t GetPrecision() override;

protected:
    std::int32_t ReadInt() const override;
    double ReadReal() const override { return m_value; }
    std::string ReadText() const override;
    Taken WriteInt(std::int32_t value) override { return WriteReal(value); }
    Taken WriteReal(double value) override;
    Taken WriteText(std::string_view text) override;
    void ReadLimits(const ValueSpec& spec) override;

private:
    double m_value = 0;
    double m_minimum = std::numeric_limits<double>::lowest();
    double m_maximum = std::numeric_limits<double>::max();
    std::int32_t m_precision = 5;
};

} // namespace stagehost
