#include <algorithm>

#include <netinet/in.h>
#include <sys/socket.h>

#include "UDPFixture.h"

namespace {

class UDPOptions : public UDPFixture {};

/// Sockets in a network of our own, where multicasts have a way.
class UDPGroups : public UDPFixture {
protected:
    void SetUp() override {
        if (!HasOwnNetwork())
            GTEST_SKIP() << "the kernel forbids a network of our own";
        socket->SetAddress("239.1.2.3");
    }
};

} // namespace

TEST_F(UDPOptions, TheTimeToLiveHasARange) {
    EXPECT_EQ(socket->SetMulticastScope(0), 0);
    EXPECT_EQ(socket->SetMulticastScope(255), 0);
    EXPECT_EQ(socket->SetMulticastScope(256), -1);
    EXPECT_EQ(socket->SetMulticastScope(-2), -1);
}

TEST_F(UDPOptions, TheInterfaceIsOneOfThisMachinesAddresses) {
    EXPECT_EQ(socket->SetMulticastInterface("127.0.0.1"), 0);
    EXPECT_EQ(socket->SetMulticastInterface(nullptr), 0);
    EXPECT_EQ(socket->SetMulticastInterface("203.0.113.7"), -1);
    EXPECT_EQ(socket->SetMulticastInterface("not an address"), -1);
}

TEST_F(UDPOptions, TheUnicastInterfaceIsAnIndex) {
    EXPECT_EQ(socket->SetUnicastInterface(1), 0);
    EXPECT_EQ(socket->SendTo("through one", 11, "127.0.0.1", peer.GetPort()), 0);
    EXPECT_EQ(peer.ReceiveDatagram(), "through one");
    EXPECT_EQ(socket->SetUnicastInterface(0), 0);
    EXPECT_EQ(socket->SetUnicastInterface(100000), -1);
}

TEST_F(UDPOptions, TheyMakeTheSocketThatTheyNeed) {
    EXPECT_EQ(socket->GetMaxMessageSize(), 0U);
    EXPECT_EQ(socket->SetMulticastLoopbackOption(false), 0);
    EXPECT_EQ(socket->GetMaxMessageSize(), 65507U);
    EXPECT_EQ(socket->Close(), 0);
    EXPECT_EQ(socket->GetMaxMessageSize(), 0U);
}

TEST_F(UDPOptions, InterfaceAddressesIncludeTheLoopback) {
    InterfaceAddressList list;
    ASSERT_EQ(socket->GetInterfaceAddresses(list), 0);
    ASSERT_GE(list.count, 1);
    ASSERT_LE(list.count, InterfaceAddressList::kMost);
    const auto isLoopback = [](const InterfaceAddressList::Text& text) {
        return std::string(text.data()) == "127.0.0.1";
    };
    EXPECT_TRUE(std::any_of(list.addresses.begin(), list.addresses.begin() + list.count, isLoopback));
}

TEST_F(UDPOptions, InterfaceAddressesStayWithinTheCountThatWasAsked) {
    InterfaceAddressList list;
    list.count = 0;
    EXPECT_EQ(socket->GetInterfaceAddresses(list), 0);
    EXPECT_EQ(list.count, 0);
    list.count = -5;
    EXPECT_EQ(socket->GetInterfaceAddresses(list), 0);
    EXPECT_EQ(list.count, 0);
    list.count = 1000000;
    EXPECT_EQ(socket->GetInterfaceAddresses(list), 0);
    EXPECT_LE(list.count, InterfaceAddressList::kMost);
    static_assert(sizeof(InterfaceAddressList::Text) == 24);
}

TEST_F(UDPGroups, BindJoinsTheStoredGroup) {
    GivenBound();

    MUDPSocket sender;
    EXPECT_EQ(sender.SetMulticastInterface("127.0.0.1"), 0);
    EXPECT_EQ(sender.SendTo("to all", 6, "239.1.2.3", socket->GetPort()), 0);
    EXPECT_TRUE(recorder.WaitFor("to all"));
}

TEST_F(UDPGroups, BindJoinsOnEachInterfaceOfTheList) {
    const char* const list[] = {"127.0.0.1", "0.0.0.0"};
    const char* const twice[] = {"127.0.0.1", "127.0.0.1"};
    EXPECT_EQ(socket->Bind(true, twice, 2), -22) << "a group can be joined once on an interface";
    EXPECT_EQ(socket->GetMaxMessageSize(), 0U) << "nothing stays open";
    EXPECT_TRUE(socket->Bind(true, list, 1) == 0);
}

TEST_F(UDPGroups, AnInterfaceThatIsNotOursGivesMinus22) {
    const char* const list[] = {"127.0.0.1", "203.0.113.7"};
    EXPECT_EQ(socket->Bind(true, list, 2), -22);
    const char* const unreadable[] = {"127.0.0.1", "not an address"};
    EXPECT_EQ(socket->Bind(true, unreadable, 2), -22);
    EXPECT_FALSE(socket->IsStarted());
}

TEST_F(UDPGroups, AnAddressThatIsNoGroupJoinsNothing) {
    socket->SetAddress("192.168.1.1");
    EXPECT_EQ(socket->Bind(false, nullptr, 0), 0);
    socket->SetAddress("some text");
    EXPECT_EQ(socket->Bind(false, nullptr, 0), 0);
}

TEST_F(UDPGroups, AGroupThatOnlyAnotherSocketHasJoinedIsNotHeard) {
    GivenBound();
    MUDPSocket other;
    UDPRecorder stranger;
    other.AddHandler(&stranger);
    ASSERT_EQ(other.Bind(false, nullptr, 0), 0);
    EXPECT_EQ(other.SetMulticastInterface("127.0.0.1"), 0);
    EXPECT_EQ(other.SendTo("to the group", 12, "239.1.2.3", other.GetPort()), 0);
    EXPECT_EQ(other.SendTo("to itself", 9, "127.0.0.1", other.GetPort()), 0);
    ASSERT_TRUE(stranger.WaitFor("to itself"));
    EXPECT_EQ(stranger.All(), Words{"to itself"});
    other.RemoveHandler(&stranger);
}

TEST_F(UDPGroups, WithoutLoopbackWhatIsSentToTheGroupStaysAway) {
    socket->SetMulticastLoopback(false);
    GivenBound();
    EXPECT_EQ(socket->SetMulticastInterface("127.0.0.1"), 0);
    EXPECT_EQ(socket->SendTo("quiet", 5, "239.1.2.3", socket->GetPort()), 0);
    EXPECT_EQ(socket->SetMulticastLoopbackOption(true), 0);
    EXPECT_EQ(socket->SendTo("loud", 4, "239.1.2.3", socket->GetPort()), 0);
    ASSERT_TRUE(recorder.WaitFor("loud"));
}
