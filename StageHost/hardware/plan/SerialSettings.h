#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace stagehost {

/// What can be set on a serial port. Each is a number; switches are 0 and 1.
enum class SerialSetting {
    BaudRate,
    Parity, ///< 0 none, 1 odd, 2 even
    DataSize,
    StopBits,
    Break,
    Dtr,
    Rts,
    DtrControl,
    RtsControl,
    DtrHandshake,
    DsrOutFlow,
    RtsHandshake,
    CtsOutFlow
};

inline constexpr std::size_t kSerialSettingCount = static_cast<std::size_t>(SerialSetting::CtsOutFlow) + 1;

/// Names of the parities in show files, by their number.
inline constexpr const char* kParityNames[] = {"none", "odd", "even"};

/// What the user wants of a port: the settings that were made, over a close too.
class SerialSettings {
public:
    void Set(SerialSetting setting, std::uint32_t value) { m_values[static_cast<std::size_t>(setting)] = value; }

    /// Nothing when it was never set.
    std::optional<std::uint32_t> Get(SerialSetting setting) const {
        return m_values[static_cast<std::size_t>(setting)];
    }
    std::uint32_t Or(SerialSetting setting, std::uint32_t missing) const { return Get(setting).value_or(missing); }

private:
    std::array<std::optional<std::uint32_t>, kSerialSettingCount> m_values;
};

} // namespace stagehost
