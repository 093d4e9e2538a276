#pragma once

#include <optional>
#include <string>

#include "IData.h"

/// A value that takes one text and keeps it until its owner hands it on. Written on the script thread, read by the
/// owner behind the completion of the call that it belongs to.
class ResultText final : public IData {
public:
    /// Writes the text to another value; nothing when none was set.
    void WriteTo(IData& target) const;

    // IData
    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return KXP_OK; }
    const char* GetName() override { return ""; }
    KXPCode SetProperty(const char* name, const char* value, std::uint32_t, std::uint32_t) override;
    const char* GetProperty(const char*) override { return nullptr; }
    void ReleaseString(char** text) override;
    std::uint32_t GetInstanceID() override { return 0; }
    std::int32_t GetIntValue() override { return 0; }
    void SetIntValue(std::int32_t value, std::uint32_t, std::uint32_t) override { m_text = std::to_string(value); }
    double GetRealValue() override { return 0; }
    void SetRealValue(double value, std::uint32_t, std::uint32_t) override { m_text = std::to_string(value); }
    char* GetValueAsString() override;
    void SetValueFromString(const char* text, std::uint32_t, std::uint32_t) override;
    std::uint32_t GetDataType() override { return KXP_STRING_DATA; }

private:
    std::optional<std::string> m_text;
};
