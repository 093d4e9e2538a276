#include <chrono>
#include <thread>

#include "RefusedWaits.h"
#include "UDPFixture.h"

namespace {

class UDPThread : public UDPFixture {
protected:
    // The socket's descriptor: the one with its port.
    int OwnDescriptor() {
        for (const int descriptor : SocketDescriptors())
            if (LocalPortOf(descriptor) == socket->GetPort())
                return descriptor;
        return -1;
    }
};
using std::chrono::milliseconds;
using std::chrono::steady_clock;

} // namespace

TEST_F(UDPThread, DeliversDatagramsInOrderEmptyOnesToo) {
    GivenBound();
    for (const char* text : {"one", "", "three"})
        Send(text);
    ASSERT_TRUE(recorder.WaitForEvents(3));
    EXPECT_EQ(recorder.All(), (Words{"one", "", "three"}));
    EXPECT_EQ(recorder.Source(), "127.0.0.1");
}

TEST_F(UDPThread, ReportsThePortAsItTravelledSoThat1234Is53764AsIntended) {
    if (!HasOwnNetwork())
        GTEST_SKIP() << "the kernel forbids a network of our own, and elsewhere the port may be in use";
    GivenBound();
    MUDPSocket sender;
    sender.SetPort(1234);
    ASSERT_EQ(sender.Bind(false, nullptr, 0), 0);
    EXPECT_EQ(sender.SendTo("x", 1, "127.0.0.1", socket->GetPort()), 0);
    ASSERT_TRUE(recorder.WaitFor("x"));
    EXPECT_EQ(recorder.SourcePort(), 53764);
}

TEST_F(UDPThread, ALongDatagramTellsMinus12AndThenItsFirst4096Bytes) {
    GivenBound();
    Send(std::string(4096, 'a'));
    Send(std::string(5000, 'b'));
    Send("short");
    ASSERT_TRUE(recorder.WaitForEvents(4));
    EXPECT_EQ(recorder.All(), (Words{std::string(4096, 'a'), "error -12", std::string(4096, 'b'), "short"}));
}

TEST_F(UDPThread, ALongDatagramComesWithTheSenderOfTheLastWholeOneAsIntended) {
    GivenBound();
    const Peer other = Peer::Datagrams("127.0.0.9");
    EXPECT_TRUE(other.SendTo(std::string(5000, 'b'), socket->GetPort()));
    ASSERT_TRUE(recorder.WaitForEvents(2));
    EXPECT_EQ(recorder.Source(), "");
    EXPECT_EQ(recorder.SourcePort(), 0);
    Send("short");
    EXPECT_TRUE(other.SendTo(std::string(5000, 'c'), socket->GetPort()));
    ASSERT_TRUE(recorder.WaitForEvents(5));
    EXPECT_EQ(recorder.Source(), "127.0.0.1");
    EXPECT_EQ(recorder.SourcePort(), NetworkPort(peer.GetPort()));
    EXPECT_TRUE(other.SendTo("whole", socket->GetPort()));
    ASSERT_TRUE(recorder.WaitFor("whole"));
    EXPECT_EQ(recorder.Source(), "127.0.0.9");
}

TEST_F(UDPThread, AnotherBufferSizeHoldsForTheNextDatagram) {
    GivenBound();
    socket->SetReceiveBufferSize(3);
    Send("12345"); // the thread may hold a buffer of before for what is under way
    ASSERT_TRUE(recorder.WaitForEvents(2));
    EXPECT_EQ(recorder.All(), (Words{"error -12", "123"}));
    socket->SetReceiveBufferSize(1000000);
    EXPECT_EQ(socket->GetReceiveBufferSize(), 65507U);
    Send(std::string(65507, 'x'));
    EXPECT_TRUE(recorder.WaitFor(std::string(65507, 'x')));
}

TEST_F(UDPThread, WithoutASocketTheBufferSizeIsNotCappedAndLargeOnesDoNoHarm) {
    socket->SetReceiveBufferSize(0xFFFFFFFF);
    EXPECT_EQ(socket->GetReceiveBufferSize(), 0xFFFFFFFF);
    GivenBound();
    Send("fine");
    EXPECT_TRUE(recorder.WaitFor("fine"));
}

TEST_F(UDPThread, ABufferOfNothingReportsEveryDatagram) {
    socket->SetReceiveBufferSize(0);
    GivenBound();
    Send("x");
    ASSERT_TRUE(recorder.WaitForEvents(2));
    EXPECT_EQ(recorder.All(), (Words{"error -12", ""}));
}

TEST_F(UDPThread, ABurstEndsWithOneCall) {
    class Blocking : public UDPRecorder {
    public:
        void OnMessage(const char* data, std::int32_t length, const char* source, std::uint16_t port,
                       MUDPSocket* s) override {
            entered.Set();
            go.Wait(kDeadlineMs);
            UDPRecorder::OnMessage(data, length, source, port, s);
        }
        MEvent entered;
        MEvent go;
    } blocking;
    socket->RemoveHandler(&recorder);
    socket->AddHandler(&blocking);
    GivenBound();
    Send("first");
    ASSERT_TRUE(blocking.entered.Wait(kDeadlineMs));
    for (int i = 0; i < 20; ++i)
        Send("more"); // all are there before the thread looks again
    blocking.go.Set();
    ASSERT_TRUE(blocking.WaitFor("more", 20));
    socket->Close();
    EXPECT_EQ(blocking.bursts, 2);
}

TEST_F(UDPThread, AFloodNeverHangsRemoveHandlerNorClose) {
    GivenBound();
    std::atomic<bool> stop{false};
    std::thread flood([&] {
        while (!stop)
            Send("flood");
    });
    ASSERT_TRUE(recorder.WaitFor("flood", 1000));
    socket->RemoveHandler(&recorder);
    const std::size_t before = recorder.All().size();
    EXPECT_EQ(socket->Close(), 0);
    stop = true;
    flood.join();
    EXPECT_EQ(recorder.All().size(), before);
}

TEST_F(UDPThread, CloseIsPromptWhileTheThreadWaits) {
    GivenBound();
    const auto start = steady_clock::now();
    EXPECT_EQ(socket->Close(), 0);
    EXPECT_LT(steady_clock::now() - start, milliseconds(2000));
}

TEST_F(UDPThread, BindAndCloseMayBeRepeatedManyTimes) {
    const std::size_t descriptors = CountDescriptors();
    for (int i = 0; i < 200; ++i) {
        socket->SetPort(0);
        GivenBound();
        Send("round");
        ASSERT_TRUE(recorder.WaitFor("round", static_cast<std::size_t>(i) + 1));
        ASSERT_EQ(socket->Close(), 0);
    }
    EXPECT_EQ(CountDescriptors(), descriptors + 1) << "the wake of the thread stays until the end";
    socket.reset();
    EXPECT_EQ(CountDescriptors(), descriptors);
}

TEST_F(UDPThread, ASocketThatCannotBeReadTellsMinus15WithoutSpinning) {
    GivenBound();
    const int own = OwnDescriptor();
    ASSERT_GE(own, 0);
    const Peer other = ReplaceByZeros(own);
    EXPECT_TRUE(peer.SendTo("wake", other.GetPort()));
    ASSERT_TRUE(recorder.WaitFor("error -15", 2));
    const auto start = steady_clock::now();
    ASSERT_TRUE(recorder.WaitFor("error -15", 4));
    EXPECT_GE(steady_clock::now() - start, milliseconds(90));
    EXPECT_EQ(recorder.Count("wake"), 0U);
    EXPECT_EQ(socket->Close(), 0);
}

TEST_F(UDPThread, ASystemThatRefusesToWaitTellsMinus14AndEndsTheThread) {
    GivenBound();
    {
        const RefusedWaits refused;
        Send("ends the wait of before, if there is one");
        ASSERT_TRUE(recorder.WaitFor("error -14"));
        EXPECT_TRUE(Eventually([this] { return !socket->IsStarted(); }));
    }
    EXPECT_EQ(recorder.All().back(), "error -14");
    EXPECT_EQ(recorder.Count("error -14"), 1U);
    EXPECT_EQ(socket->GetMaxMessageSize(), 0U) << "the socket is closed";
    EXPECT_EQ(socket->Close(), 0);
    GivenBound();
    Send("again");
    EXPECT_TRUE(recorder.WaitFor("again"));
}
