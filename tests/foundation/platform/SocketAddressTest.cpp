#include "SocketAddress.h"

#include <gtest/gtest.h>

namespace {

std::string Read(const char* text) {
    std::uint32_t address = 0;
    return ParseDottedAddress(text, address) ? DottedText(address) : "refused";
}

} // namespace

TEST(DottedAddresses, AreReadAndWritten) {
    EXPECT_EQ(Read("192.168.1.5"), "192.168.1.5");
    EXPECT_EQ(Read("0.0.0.0"), "0.0.0.0");
    EXPECT_EQ(Read("255.255.255.255"), "255.255.255.255");
    EXPECT_EQ(Read("127.1"), "127.0.0.1");
}

TEST(DottedAddresses, MayEndInBlanks) {
    EXPECT_EQ(Read("127.0.0.1 "), "127.0.0.1");
    EXPECT_EQ(Read("127.0.0.1  "), "127.0.0.1");
}

TEST(DottedAddresses, AreNothingElse) {
    for (const char* text :
         {"", " ", "localhost", "1.2.3.4.5", "1.2.3.256", "1.2.3.4 x", " 1.2.3.4", "1.2.3.4\n", "::1", "1..2"})
        EXPECT_EQ(Read(text), "refused") << '"' << text << '"';
    EXPECT_EQ(Read(nullptr), "refused");
}

TEST(DottedAddresses, ThatAreRefusedLeaveTheValue) {
    std::uint32_t address = 7;
    EXPECT_FALSE(ParseDottedAddress("nowhere", address));
    EXPECT_EQ(address, 7U);
}

TEST(SocketAddresses, MulticastIsFrom224To239) {
    const auto isMulticast = [](const char* text) {
        std::uint32_t address = 0;
        return ParseDottedAddress(text, address) && IsMulticastAddress(address);
    };
    EXPECT_FALSE(isMulticast("223.255.255.255"));
    EXPECT_TRUE(isMulticast("224.0.0.0"));
    EXPECT_TRUE(isMulticast("239.255.255.255"));
    EXPECT_FALSE(isMulticast("240.0.0.0"));
}

TEST(SocketAddresses, PortsTravelWithTheHighByteFirst) {
    const std::uint16_t port = NetworkPort(0x1234);
    EXPECT_EQ(reinterpret_cast<const unsigned char*>(&port)[0], 0x12);
    EXPECT_EQ(NetworkPort(port), 0x1234);
}
