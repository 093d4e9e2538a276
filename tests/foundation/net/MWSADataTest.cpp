#include "MWSAData.h"

#include <array>

#include <unistd.h>

#include <gtest/gtest.h>

#include "SocketAddress.h"

TEST(SocketLibraryState, StartAndStopMayBeRepeated) {
    MWSAData data;
    EXPECT_FALSE(data.IsLibraryStarted());
    EXPECT_EQ(data.Start(), 0);
    EXPECT_EQ(data.Start(), 0);
    EXPECT_TRUE(data.IsLibraryStarted());
    EXPECT_EQ(data.Stop(), 0);
    EXPECT_EQ(data.Stop(), 0);
    EXPECT_FALSE(data.IsLibraryStarted());
}

TEST(SocketLibraryState, QuestionsLeaveTheStartAsItWas) {
    MWSAData data;
    data.GetVersion();
    data.GetHostName();
    EXPECT_FALSE(data.IsLibraryStarted());
    data.Start();
    data.GetDescription();
    EXPECT_TRUE(data.IsLibraryStarted());
}

TEST(SocketLibraryState, TellsItsVersionAsMajorTimesHundred) {
    MWSAData data;
    EXPECT_EQ(data.GetVersion(), 200);
    EXPECT_EQ(data.GetSystemStatus(), "Running");
    EXPECT_FALSE(data.GetDescription().empty());
    EXPECT_EQ(data.GetMaxSockets(), 0);
}

TEST(SocketLibraryState, TellsTheMachinesNameAndAddress) {
    std::array<char, 256> name{};
    ASSERT_EQ(gethostname(name.data(), name.size() - 1), 0);
    MWSAData data;
    const std::string address = data.GetHostIP(); // fetches the name by itself
    EXPECT_EQ(data.GetHostName(), name.data());
    std::uint32_t parsed = 0;
    EXPECT_TRUE(address.empty() || ParseDottedAddress(address.c_str(), parsed)) << address;
}
