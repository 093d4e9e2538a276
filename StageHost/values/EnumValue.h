#pragma once

#include "ValueFace.h"

namespace stagehost {

/// One of a list of items. The number is the index of the current item, the text its text; a text that is no item is
/// taken as an index. An index outside the list is ignored. An empty list has index 0 and the empty text.   [any]
class EnumValue final : public ValueFace<IEnumData> {
public:
    explicit EnumValue(const ValueSpec& spec);

    void SetCurrent(std::int32_t index, std::uint32_t, std::uint32_t) override { SetInt(index); }
    void AddItem(const char* text) override;
    void ClearItems(std::uint32_t, std::uint32_t) override;

    std::vector<std::string> Items() const;

protected:
    std::int32_t ReadInt() const override { return m_current; }
    double ReadReal() const override { return m_current; }
    std::string ReadText() const override;
    Taken WriteInt(std::int32_t value) override;
    Taken WriteReal(double value) override;
    Taken WriteText(std::string_view text) override;
    void ReadLimits(const ValueSpec& spec) override;

private:
    std::vector<std::string> m_items;
    std::int32_t m_current = 0;
};

} // namespace stagehost
