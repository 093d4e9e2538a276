#pragma once

#include "ValueFace.h"

namespace stagehost {

/// A text, cut to its maximum length. As a number it is 0 when it is none.   [any]
class StringValue final : public ValueFace<IStringData> {
public:
    explicit StringValue(const ValueSpec& spec);

    std::int32_t GetMaxLength() override;

protected:
    std::int32_t ReadInt() const override;
    double ReadReal() const override;
    std::string ReadText() const override { return m_text; }
    Taken WriteInt(std::int32_t value) override;
    Taken WriteReal(double value) override;
    Taken WriteText(std::string_view text) override;
    void ReadLimits(const ValueSpec& spec) override;

private:
    std::string m_text;
    std::int32_t m_maxLength = -1;
};

} // namespace stagehost
