#include <ctime>

#include "TCPFixture.h"

namespace {

constexpr std::size_t kMany = 200;

double ProcessorSeconds() {
    timespec used{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) / 1e9;
}

} // namespace

TEST(ManySockets, TwoHundredClientsConnectTalkAndLeaveNothing) {
    const std::size_t descriptors = CountDescriptors();
    const std::size_t threads = CountThreads();
    {
        const Listener listener(256);
        std::vector<TCPRecorder> recorders(kMany);
        std::vector<std::unique_ptr<MTCPClientSocket>> clients;
        std::vector<Peer> peers;
        for (TCPRecorder& recorder : recorders) {
            clients.push_back(std::make_unique<MTCPClientSocket>());
            clients.back()->SetStackSize(8193);
            clients.back()->AddHandler(&recorder);
            clients.back()->SetAddress("127.0.0.1");
            clients.back()->SetPort(listener.GetPort());
            ASSERT_EQ(clients.back()->ConnectAsync(), 0);
            peers.push_back(listener.Accept());
        }
        for (const Peer& peer : peers)
            peer.Send("hello");
        for (std::size_t i = 0; i < kMany; ++i) {
            ASSERT_TRUE(recorders[i].WaitForData(5));
            ASSERT_TRUE(recorders[i].WaitFor("connect"));
            ASSERT_EQ(clients[i]->Send("world", 5), 0);
        }
        for (const Peer& peer : peers)
            ASSERT_EQ(peer.Receive(5), "world");
        clients.clear();
    }
    EXPECT_EQ(CountDescriptors(), descriptors);
    EXPECT_TRUE(Eventually([=] { return CountThreads() <= threads; }));
}

TEST(ManySockets, TwoHundredDatagramSocketsReceiveAndLeaveNothing) {
    const std::size_t descriptors = CountDescriptors();
    const std::size_t threads = CountThreads();
    {
        const Peer sender = Peer::Datagrams();
        std::vector<UDPRecorder> recorders(kMany);
        std::vector<std::unique_ptr<MUDPSocket>> sockets;
        for (UDPRecorder& recorder : recorders) {
            sockets.push_back(std::make_unique<MUDPSocket>());
            sockets.back()->SetStackSize(8193);
            sockets.back()->AddHandler(&recorder);
            ASSERT_EQ(sockets.back()->Bind(false, nullptr, 0), 0);
            ASSERT_TRUE(sender.SendTo("hello", sockets.back()->GetPort()));
        }
        for (const UDPRecorder& recorder : recorders)
            ASSERT_TRUE(recorder.WaitFor("hello"));
        sockets.clear();
    }
    EXPECT_EQ(CountDescriptors(), descriptors);
    EXPECT_TRUE(Eventually([=] { return CountThreads() <= threads; }));
}

TEST(ManySockets, WaitingCostsNothing) {
    const Listener listener(256);
    std::vector<std::unique_ptr<MTCPClientSocket>> clients;
    std::vector<std::unique_ptr<MUDPSocket>> sockets;
    std::vector<Peer> peers;
    for (int i = 0; i < 20; ++i) {
        clients.push_back(std::make_unique<MTCPClientSocket>());
        clients.back()->SetAddress("127.0.0.1");
        clients.back()->SetPort(listener.GetPort());
        ASSERT_EQ(clients.back()->Connect(), 0);
        peers.push_back(listener.Accept());
        sockets.push_back(std::make_unique<MUDPSocket>());
        ASSERT_EQ(sockets.back()->Bind(false, nullptr, 0), 0);
    }
    peers.resize(10); // half of the clients are lost, and wait for nothing
    const double before = ProcessorSeconds();
    MEvent never;
    EXPECT_FALSE(never.Wait(500));
    EXPECT_LT(ProcessorSeconds() - before, 0.1);
}
