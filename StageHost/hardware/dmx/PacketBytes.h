#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace stagehost {

/// Bytes of a packet, borrowed.
struct PacketView {
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;

    std::uint8_t Byte(std::size_t at) const { return data[at]; }
    std::uint16_t Big16(std::size_t at) const { return static_cast<std::uint16_t>(data[at] << 8 | data[at + 1]); }
    std::uint16_t Little16(std::size_t at) const { return static_cast<std::uint16_t>(data[at + 1] << 8 | data[at]); }
    std::uint32_t Big32(std::size_t at) const {
        return static_cast<std::uint32_t>(Big16(at)) << 16 | static_cast<std::uint32_t>(Big16(at + 2));
    }

    /// The text in a field of that size, which need not end in NUL.
    std::string Text(std::size_t at, std::size_t fieldSize) const {
        const void* end = std::memchr(data + at, 0, fieldSize);
        const std::size_t length =
            end == nullptr ? fieldSize : static_cast<std::size_t>(static_cast<const std::uint8_t*>(end) - (data + at));
        return {reinterpret_cast<const char*>(data + at), length};
    }
};

inline void PutBig16(std::uint8_t* at, std::size_t value) {
    at[0] = static_cast<std::uint8_t>(value >> 8);
    at[1] = static_cast<std::uint8_t>(value);
}

inline void PutLittle16(std::uint8_t* at, std::size_t value) {
    at[0] = static_cast<std::uint8_t>(value);
    at[1] = static_cast<std::uint8_t>(value >> 8);
}

/// A text into a field of that size that is zero already: cut so
/// that a NUL stays behind it, never inside a UTF-8 character.
inline void PutText(std::uint8_t* at, std::size_t fieldSize, const std::string& text) {
    std::size_t length = text.size() < fieldSize ? text.size() : fieldSize - 1;
    while (length < text.size() && length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
        --length;
    std::copy_n(text.data(), length, at);
}

} // namespace stagehost
