#include "SystemSocket.h"

#include <array>
#include <atomic>
#include <csignal>
#include <string>
#include <thread>

#include <pthread.h>

#include <gtest/gtest.h>

#include "DatagramReader.h"
#include "Deadline.h"
#include "SocketWait.h"
#include "SystemThread.h"

namespace {

std::uint32_t Loopback() {
    std::uint32_t address = 0;
    ParseDottedAddress("127.0.0.1", address);
    return address;
}

SocketAddress BindToLoopback(SystemSocket& socket) {
    SocketAddress address{Loopback(), 0};
    EXPECT_EQ(socket.Bind(address), SocketError::None);
    EXPECT_EQ(socket.GetLocalAddress(address), SocketError::None);
    return address;
}

/// A datagram socket with an address, and one that sends to it.
class DatagramPair : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(receiver.OpenDatagram(), SocketError::None);
        ASSERT_EQ(sender.OpenDatagram(), SocketError::None);
        address = BindToLoopback(receiver);
        reader.SetSize(8);
        ASSERT_TRUE(wake.Open());
    }
    void Send(const std::string& bytes) {
        ASSERT_EQ(sender.SendTo(bytes.data(), bytes.size(), address), SocketError::None);
    }
    std::string Text(std::size_t position) const {
        const Datagram datagram = reader.Get(position);
        return std::string(datagram.data, datagram.length);
    }

    SystemSocket receiver;
    SystemSocket sender;
    SocketAddress address;
    DatagramReader reader;
    SocketWake wake;
};

} // namespace

TEST(SystemSockets, AClosedSocketRefusesEverythingByItsNumber) {
    SystemSocket socket;
    SocketAddress address;
    std::uint32_t count = 0;
    char byte = 0;
    EXPECT_FALSE(socket.IsOpen());
    EXPECT_EQ(socket.Bind({}), SocketError::NotSocket);
    EXPECT_EQ(socket.GetLocalAddress(address), SocketError::NotSocket);
    EXPECT_EQ(socket.GetPendingCount(count), SocketError::NotSocket);
    EXPECT_EQ(socket.SetOption(SocketOption::NoDelay, 1), SocketError::NotSocket);
    EXPECT_EQ(socket.Receive(&byte, 1).error, SocketError::NotSocket);
    EXPECT_EQ(socket.Send(&byte, 1).error, SocketError::NotSocket);
    EXPECT_EQ(socket.ShutDownSending(), SocketError::NotSocket);
    EXPECT_FALSE(WaitUntilWritable(socket));
    SocketWake wake;
    EXPECT_TRUE(WaitForSocket(&socket, SocketInterest::Reading, wake, kInfinite).failed);
}

TEST(SystemSockets, ASocketThatMeetsItselfIsRefused) {
    SystemSocket socket;
    ASSERT_EQ(socket.OpenStream(), SocketError::None);
    const SocketAddress itself = BindToLoopback(socket);
    SocketError error = socket.Connect(itself);
    while (error == SocketError::IoPending && WaitUntilWritable(socket))
        error = socket.FinishConnect(itself);
    EXPECT_EQ(error, SocketError::ConnectionRefused);
    SocketAddress peer;
    EXPECT_EQ(socket.GetPeerAddress(peer), SocketError::NotConnected);
}

TEST(SystemSockets, ARefusedSocketCanTryAgain) {
    SystemSocket unused;
    SystemSocket socket;
    ASSERT_EQ(unused.OpenStream(), SocketError::None);
    ASSERT_EQ(socket.OpenStream(), SocketError::None);
    const SocketAddress nobody = BindToLoopback(unused);
    for (int attempt = 0; attempt < 3; ++attempt) {
        SocketError error = socket.Connect(nobody);
        while (error == SocketError::IoPending && WaitUntilWritable(socket))
            error = socket.FinishConnect(nobody);
        EXPECT_EQ(error, SocketError::ConnectionRefused);
    }
}

TEST(SystemSockets, KeepAliveBeyondTheRangeIsInvalid) {
    SystemSocket socket;
    ASSERT_EQ(socket.OpenStream(), SocketError::None);
    EXPECT_EQ(socket.SetKeepAlive(true, 0, 0), SocketError::None);
    EXPECT_EQ(socket.SetKeepAlive(true, 32767000, 1), SocketError::None);
    EXPECT_EQ(socket.SetKeepAlive(true, 32767001, 1), SocketError::Invalid);
    EXPECT_EQ(socket.SetKeepAlive(true, 1, 4000000000U), SocketError::Invalid);
    EXPECT_EQ(socket.SetKeepAlive(false, 4000000000U, 0), SocketError::None);
}

TEST_F(DatagramPair, ABurstComesInOrderWithOneCall) {
    for (int i = 0; i < 5; ++i)
        Send(std::to_string(i));
    ASSERT_EQ(reader.Receive(receiver), SocketError::None);
    ASSERT_EQ(reader.GetCount(), 5U);
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_EQ(Text(i), std::to_string(i));
    SocketAddress source;
    ASSERT_EQ(sender.GetLocalAddress(source), SocketError::None);
    EXPECT_EQ(reader.Get(4).source.port, source.port);
    EXPECT_EQ(reader.Get(4).source.address, Loopback());
}

TEST_F(DatagramPair, ABurstHasALimitAndTheRestStays) {
    for (std::size_t i = 0; i < DatagramReader::kBurst + 3; ++i)
        Send("x");
    ASSERT_EQ(reader.Receive(receiver), SocketError::None);
    EXPECT_EQ(reader.GetCount(), DatagramReader::kBurst);
    ASSERT_EQ(reader.Receive(receiver), SocketError::None);
    EXPECT_EQ(reader.GetCount(), 3U);
}

TEST_F(DatagramPair, NothingThereIsNoWait) {
    EXPECT_EQ(reader.Receive(receiver), SocketError::WouldBlock);
    EXPECT_EQ(reader.GetCount(), 0U);
}

TEST_F(DatagramPair, ADatagramThatIsTooLongIsCutAndMarked) {
    Send("123456789");
    Send("12345678");
    Send("");
    ASSERT_EQ(reader.Receive(receiver), SocketError::None);
    EXPECT_EQ(Text(0), "12345678");
    EXPECT_TRUE(reader.Get(0).truncated);
    EXPECT_EQ(Text(1), "12345678");
    EXPECT_FALSE(reader.Get(1).truncated);
    EXPECT_EQ(Text(2), "");
    EXPECT_FALSE(reader.Get(2).truncated);
}

TEST_F(DatagramPair, ANewSizeHoldsFromTheNextReceiveOn) {
    Send("123456789");
    ASSERT_EQ(reader.Receive(receiver), SocketError::None);
    reader.SetSize(100);
    EXPECT_EQ(reader.GetCount(), 0U);
    Send("123456789");
    ASSERT_EQ(reader.Receive(receiver), SocketError::None);
    EXPECT_EQ(Text(0), "123456789");
}

TEST_F(DatagramPair, TheWaitEndsWithADatagram) {
    Send("x");
    const SocketReadiness readiness = WaitForSocket(&receiver, SocketInterest::Reading, wake, kInfinite);
    EXPECT_TRUE(readiness.ready);
    EXPECT_FALSE(readiness.woken);
    EXPECT_FALSE(readiness.failed);
}

TEST_F(DatagramPair, TheWaitEndsWithTheTime) {
    const SocketReadiness readiness = WaitForSocket(&receiver, SocketInterest::Reading, wake, 1);
    EXPECT_FALSE(readiness.ready || readiness.woken || readiness.failed || readiness.writable);
}

TEST_F(DatagramPair, AWakeThatCameBeforeTheWaitEndsItOnce) {
    wake.Set();
    wake.Set();
    EXPECT_TRUE(WaitForSocket(&receiver, SocketInterest::Reading, wake, kInfinite).woken);
    EXPECT_FALSE(WaitForSocket(&receiver, SocketInterest::Reading, wake, 0).woken);
}

TEST_F(DatagramPair, AWakeEndsTheWaitOfAnotherThread) {
    std::thread waker([this] { wake.Set(); });
    EXPECT_TRUE(WaitForSocket(nullptr, SocketInterest::Reading, wake, kInfinite).woken);
    waker.join();
}

TEST_F(DatagramPair, AClosedDescriptorFailsTheWait) {
    const SystemSocket gone(1000000);
    EXPECT_TRUE(WaitForSocket(&gone, SocketInterest::Reading, wake, kInfinite).failed);
}

TEST_F(DatagramPair, ASignalDoesNotEndTheWait) {
    static std::atomic<int> signals{0};
    signals = 0;
    struct sigaction action {};
    struct sigaction before {};
    action.sa_handler = [](int) { ++signals; }; // without SA_RESTART: every call is interrupted
    ASSERT_EQ(sigaction(SIGUSR1, &action, &before), 0);
    const pthread_t self = pthread_self();
    std::thread disturber([this, self] {
        for (int i = 1; i <= 20; ++i) {
            pthread_kill(self, SIGUSR1);
            EXPECT_TRUE(Eventually([=] { return signals >= i; }));
        }
        wake.Set();
    });
    const SocketReadiness readiness = WaitForSocket(&receiver, SocketInterest::Reading, wake, 60000);
    disturber.join();
    EXPECT_TRUE(readiness.woken);
    EXPECT_FALSE(readiness.failed);
    EXPECT_EQ(signals, 20);
    sigaction(SIGUSR1, &before, nullptr);
}

TEST_F(DatagramPair, ShutDownWakesAWaiter) {
    std::thread closer([this] { receiver.ShutDown(); });
    EXPECT_TRUE(WaitForSocket(&receiver, SocketInterest::Reading, wake, kDeadlineMs).ready);
    closer.join();
}
