#include <chrono>

#include "FewDescriptors.h"
#include "TCPFixture.h"

namespace {

class TCPConnect : public TCPFixture {
protected:
    /// A connect on a thread of its own to a port that does not answer.
    void GivenPendingConnect() {
        GivenPort(silent.GetPort());
        connecting = std::thread([this] { result = client->Connect(); });
        EXPECT_TRUE(Eventually([this] { return recorder.queries == 1; }));
    }
    void TearDown() override {
        client->Disconnect();
        if (connecting.joinable())
            connecting.join();
    }

    SilentPort silent;
    std::thread connecting;
    std::atomic<std::int32_t> result{99};
};

} // namespace

TEST_F(TCPConnect, SynchronouslyTellsNobodyAndThenServes) {
    GivenPort(listener.GetPort());
    EXPECT_EQ(client->Connect(), 0);
    EXPECT_TRUE(client->IsConnected());
    EXPECT_TRUE(client->IsStarted());
    const Peer peer = listener.Accept();
    peer.Send("data");
    EXPECT_TRUE(recorder.WaitForData(4));
    EXPECT_TRUE(recorder.All().empty());
}

TEST_F(TCPConnect, ByANameWorks) {
    GivenPort(listener.GetPort());
    client->SetAddress("localhost");
    EXPECT_EQ(client->Connect(), 0);
}

TEST_F(TCPConnect, ASecondOneWhileConnectedGivesMinus11AndTellsNobody) {
    const Peer peer = GivenConnection();
    EXPECT_EQ(client->Connect(), -11);
    EXPECT_TRUE(client->IsConnected());
    EXPECT_EQ(recorder.All(), Words{"connect"});
    EXPECT_EQ(recorder.queries, 1);
}

TEST_F(TCPConnect, AnotherOneMeanwhileGivesMinus26AtOnce) {
    GivenPendingConnect();
    EXPECT_EQ(client->Connect(), -26);
    EXPECT_EQ(client->ConnectAsync(), -26);
    EXPECT_EQ(result, 99);
}

TEST_F(TCPConnect, AnotherOneFromTheQuestionBeforeItGivesMinus26) {
    std::int32_t inner = 0;
    recorder.onQuery = [&](MTCPClientSocket* socket) { inner = socket->Connect(); };
    GivenPort(listener.GetPort());
    EXPECT_EQ(client->Connect(), 0);
    EXPECT_EQ(inner, -26);
}

TEST_F(TCPConnect, AVetoGivesMinus6AndAsksNobodyElse) {
    TCPRecorder second;
    client->AddHandler(&second);
    recorder.agrees = false;
    GivenPort(listener.GetPort());
    EXPECT_EQ(client->Connect(), -6);
    EXPECT_EQ(recorder.queries, 1);
    EXPECT_EQ(second.queries, 0);
    EXPECT_EQ(client->SetNoDelay(true), -20) << "no socket was made";
    client->RemoveHandler(&second);
}

TEST_F(TCPConnect, AVetoOfAnAsynchronousOneTellsNobody) {
    recorder.agrees = false;
    GivenPort(listener.GetPort());
    EXPECT_EQ(client->ConnectAsync(), 0);
    EXPECT_TRUE(Eventually([this] { return recorder.queries == 1; }));
    client->Disconnect();
    EXPECT_TRUE(recorder.All().empty());
}

TEST_F(TCPConnect, RefusedGivesMinus5AndLeavesTheSocketForTheNext) {
    GivenPort(ClosedPort());
    EXPECT_EQ(client->Connect(), -5);
    EXPECT_FALSE(client->IsConnected());
    EXPECT_TRUE(recorder.All().empty()) << "a synchronous connect tells nobody";
    EXPECT_EQ(client->SetNoDelay(true), 0) << "the socket stays";
    EXPECT_EQ(client->Connect(), -5);
    GivenPort(listener.GetPort());
    EXPECT_EQ(client->Connect(), 0);
}

TEST_F(TCPConnect, RefusedAsynchronouslyTellsTheError) {
    GivenPort(ClosedPort());
    EXPECT_EQ(client->ConnectAsync(), 0);
    EXPECT_TRUE(recorder.WaitFor("error -5"));
    client->Disconnect();
    EXPECT_EQ(recorder.All(), Words{"error -5"});
}

TEST_F(TCPConnect, ToAnUnreachableNetworkGivesMinus6) {
    if (!HasOwnNetwork())
        GTEST_SKIP() << "the kernel forbids a network of our own";
    client->SetAddress("10.99.1.1");
    GivenPort(9);
    EXPECT_EQ(client->Connect(), -6);
}

TEST_F(TCPConnect, ToASilentHostTimesOutWithMinus4WhenTheSystemGivesUp) {
    if (!HasOwnNetwork())
        GTEST_SKIP() << "the kernel forbids a network of our own, and elsewhere the system tries for minutes";
    GivenPort(silent.GetPort());
    EXPECT_EQ(client->ConnectAsync(), 0);
    EXPECT_TRUE(recorder.WaitFor("error -4"));
}

TEST_F(TCPConnect, ToAnUnknownNameGivesMinus3AndNeverTellsHandlers) {
    client->SetAddress("two words");
    GivenPort(9);
    EXPECT_EQ(client->Connect(), -3);
    EXPECT_EQ(client->ConnectAsync(), 0);
    EXPECT_TRUE(Eventually([this] { return recorder.queries == 2; }));
    EXPECT_TRUE(Eventually([this] { return client->Connect() == -3; })) << "the thread's attempt is over";
    EXPECT_TRUE(recorder.All().empty());
}

TEST_F(TCPConnect, ToNoAddressGivesMinus3) {
    client->SetAddress("");
    GivenPort(9);
    EXPECT_EQ(client->Connect(), -3);
}

TEST_F(TCPConnect, DisconnectEndsAPendingOneWithMinus31) {
    GivenPendingConnect();
    client->Disconnect();
    connecting.join();
    EXPECT_EQ(result, -31);
    EXPECT_TRUE(recorder.All().empty());
    EXPECT_EQ(client->SetNoDelay(true), -20) << "no socket is left";
}

TEST_F(TCPConnect, DisconnectEndsAPendingAsynchronousOneAndTheErrorIsTold) {
    GivenPort(silent.GetPort());
    EXPECT_EQ(client->ConnectAsync(), 0);
    EXPECT_TRUE(Eventually([this] { return client->SetNoDelay(true) == 0; }));
    client->Disconnect();
    EXPECT_FALSE(client->IsStarted());
    EXPECT_EQ(recorder.All(), Words{"error -31"});
}

TEST_F(TCPConnect, DisconnectAtAnyMomentOfAConnectEndsIt) {
    for (int round = 0; round < 200; ++round) {
        TCPRecorder none;
        MTCPClientSocket socket;
        socket.SetAddress("127.0.0.1");
        socket.SetPort(silent.GetPort());
        ASSERT_EQ(socket.ConnectAsync(), 0);
        for (volatile int spin = 0; spin < round * 50; ++spin) {
        }
        socket.Disconnect();
        EXPECT_FALSE(socket.IsStarted());
        EXPECT_FALSE(socket.IsConnected());
    }
}

TEST_F(TCPConnect, AfterDisconnectItConnectsAtOnceAgain) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 5; ++i) {
        const Peer peer = GivenConnection();
        EXPECT_TRUE(recorder.WaitFor("connect", static_cast<std::size_t>(i) + 1));
        client->Disconnect();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(8)); // five pauses would be ten
}

TEST_F(TCPConnect, WithoutDescriptorsGivesACodeAndWorksAgainLater) {
    GivenPort(listener.GetPort());
    {
        const FewDescriptors none(3);
        EXPECT_EQ(client->Connect(), -14) << "the thread could not be woken";
    }
    EXPECT_EQ(client->Connect(), 0);
}

TEST_F(TCPConnect, WithoutADescriptorForTheSocketGivesMinus2) {
    GivenPort(ClosedPort());
    EXPECT_EQ(client->Connect(), -5);
    client->Disconnect();
    const FewDescriptors none(3);
    EXPECT_EQ(client->Connect(), -2);
}
