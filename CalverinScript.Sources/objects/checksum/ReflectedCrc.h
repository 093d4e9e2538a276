#pragma once

#include <array>
#include <climits>
#include <cstddef>

/// A table-driven cyclic redundancy check whose register shifts to the right, without a final XOR: the reflected
/// algorithm of Ross Williams' "A painless guide to CRC error detection algorithms". Register is an unsigned type of
/// the check's width.
template <typename Register>
class ReflectedCrc {
public:
    /// @param mask the polynomial with its bits reversed, as a right-shifting register uses it.
    constexpr explicit ReflectedCrc(Register mask)
        : m_table() {
        for (std::size_t byte = 0; byte < m_table.size(); ++byte)
            m_table[byte] = Shifted(static_cast<Register>(byte), mask);
    }

    /// The register after more bytes.
    Register Run(Register value, const char* bytes, std::size_t count) const {
        for (std::size_t i = 0; i < count; ++i) {
            const auto index = (static_cast<unsigned char>(bytes[i]) ^ value) & 0xFFu;
            value = static_cast<Register>((static_cast<unsigned>(value) >> CHAR_BIT) ^ m_table[index]);
        }
        return value;
    }

private:
    static constexpr Register Shifted(Register value, Register mask) {
        for (int bit = 0; bit < CHAR_BIT; ++bit) {
            const bool out = (value & 1u) != 0;
            value = static_cast<Register>(value >> 1u);
            if (out)
                value = static_cast<Register>(value ^ mask);
        }
        return value;
    }

    std::array<Register, 256> m_table;
};
