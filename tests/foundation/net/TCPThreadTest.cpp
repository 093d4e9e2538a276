#include <chrono>

#include "RefusedWaits.h"
#include "TCPFixture.h"

namespace {

class TCPThread : public TCPFixture {};
using std::chrono::milliseconds;
using std::chrono::steady_clock;

} // namespace

TEST_F(TCPThread, DeliversOneByteAtATimeInOrder) {
    const Peer peer = GivenConnection();
    const std::string text = "one byte at a time";
    for (const char byte : text)
        peer.Send(std::string(1, byte));
    ASSERT_TRUE(recorder.WaitForData(text.size()));
    EXPECT_EQ(recorder.Data(), text);
}

TEST_F(TCPThread, DeliversAFloodWhole) {
    std::string text(20000000, ' ');
    for (std::size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char>(i * 31 + i / 4096);
    const Peer peer = GivenConnection();
    EXPECT_TRUE(peer.Send(text));
    ASSERT_TRUE(recorder.WaitForData(text.size()));
    EXPECT_TRUE(recorder.Data() == text);
}

TEST_F(TCPThread, LargeBurstsComeInLargeBlocks) {
    std::atomic<std::size_t> largest{0};
    MEvent go;
    recorder.onData = [&](MTCPClientSocket*, const std::string& block) {
        go.Wait(kDeadlineMs); // meanwhile more arrives
        largest = std::max<std::size_t>(largest, block.size());
    };
    const Peer peer = GivenConnection();
    peer.Send("x");
    EXPECT_TRUE(recorder.WaitForData(1));
    EXPECT_TRUE(peer.Send(std::string(100000, 'y')));
    go.Set();
    EXPECT_TRUE(recorder.WaitForData(100001));
    client->Disconnect(); // no call runs any more
    EXPECT_GT(largest, 4096U);
}

TEST_F(TCPThread, ThePeersCloseDeliversWhatCameBeforeAndThenTellsClose) {
    Peer peer = GivenConnection();
    peer.Send("goodbye");
    peer.Close();
    ASSERT_TRUE(recorder.WaitFor("close"));
    EXPECT_EQ(recorder.Data(), "goodbye");
    EXPECT_EQ(recorder.All(), (Words{"connect", "close"}));
    EXPECT_FALSE(client->IsConnected());
    EXPECT_TRUE(client->IsStarted()) << "the thread goes on";
}

TEST_F(TCPThread, ThePeersHalfCloseIsAClose) {
    const Peer peer = GivenConnection();
    peer.ShutDownSending();
    EXPECT_TRUE(recorder.WaitFor("close"));
    EXPECT_TRUE(peer.SeesTheEnd());
}

TEST_F(TCPThread, AResetTellsErrorMinus29AndThenClose) {
    Peer peer = GivenConnection();
    peer.Reset();
    ASSERT_TRUE(recorder.WaitFor("close"));
    EXPECT_EQ(recorder.All(), (Words{"connect", "error -29", "close"}));
}

TEST_F(TCPThread, AResetWhileAnotherThreadWritesTellsTheSame) {
    const std::string much(std::size_t{16} << 20, 'x');
    Words expected;
    for (std::size_t round = 1; round <= 30; ++round) {
        Peer peer = GivenConnection();
        ASSERT_TRUE(recorder.WaitFor("connect", round));
        std::thread writer([&] { client->Send(much.data(), static_cast<std::int32_t>(much.size())); });
        EXPECT_EQ(peer.Receive(1), "x");
        peer.Reset();
        EXPECT_TRUE(recorder.WaitFor("close", round));
        writer.join();
        client->Disconnect();
        expected.insert(expected.end(), {"connect", "error -29", "close"});
    }
    EXPECT_EQ(recorder.All(), expected);
}

TEST_F(TCPThread, WhileItDoesNotReadThePeerHasToWaitAndNothingIsLost) {
    const std::string text(std::size_t{8} << 20, 'x');
    const Peer peer = GivenConnection();
    client->SetReading(false);
    std::atomic<bool> sent{false};
    std::thread sender([&] {
        EXPECT_TRUE(peer.Send(text));
        sent = true;
    });
    EXPECT_EQ(client->Send("answer", 6), 0);
    EXPECT_EQ(peer.Receive(6), "answer") << "sending goes on";
    EXPECT_FALSE(sent) << "the system's buffers hold less";
    EXPECT_EQ(recorder.Data(), "");
    client->SetReading(true);
    EXPECT_TRUE(recorder.WaitForData(text.size()));
    sender.join();
    EXPECT_TRUE(recorder.Data() == text);
}

TEST_F(TCPThread, TheEndThatComesWhileItDoesNotReadIsHeardAfterTheData) {
    Peer peer = GivenConnection();
    client->SetReading(false);
    peer.Send("goodbye");
    peer.Reset();
    EXPECT_EQ(recorder.All(), Words{"connect"});
    client->SetReading(true);
    ASSERT_TRUE(recorder.WaitFor("close"));
    EXPECT_EQ(recorder.Data(), "goodbye");
    EXPECT_EQ(recorder.All(), (Words{"connect", "error -29", "close"}));
}

TEST_F(TCPThread, DisconnectIsPromptWhileItDoesNotRead) {
    const Peer peer = GivenConnection();
    client->SetReading(false);
    peer.Send("unheard");
    client->Disconnect();
    EXPECT_FALSE(client->IsStarted());
    EXPECT_EQ(recorder.Data(), "");
}

TEST_F(TCPThread, WhileCloseIsToldItIsNotConnected) {
    std::atomic<bool> connected{true};
    recorder.onClose = [&](MTCPClientSocket* socket) { connected = socket->IsConnected(); };
    Peer peer = GivenConnection();
    peer.Close();
    ASSERT_TRUE(recorder.WaitFor("close"));
    EXPECT_FALSE(connected);
}

TEST_F(TCPThread, AfterAConnectItIsNotTriedAgainByItself) {
    Peer peer = GivenConnection();
    peer.Close();
    ASSERT_TRUE(recorder.WaitFor("close"));
    EXPECT_EQ(recorder.queries, 1);
    client->Disconnect();
    EXPECT_EQ(recorder.queries, 1);
}

TEST_F(TCPThread, StopOnCloseEndsTheThread) {
    client->SetStopOnClose(true);
    Peer peer = GivenConnection();
    peer.Close();
    EXPECT_TRUE(ThreadIsGone());
    EXPECT_EQ(recorder.All(), (Words{"connect", "close"}));
    EXPECT_EQ(client->Send("x", 1), -7);
    const Peer next = GivenConnection();
    EXPECT_TRUE(recorder.WaitFor("connect", 2)) << "it can be used again";
}

TEST_F(TCPThread, DisconnectTellsNobodyAndIsPrompt) {
    const Peer peer = GivenConnection();
    const auto start = steady_clock::now();
    client->Disconnect();
    EXPECT_LT(steady_clock::now() - start, milliseconds(2000));
    EXPECT_FALSE(client->IsStarted());
    EXPECT_EQ(recorder.All(), Words{"connect"});
    EXPECT_TRUE(peer.SeesTheEnd());
}

TEST_F(TCPThread, DisconnectIsHarmlessInEveryState) {
    client->Disconnect();
    client->Disconnect();
    GivenPort(ClosedPort());
    EXPECT_EQ(client->Connect(), -5);
    client->Disconnect();
    Peer peer = GivenConnection();
    peer.Close();
    ASSERT_TRUE(recorder.WaitFor("close"));
    client->Disconnect();
    EXPECT_EQ(recorder.All(), (Words{"connect", "close"}));
}

TEST_F(TCPThread, TheDestructorTellsClose) {
    const Peer peer = GivenConnection();
    client.reset();
    EXPECT_EQ(recorder.All(), (Words{"connect", "close"}));
}

TEST_F(TCPThread, DisconnectFromAHandlerEndsTheThread) {
    recorder.onData = [](MTCPClientSocket* socket, const std::string&) { socket->Disconnect(); };
    const Peer peer = GivenConnection();
    peer.Send("enough");
    EXPECT_TRUE(peer.SeesTheEnd());
    EXPECT_TRUE(ThreadIsGone());
    EXPECT_EQ(recorder.All(), Words{"connect"});
}

TEST_F(TCPThread, AHandlerMayRemoveItself) {
    recorder.onData = [this](MTCPClientSocket* socket, const std::string&) { socket->RemoveHandler(&recorder); };
    Peer peer = GivenConnection();
    peer.Send("x");
    ASSERT_TRUE(recorder.WaitForData(1));
    peer.Close();
    EXPECT_TRUE(Eventually([this] { return !client->IsConnected(); }));
    EXPECT_EQ(recorder.All(), Words{"connect"});
}

TEST_F(TCPThread, RemoveHandlerWaitsForTheCallThatRuns) {
    MEvent entered;
    MEvent go;
    std::atomic<bool> left{false};
    recorder.onData = [&](MTCPClientSocket*, const std::string&) {
        entered.Set();
        go.Wait(kDeadlineMs);
        left = true;
    };
    const Peer peer = GivenConnection();
    peer.Send("x");
    ASSERT_TRUE(entered.Wait(kDeadlineMs));
    std::thread opener([&] { go.Set(); });
    client->RemoveHandler(&recorder);
    EXPECT_TRUE(left);
    opener.join();
}

TEST_F(TCPThread, RequestStopEndsTheThreadAtOnceAndLeavesTheConnection) {
    const Peer peer = GivenConnection();
    client->RequestStop();
    EXPECT_TRUE(client->Wait(kDeadlineMs));
    EXPECT_TRUE(client->IsConnected());
    EXPECT_EQ(client->Send("still here", 10), 0);
    EXPECT_EQ(peer.Receive(10), "still here");
    peer.Send("later");
    EXPECT_TRUE(client->StartThread());
    EXPECT_TRUE(recorder.WaitForData(5));
}

TEST_F(TCPThread, AStopWithAFloodComingInIsPrompt) {
    const Peer peer = GivenConnection();
    std::thread flood([&] {
        while (peer.Send(std::string(65536, 'f'))) {
        }
    });
    ASSERT_TRUE(recorder.WaitForData(1000000));
    client->Disconnect();
    EXPECT_FALSE(client->IsStarted());
    flood.join();
}

TEST_F(TCPThread, AutoReconnectComesBackAfterALoss) {
    client->SetAutoReconnect(true);
    Peer peer = GivenConnection();
    const auto start = steady_clock::now();
    peer.Close();
    EXPECT_TRUE(recorder.WaitFor("connect", 2));
    EXPECT_LT(steady_clock::now() - start, milliseconds(kDeadlineMs));
    EXPECT_EQ(recorder.All(), (Words{"connect", "close", "connect"}));
}

TEST_F(TCPThread, AutoReconnectTriesARefusingPeerEvery2000Milliseconds) {
    client->SetAutoReconnect(true);
    GivenPort(ClosedPort());
    EXPECT_EQ(client->ConnectAsync(), 0);
    ASSERT_TRUE(recorder.WaitFor("error -5", 1));
    const auto first = steady_clock::now();
    ASSERT_TRUE(recorder.WaitFor("error -5", 3));
    const auto passed = steady_clock::now() - first;
    EXPECT_GE(passed, milliseconds(3900));
    EXPECT_LT(passed, milliseconds(8000));
}

TEST_F(TCPThread, AutoReconnectWithoutAConnectDoesNothing) {
    client->SetAutoReconnect(true);
    GivenPort(listener.GetPort());
    client->MWSAData::Start();
    EXPECT_TRUE(client->StartThread());
    EXPECT_TRUE(Eventually([this] { return client->IsStarted(); }));
    client->Disconnect();
    EXPECT_EQ(recorder.queries, 0);
}

TEST_F(TCPThread, AConnectSoonAfterTheLastWaitsAndIsNotDropped) {
    Peer peer = GivenConnection();
    const auto first = steady_clock::now();
    peer.Close();
    ASSERT_TRUE(recorder.WaitFor("close"));
    EXPECT_EQ(client->ConnectAsync(), 0);
    ASSERT_TRUE(recorder.WaitFor("connect", 2));
    EXPECT_GE(steady_clock::now() - first, milliseconds(1500));
}

TEST_F(TCPThread, DisconnectEndsTheWaitForTheNextAttempt) {
    client->SetAutoReconnect(true);
    GivenPort(ClosedPort());
    EXPECT_EQ(client->ConnectAsync(), 0);
    ASSERT_TRUE(recorder.WaitFor("error -5"));
    const auto start = steady_clock::now();
    client->Disconnect();
    EXPECT_LT(steady_clock::now() - start, milliseconds(1000));
}

TEST_F(TCPThread, AConnectAskedForWhileTheCloseIsToldIsNotDropped) {
    MEvent asked;
    MEvent told;
    recorder.onClose = [&](MTCPClientSocket*) {
        told.Set();
        asked.Wait(kDeadlineMs);
    };
    Peer peer = GivenConnection();
    peer.Close();
    EXPECT_TRUE(told.Wait(kDeadlineMs));
    EXPECT_EQ(client->ConnectAsync(), 0); // on another thread than the one that tells
    asked.Set();
    EXPECT_TRUE(recorder.WaitFor("connect", 2));
    client->RemoveHandler(&recorder); // no call runs any more
}

TEST_F(TCPThread, ASocketThatCannotBeReadTellsMinus15WithoutSpinning) {
    const Peer peer = GivenConnection();
    const int own = ClientDescriptor(peer);
    const Peer other = ReplaceByZeros(own);
    peer.Send("wake");
    ASSERT_TRUE(recorder.WaitFor("error -15", 2));
    const auto start = steady_clock::now();
    ASSERT_TRUE(recorder.WaitFor("error -15", 4));
    EXPECT_GE(steady_clock::now() - start, milliseconds(90));
    client->Disconnect();
}

TEST_F(TCPThread, ASystemThatRefusesToWaitTellsMinus14WithoutSpinningAndIsServedAgain) {
    const Peer peer = GivenConnection();
    {
        const RefusedWaits refused;
        peer.Send("wake");
        ASSERT_TRUE(recorder.WaitFor("error -14", 2));
        const auto start = steady_clock::now();
        ASSERT_TRUE(recorder.WaitFor("error -14", 4));
        EXPECT_GE(steady_clock::now() - start, milliseconds(90));
    }
    peer.Send(" again");
    EXPECT_TRUE(recorder.WaitForData(10));
    EXPECT_EQ(recorder.Data(), "wake again");
    EXPECT_EQ(recorder.Count("close"), 0U);
}

TEST_F(TCPThread, ADisconnectEndsThePauseAfterMinus14) {
    const Peer peer = GivenConnection();
    const RefusedWaits refused;
    peer.Send("wake");
    ASSERT_TRUE(recorder.WaitFor("error -14"));
    client->Disconnect();
    EXPECT_FALSE(client->IsStarted());
}
