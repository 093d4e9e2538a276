#include <thread>

#include "FewDescriptors.h"
#include "UDPFixture.h"

namespace {

class UDPBind : public UDPFixture {};
class UDPSend : public UDPFixture {};

} // namespace

TEST_F(UDPBind, ANewSocketHasItsInitialValues) {
    EXPECT_EQ(socket->GetAddress(), "");
    EXPECT_EQ(socket->GetPort(), 0);
    EXPECT_TRUE(socket->GetExclusivePort());
    EXPECT_TRUE(socket->GetMulticastLoopback());
    EXPECT_EQ(socket->GetReceiveBufferSize(), 4096U);
    EXPECT_EQ(socket->GetMaxMessageSize(), 0U);
}

TEST_F(UDPBind, SettersStore) {
    socket->SetAddress("239.1.2.3");
    socket->SetPort(77);
    socket->SetExclusivePort(false);
    socket->SetMulticastLoopback(false);
    EXPECT_EQ(socket->GetAddress(), "239.1.2.3");
    EXPECT_EQ(socket->GetPort(), 77);
    EXPECT_FALSE(socket->GetExclusivePort());
    EXPECT_FALSE(socket->GetMulticastLoopback());
    socket->SetAddress(nullptr);
    EXPECT_EQ(socket->GetAddress(), "");
}

TEST_F(UDPBind, ToPort0FillsInThePort) {
    EXPECT_EQ(socket->Bind(false, nullptr, 0), 0);
    EXPECT_NE(socket->GetPort(), 0);
    EXPECT_TRUE(socket->IsStarted());
    EXPECT_EQ(socket->GetMaxMessageSize(), 65507U);
}

TEST_F(UDPBind, AgainClosesAndBindsAgain) {
    GivenBound();
    const std::uint16_t port = socket->GetPort();
    EXPECT_EQ(socket->Bind(false, nullptr, 0), 0) << "the port is free again";
    EXPECT_EQ(socket->GetPort(), port);
    Send("after");
    EXPECT_TRUE(recorder.WaitFor("after"));
}

TEST_F(UDPBind, ToOneAddressReceivesThereOnly) {
    const char* const list[] = {"127.0.0.2"};
    ASSERT_EQ(socket->Bind(true, list, 1), 0);
    EXPECT_TRUE(peer.SendTo("elsewhere", socket->GetPort(), "127.0.0.1"));
    EXPECT_TRUE(peer.SendTo("here", socket->GetPort(), "127.0.0.2"));
    ASSERT_TRUE(recorder.WaitForEvents(1));
    EXPECT_EQ(recorder.All(), Words{"here"});
}

TEST_F(UDPBind, ToSeveralAddressesReceivesEverywhere) {
    const char* const list[] = {"127.0.0.2", "127.0.0.3"};
    ASSERT_EQ(socket->Bind(true, list, 2), 0);
    Send("everywhere");
    EXPECT_TRUE(recorder.WaitFor("everywhere"));
}

TEST_F(UDPBind, ToAnUnreadableAddressGivesMinus8) {
    const char* const list[] = {"not an address"};
    EXPECT_EQ(socket->Bind(true, list, 1), -8);
    EXPECT_FALSE(socket->IsStarted());
    EXPECT_EQ(socket->GetMaxMessageSize(), 0U) << "nothing stays open";
}

TEST_F(UDPBind, ToAnAddressOfAnotherMachineGivesMinus3) {
    const char* const list[] = {"10.99.1.1"};
    EXPECT_EQ(socket->Bind(true, list, 1), -3);
}

TEST_F(UDPBind, AListThatIsNotUsedOrEmptyMeansEveryInterface) {
    const char* const list[] = {"not an address"};
    EXPECT_EQ(socket->Bind(false, list, 1), 0);
    EXPECT_EQ(socket->Bind(true, list, 0), 0);
    EXPECT_EQ(socket->Bind(true, nullptr, 1), 0);
}

TEST_F(UDPBind, ANullEntryStandsForTheMachinesOwnName) {
    const char* const list[] = {nullptr};
    const std::int32_t code = socket->Bind(true, list, 1);
    EXPECT_EQ(code, socket->GetHostIP().empty() ? -8 : 0);
}

TEST_F(UDPBind, ToAPortInUseGivesMinus1AsIntended) {
    GivenBound();
    MUDPSocket second;
    second.SetPort(socket->GetPort());
    EXPECT_EQ(second.Bind(false, nullptr, 0), -1);
    EXPECT_FALSE(second.IsStarted());
}

TEST_F(UDPBind, TwoThatAreNotExclusiveShareAPort) {
    socket->SetExclusivePort(false);
    GivenBound();
    MUDPSocket second;
    second.SetExclusivePort(false);
    second.SetPort(socket->GetPort());
    EXPECT_EQ(second.Bind(false, nullptr, 0), 0);
}

TEST_F(UDPBind, WithoutDescriptorsGivesACode) {
    {
        const FewDescriptors none(3);
        EXPECT_EQ(socket->Bind(false, nullptr, 0), -2);
        EXPECT_EQ(socket->SendTo("x", 1, "127.0.0.1", 9), -2);
        EXPECT_EQ(socket->SetMulticastScope(1), -2);
    }
    EXPECT_EQ(socket->Bind(false, nullptr, 0), 0);
}

TEST_F(UDPBind, CloseOfOneThatWasNeverBoundGivesMinus7) {
    EXPECT_EQ(socket->Close(), -7);
}

TEST_F(UDPBind, CloseEndsTheThreadAndASecondGivesMinus7) {
    GivenBound();
    EXPECT_EQ(socket->Close(), 0);
    EXPECT_FALSE(socket->IsStarted());
    EXPECT_EQ(socket->Close(), -7);
    EXPECT_TRUE(recorder.All().empty());
}

TEST_F(UDPSend, WorksWithoutBind) {
    EXPECT_EQ(socket->SendTo("hello", 5, "127.0.0.1", peer.GetPort()), 0);
    EXPECT_EQ(peer.ReceiveDatagram(), "hello");
    EXPECT_FALSE(socket->IsStarted());
    EXPECT_EQ(socket->Close(), 0);
}

TEST_F(UDPSend, ComesFromTheBoundPort) {
    GivenBound();
    EXPECT_EQ(socket->SendTo("hello", 5, "127.0.0.1", peer.GetPort()), 0);
    std::uint32_t port = 0;
    EXPECT_EQ(peer.ReceiveDatagram(&port), "hello");
    EXPECT_EQ(port, socket->GetPort());
}

TEST_F(UDPSend, ToANameWorks) {
    EXPECT_EQ(socket->SendTo("hello", 5, "localhost", peer.GetPort()), 0);
    EXPECT_EQ(peer.ReceiveDatagram(), "hello");
}

TEST_F(UDPSend, ToAnUnknownNameGivesMinus3) {
    EXPECT_EQ(socket->SendTo("x", 1, "two words", 9), -3);
    EXPECT_EQ(socket->SendTo("x", 1, "", 9), -3);
}

TEST_F(UDPSend, AnEmptyDatagramIsSent) {
    EXPECT_EQ(socket->SendTo(nullptr, 0, "127.0.0.1", peer.GetPort()), 0);
    EXPECT_EQ(peer.ReceiveDatagram(), "");
}

TEST_F(UDPSend, WhatCannotBeSentGivesMinus13) {
    const std::string large(65508, 'x');
    EXPECT_EQ(socket->SendTo(large.data(), 65508, "127.0.0.1", peer.GetPort()), -13);
    EXPECT_EQ(socket->SendTo(large.data(), 65507, "127.0.0.1", peer.GetPort()), 0);
    EXPECT_EQ(socket->SendTo("x", -1, "127.0.0.1", peer.GetPort()), -13);
    EXPECT_EQ(socket->SendTo(nullptr, 1, "127.0.0.1", peer.GetPort()), -13);
    EXPECT_EQ(socket->SendTo("x", 1, "127.0.0.1", 0), -13);
}

TEST_F(UDPSend, ToTheBroadcastAddressWorksWithoutAnyEarlierSetting) {
    if (!HasOwnNetwork())
        GTEST_SKIP() << "the kernel forbids a network of our own";
    const Peer everywhere = Peer::Datagrams("0.0.0.0");
    EXPECT_EQ(socket->SendTo("all", 3, "255.255.255.255", everywhere.GetPort()), 0);
    EXPECT_EQ(everywhere.ReceiveDatagram(), "all");
    EXPECT_EQ(socket->SendTo("again", 5, nullptr, everywhere.GetPort()), 0);
    EXPECT_EQ(everywhere.ReceiveDatagram(), "again");
}

TEST_F(UDPSend, ToTheBroadcastAddressIsAllowedUntilClose) {
    if (!HasOwnNetwork())
        GTEST_SKIP() << "the kernel forbids a network of our own";
    const Peer everywhere = Peer::Datagrams("0.0.0.0");
    const std::string sameInOtherWords = "255.255.255.255 "; // not the text that allows it
    EXPECT_EQ(socket->SendTo("x", 1, sameInOtherWords.c_str(), everywhere.GetPort()), -13);
    EXPECT_EQ(socket->SendTo("x", 1, nullptr, everywhere.GetPort()), 0);
    EXPECT_EQ(socket->SendTo("x", 1, sameInOtherWords.c_str(), everywhere.GetPort()), 0);
    socket->Close();
    EXPECT_EQ(socket->SendTo("x", 1, sameInOtherWords.c_str(), everywhere.GetPort()), -13);
}
