#include "HostLookup.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "SocketAddress.h"

TEST(HostLookUp, FindsTheMachineItself) {
    std::uint32_t address = 0;
    ASSERT_TRUE(LookUpHost("localhost", address));
    EXPECT_EQ(DottedText(address), "127.0.0.1");
}

TEST(HostLookUp, DoesNotFindAnImpossibleName) {
    std::uint32_t address = 0;
    EXPECT_FALSE(LookUpHost("", address));
    EXPECT_FALSE(LookUpHost("two words", address));
    EXPECT_FALSE(LookUpHost(std::string(300, 'a'), address));
}

TEST(HostLookUp, TheMachineHasAName) {
    EXPECT_FALSE(SystemHostName().empty());
}

TEST(HostLookUp, TheInterfacesIncludeTheLoopback) {
    std::vector<std::uint32_t> addresses;
    std::uint32_t loopback = 0;
    ASSERT_TRUE(InterfaceAddresses(addresses));
    ASSERT_TRUE(ParseDottedAddress("127.0.0.1", loopback));
    EXPECT_EQ(std::count(addresses.begin(), addresses.end(), loopback), 1);
}
