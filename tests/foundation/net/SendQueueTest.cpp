#include "SendQueue.h"

#include <array>
#include <thread>

#include <sys/socket.h>

#include <gtest/gtest.h>

#include "Deadline.h"
#include "LoopbackPeer.h"

namespace {

/// A queue on one end of a pair of sockets with small buffers.
class Queue : public testing::Test {
protected:
    void SetUp() override {
        std::array<int, 2> ends{};
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
        socket = SystemSocket(ends[0]);
        peer = Peer(ends[1]);
        ASSERT_EQ(socket.SetOption(SocketOption::SendBuffer, 4096), SocketError::None);
    }
    bool SendLater(const std::string& bytes) { return queue.SendWithoutWaiting(socket, bytes.data(), bytes.size()); }
    bool Send(const std::string& bytes) { return queue.Send(socket, bytes.data(), bytes.size()); }

    SystemSocket socket;
    Peer peer;
    SendQueue queue;
};

const std::string kLarge(1000000, 'L');

} // namespace

TEST_F(Queue, WhatTheSocketTakesLeavesNothingBehind) {
    EXPECT_TRUE(SendLater("abc"));
    EXPECT_FALSE(queue.HasUnsent());
    EXPECT_EQ(peer.Receive(3), "abc");
}

TEST_F(Queue, TheSocketsThreadNeverWaitsAndFlushSendsTheRest) {
    EXPECT_TRUE(SendLater(kLarge));
    EXPECT_TRUE(SendLater("end"));
    EXPECT_TRUE(queue.HasUnsent());
    std::string received;
    std::thread reader([&] { received = peer.Receive(kLarge.size() + 3); });
    EXPECT_TRUE(Eventually([&] {
        queue.Flush(socket);
        return !queue.HasUnsent();
    }));
    reader.join();
    EXPECT_EQ(received, kLarge + "end");
}

TEST_F(Queue, AWaitingCallsBytesStayTogether) {
    std::thread sender([&] { EXPECT_TRUE(Send(kLarge)); });
    EXPECT_EQ(peer.Receive(1), "L"); // the block has begun
    EXPECT_TRUE(SendLater("between?"));
    EXPECT_FALSE(queue.HasUnsent()) << "nothing may be sent before the block is whole";
    std::string received = peer.Receive(kLarge.size() - 1);
    sender.join();
    EXPECT_EQ(received, kLarge.substr(1));
    queue.Flush(socket);
    EXPECT_EQ(peer.Receive(8), "between?");
}

TEST_F(Queue, WhatWasLeftBehindGoesBeforeAWaitingCall) {
    EXPECT_TRUE(SendLater(kLarge));
    std::thread sender([&] { EXPECT_TRUE(Send("end")); });
    EXPECT_EQ(peer.Receive(kLarge.size() + 3), kLarge + "end");
    sender.join();
}

TEST_F(Queue, TwoWaitingSendersAreOneAfterTheOther) {
    std::thread first([&] { EXPECT_TRUE(Send(std::string(300000, 'a'))); });
    std::thread second([&] { EXPECT_TRUE(Send(std::string(300000, 'b'))); });
    const std::string received = peer.Receive(600000);
    first.join();
    second.join();
    ASSERT_EQ(received.size(), 600000U);
    EXPECT_EQ(received.substr(0, 300000), std::string(300000, received[0]));
    EXPECT_EQ(received.substr(300000), std::string(300000, received[599999]));
}

TEST_F(Queue, APeerThatDoesNotReadFillsTheQueueToItsLimit) {
    const std::string block(std::size_t{1} << 20, 'x');
    int taken = 0;
    while (taken < 100 && SendLater(block))
        ++taken;
    EXPECT_GE(taken, 15);
    EXPECT_LE(taken, 17);
}

TEST_F(Queue, ABrokenConnectionFailsAtOnce) {
    peer.Close();
    EXPECT_FALSE(Send("abc"));
    EXPECT_FALSE(SendLater("abc"));
}

TEST_F(Queue, ABrokenConnectionTakesWhatWaits) {
    EXPECT_TRUE(SendLater(kLarge));
    peer.Close();
    queue.Flush(socket);
    EXPECT_FALSE(queue.HasUnsent());
}

TEST_F(Queue, ShutDownFreesAWaitingSenderWhoseCallCountsAsSentAsIntended) {
    bool result = false;
    std::thread sender([&] { result = Send(kLarge); });
    EXPECT_EQ(peer.Receive(1), "L");
    socket.ShutDown();
    sender.join();
    EXPECT_TRUE(result);
}
