#include <csignal>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include "TCPFixture.h"

namespace {

class TCPSettings : public TCPFixture {
protected:
    int Option(int descriptor, int level, int name) {
        int value = -1;
        socklen_t size = sizeof value;
        getsockopt(descriptor, level, name, &value, &size);
        return value;
    }
};

class TCPSend : public TCPFixture {};
class TCPAttach : public TCPFixture {
protected:
    SystemSocket Accepted() {
        Peer outside(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(listener.GetPort());
        EXPECT_EQ(connect(outside.GetDescriptor(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        other = std::move(outside);
        return SystemSocket(listener.Accept().Release());
    }
    Peer other; // the far end
};

const std::string kLarge(8000000, 'L');

} // namespace

TEST_F(TCPSettings, ANewClientHasItsInitialValues) {
    MTCPClientSocket fresh;
    EXPECT_EQ(fresh.GetAddress(), "");
    EXPECT_EQ(fresh.GetPort(), 0);
    EXPECT_FALSE(fresh.GetNoDelay());
    EXPECT_FALSE(fresh.GetAutoReconnect());
    EXPECT_FALSE(fresh.GetStopOnClose());
    EXPECT_EQ(fresh.GetSocketBufferSize(), 131072);
    EXPECT_FALSE(fresh.IsConnected());
    EXPECT_FALSE(fresh.IsStarted());
}

TEST_F(TCPSettings, ANullAddressIsEmpty) {
    client->SetAddress(nullptr);
    EXPECT_EQ(client->GetAddress(), "");
}

TEST_F(TCPSettings, WithoutASocketOptionsAreNotedAndGiveMinus20) {
    EXPECT_EQ(client->SetNoDelay(true), -20);
    EXPECT_TRUE(client->GetNoDelay());
    EXPECT_EQ(client->SetKeepAlive(true, 2000, 5000), -20);
    EXPECT_EQ(client->SetNoDelay(false), -20);
    EXPECT_FALSE(client->GetNoDelay());
}

TEST_F(TCPSettings, NotedOptionsReachTheNextSocket) {
    client->SetNoDelay(true);
    client->SetKeepAlive(true, 3001, 7000);
    client->SetSocketBufferSize(50000);
    const Peer peer = GivenConnection();
    const int descriptor = ClientDescriptor(peer);
    ASSERT_GE(descriptor, 0);
    EXPECT_EQ(Option(descriptor, IPPROTO_TCP, TCP_NODELAY), 1);
    EXPECT_EQ(Option(descriptor, SOL_SOCKET, SO_KEEPALIVE), 1);
    EXPECT_EQ(Option(descriptor, IPPROTO_TCP, TCP_KEEPIDLE), 4);
    EXPECT_EQ(Option(descriptor, IPPROTO_TCP, TCP_KEEPINTVL), 7);
    EXPECT_EQ(Option(descriptor, SOL_SOCKET, SO_SNDBUF), 100000); // this system doubles it for its own needs
    EXPECT_EQ(Option(descriptor, SOL_SOCKET, SO_RCVBUF), 100000);
}

TEST_F(TCPSettings, WithoutWishesTheSocketHasTheUsualBuffersAndNoOptions) {
    const Peer peer = GivenConnection();
    const int descriptor = ClientDescriptor(peer);
    ASSERT_GE(descriptor, 0);
    EXPECT_EQ(Option(descriptor, IPPROTO_TCP, TCP_NODELAY), 0);
    EXPECT_EQ(Option(descriptor, SOL_SOCKET, SO_KEEPALIVE), 0);
    EXPECT_EQ(Option(descriptor, SOL_SOCKET, SO_SNDBUF), 262144);
    EXPECT_EQ(Option(descriptor, SOL_SOCKET, SO_RCVBUF), 262144);
}

TEST_F(TCPSettings, AConnectedSocketTakesOptionsAtOnce) {
    const Peer peer = GivenConnection();
    const int descriptor = ClientDescriptor(peer);
    EXPECT_EQ(client->SetNoDelay(true), 0);
    EXPECT_EQ(Option(descriptor, IPPROTO_TCP, TCP_NODELAY), 1);
    EXPECT_EQ(client->SetKeepAlive(true, 1000, 1000), 0);
    EXPECT_EQ(Option(descriptor, SOL_SOCKET, SO_KEEPALIVE), 1);
    EXPECT_EQ(client->SetKeepAlive(true, 0xFFFFFFFF, 1000), -8);
    EXPECT_EQ(client->SetKeepAlive(false, 0, 0), 0);
    EXPECT_EQ(Option(descriptor, SOL_SOCKET, SO_KEEPALIVE), 0);
}

TEST_F(TCPSettings, AKeepAliveThatTheNextSocketRefusesFailsTheConnectWithMinus23) {
    client->SetKeepAlive(true, 0xFFFFFFFF, 1000);
    GivenPort(listener.GetPort());
    EXPECT_EQ(client->Connect(), -23);
    EXPECT_TRUE(recorder.All().empty());
}

TEST_F(TCPSettings, AHandlerIsThereOnce) {
    client->AddHandler(&recorder);
    client->AddHandler(nullptr);
    const Peer peer = GivenConnection();
    client->RemoveHandler(&recorder);
    EXPECT_EQ(recorder.All(), Words{"connect"});
    EXPECT_EQ(recorder.queries, 1);
}

TEST_F(TCPSettings, TheSamePortAndAddressDoNothingWhileConnected) {
    const Peer peer = GivenConnection();
    client->SetPort(listener.GetPort());
    client->SetAddress("127.0.0.1");
    EXPECT_TRUE(client->IsConnected());
    EXPECT_EQ(recorder.All(), Words{"connect"});
}

TEST_F(TCPSettings, AnotherPortClosesAndReconnectsBeforeItReturns) {
    const Peer peer = GivenConnection();
    const Listener second;
    client->SetPort(second.GetPort());
    EXPECT_TRUE(client->IsConnected());
    EXPECT_EQ(recorder.All(), (Words{"connect", "close", "connect"}));
    EXPECT_TRUE(peer.SeesTheEnd());
    const Peer next = second.Accept();
    next.Send("here");
    EXPECT_TRUE(recorder.WaitForData(4));
}

TEST_F(TCPSettings, AnotherAddressClosesAndReconnectsToo) {
    const Peer peer = GivenConnection();
    client->SetAddress("localhost");
    EXPECT_EQ(recorder.All(), (Words{"connect", "close", "connect"}));
    EXPECT_TRUE(listener.Accept().IsOpen());
}

TEST_F(TCPSettings, AnotherPortWhereNobodyListensTellsCloseAndError) {
    const Peer peer = GivenConnection();
    client->SetPort(ClosedPort());
    EXPECT_FALSE(client->IsConnected());
    EXPECT_EQ(recorder.All(), (Words{"connect", "close", "error -5"}));
}

TEST_F(TCPSettings, AnotherPortWithoutAConnectionConnectsNothing) {
    client->SetPort(listener.GetPort());
    EXPECT_FALSE(client->IsConnected());
    EXPECT_EQ(recorder.queries, 0);
}

TEST_F(TCPSend, NullAndNegativeAreBadParameters) {
    EXPECT_EQ(client->Send(nullptr, 1), -8);
    const Peer peer = GivenConnection();
    EXPECT_EQ(client->Send(nullptr, 0), -8);
    EXPECT_EQ(client->Send("x", -1), -8);
}

TEST_F(TCPSend, NeedsTheLibraryAndAConnection) {
    EXPECT_EQ(client->Send("x", 1), -7);
    EXPECT_EQ(client->ShutdownSend(), -7);
    client->MWSAData::Start();
    EXPECT_EQ(client->Send("x", 1), -9);
    EXPECT_EQ(client->ShutdownSend(), -9);
    GivenPort(ClosedPort());
    EXPECT_EQ(client->Connect(), -5);
    EXPECT_EQ(client->Send("x", 1), -9);
}

TEST_F(TCPSend, ArrivesWhole) {
    const Peer peer = GivenConnection();
    EXPECT_EQ(client->Send("hello", 5), 0);
    EXPECT_EQ(client->Send("", 0), 0);
    EXPECT_EQ(peer.Receive(5), "hello");
}

TEST_F(TCPSend, WaitsForASlowPeer) {
    const Peer peer = GivenConnection();
    std::string received;
    std::thread reader([&] { received = peer.Receive(kLarge.size()); });
    EXPECT_EQ(client->Send(kLarge.data(), static_cast<std::int32_t>(kLarge.size())), 0);
    reader.join();
    EXPECT_EQ(received, kLarge);
}

TEST_F(TCPSend, FromAHandlerNeverWaitsAndStillArrivesWhole) {
    recorder.onData = [](MTCPClientSocket* socket, const std::string&) {
        EXPECT_EQ(socket->Send(kLarge.data(), static_cast<std::int32_t>(kLarge.size())), 0);
        EXPECT_EQ(socket->Send("end", 3), 0);
    };
    const Peer peer = GivenConnection();
    peer.Send("?");
    ASSERT_TRUE(recorder.WaitForData(1)); // the handler has returned though nobody reads yet
    EXPECT_EQ(peer.Receive(kLarge.size() + 3), kLarge + "end");
}

TEST_F(TCPSend, BothWaysAtOnceNeverBlockEachOther) {
    const Peer peer = GivenConnection();
    std::thread sender([&] { client->Send(kLarge.data(), static_cast<std::int32_t>(kLarge.size())); });
    EXPECT_TRUE(peer.Send(kLarge)); // while it does not read
    EXPECT_EQ(peer.Receive(kLarge.size()).size(), kLarge.size());
    sender.join();
    EXPECT_TRUE(recorder.WaitForData(kLarge.size()));
}

TEST_F(TCPSend, ToAPeerThatResetsNeverKillsTheProcess) {
    Peer peer = GivenConnection();
    peer.Reset();
    ASSERT_TRUE(recorder.WaitFor("close"));
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(client->Send("x", 1), -9);
}

TEST_F(TCPSend, WhileThePeerClosesNeverKillsTheProcess) {
    struct sigaction action {};
    sigaction(SIGPIPE, nullptr, &action);
    ASSERT_EQ(action.sa_handler, SIG_DFL) << "or the test shows nothing";
    for (int round = 0; round < 20; ++round) {
        TCPRecorder other;
        MTCPClientSocket sender;
        sender.AddHandler(&other);
        sender.SetAddress("127.0.0.1");
        sender.SetPort(listener.GetPort());
        ASSERT_EQ(sender.Connect(), 0);
        Peer peer = listener.Accept();
        std::thread closer([&] { peer.Reset(); });
        std::int32_t code = 0;
        while (code == 0)
            code = sender.Send("0123456789", 10);
        closer.join();
        EXPECT_TRUE(code == -10 || code == -9) << code;
        sender.RemoveHandler(&other);
    }
}

TEST_F(TCPSend, DisconnectFreesAWaitingSenderWhoGetsZeroAsIntended) {
    const Peer peer = GivenConnection();
    std::int32_t code = -1;
    std::thread sender([&] { code = client->Send(kLarge.data(), static_cast<std::int32_t>(kLarge.size())); });
    EXPECT_EQ(peer.Receive(1), "L");
    client->Disconnect();
    sender.join();
    EXPECT_EQ(code, 0);
}

TEST_F(TCPSend, APeerThatDiesFreesAWaitingSender) {
    Peer peer = GivenConnection();
    std::thread sender([&] { client->Send(kLarge.data(), static_cast<std::int32_t>(kLarge.size())); });
    EXPECT_EQ(peer.Receive(1), "L");
    peer.Reset();
    sender.join();
    EXPECT_TRUE(recorder.WaitFor("close"));
}

TEST_F(TCPSend, AfterShutdownSendThePeerSeesTheEndAndCanStillSend) {
    const Peer peer = GivenConnection();
    EXPECT_EQ(client->Send("last", 4), 0);
    EXPECT_EQ(client->ShutdownSend(), 0);
    EXPECT_EQ(peer.Receive(100), "last");
    EXPECT_TRUE(client->IsConnected());
    EXPECT_EQ(client->Send("x", 1), -10);
    peer.Send("answer");
    EXPECT_TRUE(recorder.WaitForData(6));
}

TEST_F(TCPAttach, NeedsTheLibraryAndASocket) {
    EXPECT_EQ(client->Attach(Accepted(), {}), -7);
    EXPECT_TRUE(other.SeesTheEnd());
    client->MWSAData::Start();
    EXPECT_EQ(client->Attach(SystemSocket(), {}), -20);
}

TEST_F(TCPAttach, TakesOverAnAcceptedConnection) {
    client->MWSAData::Start();
    ASSERT_EQ(client->Attach(Accepted(), {}), 0);
    EXPECT_TRUE(client->IsConnected());
    EXPECT_EQ(client->GetAddress(), "127.0.0.1");
    EXPECT_EQ(client->GetPort(), other.GetPort());
    EXPECT_TRUE(client->StartThread());
    other.Send("in");
    EXPECT_TRUE(recorder.WaitForData(2));
    EXPECT_EQ(client->Send("out", 3), 0);
    EXPECT_EQ(other.Receive(3), "out");
    EXPECT_TRUE(recorder.All().empty());
}

TEST_F(TCPAttach, TakesThePlaceOfAConnection) {
    const Peer first = GivenConnection();
    ASSERT_EQ(client->Attach(Accepted(), {}), 0);
    EXPECT_TRUE(first.SeesTheEnd());
    other.Send("in");
    EXPECT_TRUE(recorder.WaitForData(2));
    EXPECT_EQ(recorder.All(), Words{"connect"});
}
