#pragma once

#include "ValueFace.h"

namespace stagehost {

/// A position in time as a count of units of its time-code type (see TimeCode.h). The whole number is that count,
/// the real number is seconds, the text is "HH:MM:SS/FF". A text of another form leaves it as it is; the empty
/// text is 0.   [any]
class TimeValue final : public ValueFace<ITimeData> {
public:
    explicit TimeValue(const ValueSpec& spec);

    std::int32_t GetTimeCodeType() override;
    KXPCode Reserved2() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved3() override { return KXP_NOT_IMPLEMENTED; }
    std::int32_t GetFrameCount() override { return Int(); }

protected:
    std::int32_t ReadInt() const override { return m_units; }
    double ReadReal() const override;
    std::string ReadText() const override;
    Taken WriteInt(std::int32_t value) override { return Assign(m_units, value); }
    Taken WriteReal(double value) override;
    Taken WriteText(std::string_view text) override;
    void ReadLimits(const ValueSpec& spec) override;

private:
    std::int32_t m_units = 0;
    std::int32_t m_timeCodeType = 4;
};

} // namespace stagehost
