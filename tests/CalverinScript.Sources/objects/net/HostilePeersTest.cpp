#include "SocketFixture.h"

#include <thread>

#include "Deadline.h"

// Peers that misbehave: each is told by the events that are stated for it, leaves nothing behind, and does not hold up a stop.

namespace {

class HostilePeers : public SocketFixture {
protected:
    void SetUp() override {
        SocketFixture::SetUp();
        m_descriptors = CountDescriptors();
    }
    void TearDown() override {
        device->Stop();
        listener.Close();
        EXPECT_TRUE(Eventually([this] { return CountDescriptors() <= m_descriptors; }));
        SocketFixture::TearDown();
    }

private:
    std::size_t m_descriptors = 0;
};

TEST_F(HostilePeers, ThatResetAreToldAsAnErrorAndThenAClose) {
    GivenTcp();
    Peer peer = GivenConnection();
    peer.Reset();
    EXPECT_EQ(Heard(3), "connect,s error,-29/The connection was reset by the remote side,s close,false,s");
}

TEST_F(HostilePeers, ThatResetAgainAndAgainCostNothing) {
    GivenTcp();
    for (int i = 0; i < 50; ++i) {
        ForgetHeard();
        Do("s.end(); s.connect(" + std::to_string(listener.GetPort()) + ")");
        Heard(2);
        Peer peer = listener.Accept();
        peer.Reset();
        EXPECT_EQ(Heard(4), "close,false,s connect,s error,-29/The connection was reset by the remote side,s "
                            "close,false,s");
    }
}

TEST_F(HostilePeers, ThatCloseOneHalfAreClosedForTheScriptAfterAllTheirData) {
    GivenTcp();
    const Peer peer = GivenConnection();
    Do("want = 4");
    peer.Send("last");
    peer.ShutDownSending();
    EXPECT_EQ(Heard(3), "connect,s got:last,s,2 close,false,s");
    EXPECT_TRUE(peer.SeesTheEnd());
    EXPECT_EQ(Do("s.write('too late')"), "undefined");
}

TEST_F(HostilePeers, ThatSendOneByteAtATimeAreHeardInFull) {
    GivenTcp();
    const Peer peer = GivenConnection();
    Do("want = 500");
    for (int i = 0; i < 500; ++i)
        ASSERT_TRUE(peer.Send(std::string(1, static_cast<char>('a' + i % 26))));
    std::string all = Heard(2);
    EXPECT_EQ(all.substr(0, 24), "connect,s got:abcdefghij");
    EXPECT_EQ(all.size(), std::string("connect,s got:,s,2").size() + 500);
}

TEST_F(HostilePeers, ThatSendMegabytesWithoutALineEndAreHeardInFull) {
    constexpr std::size_t kBytes = 16U << 20U;
    GivenTcp();
    const Peer peer = GivenConnection();
    Do("line = 0; s.on('data', function (b) { line += b.length; if (line === 16777216) hear('all') })");
    std::thread sender([&] { EXPECT_TRUE(peer.Send(std::string(kBytes, 'x'))); });
    EXPECT_EQ(Heard(2), "connect,s all");
    sender.join();
}

TEST_F(HostilePeers, ThatAreSilentDoNotHoldUpAStop) {
    GivenTcp();
    const Peer peer = GivenConnection();
    device->Stop();
    EXPECT_TRUE(peer.SeesTheEnd());
}

TEST_F(HostilePeers, ThatAcceptNobodyAreOnlyAQueue) {
    GivenTcp();
    Do(WithPort("s.connect(", listener.GetPort(), ")"));
    EXPECT_EQ(Heard(1), "connect,s");
    device->Stop();
}

TEST_F(HostilePeers, ThatNeverEndTheirDataDoNotHoldUpAStop) {
    GivenTcp();
    const Peer peer = GivenConnection();
    Do("s.on('data', function () { if (++count === 50) hear('flood') })");
    std::thread sender([&] {
        const std::string block(65536, 'x');
        while (peer.Send(block)) {
        }
    });
    EXPECT_EQ(Heard(2), "connect,s flood");
    device->Stop();
    sender.join();
}

TEST_F(HostilePeers, ThatFloodWithDatagramsDoNotHoldUpAStop) {
    GivenUdp();
    const std::uint16_t port = GivenBound();
    Do("s.on('message', function () { if (++count === 1000) hear('flood') })");
    std::atomic<bool> over{false};
    std::thread sender([&] {
        const Peer peer = Peer::Datagrams();
        while (!over)
            peer.SendTo("datagram", port);
    });
    EXPECT_EQ(Heard(1), "flood");
    device->Stop();
    over = true;
    sender.join();
}

} // namespace
