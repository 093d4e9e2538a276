#pragma once

#include "ValueFace.h"

namespace stagehost {

/// A value whose form only its owner knows: the host keeps its text
/// as it is. As a number it is 0, and numbers are not taken.   [any]
class PrivateValue final : public ValueFace<IData> {
public:
    explicit PrivateValue(const ValueSpec& spec);

protected:
    std::int32_t ReadInt() const override { return 0; }
    double ReadReal() const override { return 0; }
    std::string ReadText() const override { return m_text; }
    Taken WriteInt(std::int32_t) override { return Taken::No; }
    Taken WriteReal(double) override { return Taken::No; }
    Taken WriteText(std::string_view text) override;
    void ReadLimits(const ValueSpec&) override {}

private:
    std::string m_text;
};

} // namespace stagehost
