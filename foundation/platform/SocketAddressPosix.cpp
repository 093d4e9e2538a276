#include "SocketAddress.h"

#include <array>
#include <string_view>

#include <arpa/inet.h>
#include <netinet/in.h>

std::uint16_t NetworkPort(std::uint16_t port) {
    return htons(port);
}

// The system's reader lets anything follow a blank; here only blanks may.
bool ParseDottedAddress(const char* text, std::uint32_t& address) {
    if (text == nullptr)
        return false;
    const std::string_view whole(text);
    const std::size_t end = whole.find_last_not_of(' ') + 1; // 0 when there is nothing but blanks
    const std::string trimmed(whole.substr(0, end));
    in_addr parsed{};
    if (trimmed.find_first_not_of("0123456789abcdefABCDEFxX.") != std::string::npos ||
        !inet_aton(trimmed.c_str(), &parsed))
        return false;
    address = parsed.s_addr;
    return true;
}

std::string DottedText(std::uint32_t address) {
    std::array<char, INET_ADDRSTRLEN> text{};
    return inet_ntop(AF_INET, &address, text.data(), text.size());
}

bool IsMulticastAddress(std::uint32_t address) {
    return IN_MULTICAST(ntohl(address));
}
