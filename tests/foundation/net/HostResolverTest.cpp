#include "HostResolver.h"

#include <thread>

#include <gtest/gtest.h>

#include "Deadline.h"
#include "LoopbackPeer.h"
#include "MTCPClientSocket.h"
#include "OwnNetwork.h"
#include "SilentResolver.h"
#include "SocketRecorder.h"

using Outcome = HostResolver::Outcome;

namespace {

Outcome Resolve(HostResolver& resolver, const char* host, std::string* text = nullptr) {
    std::uint32_t address = 0;
    const Outcome outcome = resolver.Resolve(host, resolver.GetCancelCount(), address);
    if (text)
        *text = DottedText(address);
    return outcome;
}

} // namespace

TEST(HostResolution, ADottedAddressIsFoundAtOnce) {
    HostResolver resolver;
    std::string text;
    EXPECT_EQ(Resolve(resolver, "10.1.2.3", &text), Outcome::Found);
    EXPECT_EQ(text, "10.1.2.3");
}

TEST(HostResolution, ANameIsLookedUp) {
    HostResolver resolver;
    std::string text;
    EXPECT_EQ(Resolve(resolver, "localhost", &text), Outcome::Found);
    EXPECT_EQ(text, "127.0.0.1");
}

TEST(HostResolution, ANameIsNotFoundWhereNoResolverCanBeReached) {
    if (!HasOwnNetwork())
        GTEST_SKIP() << "the kernel forbids a network of our own";
    HostResolver resolver;
    EXPECT_EQ(Resolve(resolver, "projector.example"), Outcome::NotFound);
    EXPECT_EQ(Resolve(resolver, ""), Outcome::NotFound);
}

TEST(HostResolution, ACancelThatCameBeforeEndsIt) {
    HostResolver resolver;
    const std::uint32_t count = resolver.GetCancelCount();
    resolver.Cancel();
    std::uint32_t address = 0;
    EXPECT_EQ(resolver.Resolve("localhost", count, address), Outcome::Cancelled);
    EXPECT_EQ(Resolve(resolver, "localhost"), Outcome::Found);
}

TEST(HostResolution, TheThreadThatACancelLeavesBehindEndsByItself) {
    std::size_t threads = 0;
    {
        SilentResolver silent;
        if (!silent.IsThere())
            GTEST_SKIP() << "the kernel forbids a network of our own";
        auto resolver = std::make_unique<HostResolver>();
        std::thread asking([&] { Resolve(*resolver, "projector.example"); });
        ASSERT_TRUE(silent.WaitForQuestion());
        resolver->Cancel();
        asking.join();
        resolver.reset();
        threads = CountThreads(); // with the one left behind
    }
    EXPECT_TRUE(Eventually([=] { return CountThreads() < threads; }));
}

TEST(HostResolution, ACancelEndsTheWaitForASilentResolver) {
    SilentResolver silent;
    if (!silent.IsThere())
        GTEST_SKIP() << "the kernel forbids a network of our own";
    HostResolver resolver;
    Outcome outcome = Outcome::Pending;
    std::thread asking([&] { outcome = Resolve(resolver, "projector.example"); });
    ASSERT_TRUE(silent.WaitForQuestion());
    resolver.Cancel();
    asking.join();
    EXPECT_EQ(outcome, Outcome::Cancelled);
}

TEST(HostResolution, DisconnectEndsAConnectThatLooksUpAName) {
    SilentResolver silent;
    if (!silent.IsThere())
        GTEST_SKIP() << "the kernel forbids a network of our own";
    TCPRecorder recorder;
    MTCPClientSocket socket;
    socket.AddHandler(&recorder);
    socket.SetAddress("projector.example");
    socket.SetPort(9);
    ASSERT_EQ(socket.ConnectAsync(), 0);
    ASSERT_TRUE(silent.WaitForQuestion());
    socket.Disconnect();
    EXPECT_FALSE(socket.IsStarted());
    EXPECT_EQ(recorder.All(), Words{"error -31"});
}

TEST(HostResolution, CloseEndsASendThatLooksUpAName) {
    SilentResolver silent;
    if (!silent.IsThere())
        GTEST_SKIP() << "the kernel forbids a network of our own";
    MUDPSocket socket;
    std::int32_t code = 0;
    std::thread sending([&] { code = socket.SendTo("x", 1, "projector.example", 9); });
    ASSERT_TRUE(silent.WaitForQuestion());
    EXPECT_EQ(socket.Close(), 0);
    sending.join();
    EXPECT_EQ(code, -3);
}
