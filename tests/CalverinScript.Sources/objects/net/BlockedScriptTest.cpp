#include "SocketFixture.h"

#include <chrono>

#include "SilentResolver.h"

// A script that waits inside a method of a socket never holds up the stop or the end of its device.

namespace {

class BlockedScripts : public SocketFixture {
protected:
    /// Starts a line without waiting for its end.
    void Begin(const std::string& line) {
        OnScriptThread([] {});
        m_params = plain::Params::ForFunction("Do", {"hear('begins'); " + line});
        ASSERT_EQ(Send(3, *m_params, &m_context), KXP_OK);
    }
    void ExpectStopReturns() {
        const auto begin = std::chrono::steady_clock::now();
        device->Stop();
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
        EXPECT_TRUE(m_context.WaitForEnd());
    }
    /// The device works as before after another start.
    void ExpectNextRunWorks() {
        ForgetHeard();
        GivenTcp();
        const Peer peer = GivenConnection();
        Do("s.write('next run')");
        EXPECT_EQ(peer.Receive(8), "next run");
    }
    /// Writes more than a peer that does not read will take.
    const std::string kTooMuch = "much = new Buffer(64 * 1024 * 1024); s.write(much);";

private:
    std::unique_ptr<plain::Params> m_params;
    plain::Context m_context;
};

TEST_F(BlockedScripts, StopWhenThePeerDoesNotReadWhatIsWritten) {
    GivenTcp();
    const Peer peer = GivenConnection();
    Begin(kTooMuch);
    EXPECT_EQ(peer.Receive(1).size(), 1U);
    ExpectStopReturns();
    ExpectNextRunWorks();
}

TEST_F(BlockedScripts, StopWhenTheyWriteToOneSilentPeerAfterTheOther) {
    GivenSocketScript("var s = QCalverin.CreateSocket(), t = QCalverin.CreateSocket(); listen(s);"
                      "t.on('connect', function () { hear('t') });");
    const Peer peer = GivenConnection();
    Do(WithPort("t.connect(", listener.GetPort(), ")"));
    EXPECT_EQ(Heard(2), "connect,s t");
    const Peer other = listener.Accept();
    Begin(kTooMuch + "t.write(much); s.connect(1); t.write(much)");
    EXPECT_EQ(peer.Receive(1).size(), 1U);
    ExpectStopReturns();
    ExpectNextRunWorks();
}

TEST_F(BlockedScripts, EndWithTheDeviceThatIsReleasedWhileTheyWrite) {
    GivenTcp();
    const Peer peer = GivenConnection();
    Begin(kTooMuch);
    EXPECT_EQ(peer.Receive(1).size(), 1U);
    device->Release();
    device = nullptr;
    EXPECT_TRUE(peer.SeesTheEnd());
    while (MCalverinScript_Device::SweepAbandoned() > 0)
        std::this_thread::yield();
}

TEST_F(BlockedScripts, StopWhenTheirStopFunctionWrites) {
    GivenScript("var s = QCalverin.CreateSocket(); s.on('connect', function () { hear('there') });"
                "({ Go: function (port) { s.connect(Number(port)) },"
                "   _mStop: function () { try { s.write(new Buffer(64 * 1024 * 1024)) } catch (gone) {} } })");
    Call("Go", {std::to_string(listener.GetPort())});
    EXPECT_EQ(Heard(1), "there");
    const Peer peer = listener.Accept();
    const auto begin = std::chrono::steady_clock::now();
    device->Stop();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    ExpectNextRunWorks();
}

TEST_F(BlockedScripts, MaySayGoodbyeInTheirStopFunction) {
    GivenScript("var s = QCalverin.CreateSocket(); s.on('connect', function () { hear('there') });"
                "({ Go: function (port) { s.connect(Number(port)) }, _mStop: function () { s.write('goodbye') } })");
    Call("Go", {std::to_string(listener.GetPort())});
    Heard(1);
    const Peer peer = listener.Accept();
    device->Stop();
    EXPECT_EQ(peer.Receive(7), "goodbye");
    EXPECT_TRUE(peer.SeesTheEnd());
}

TEST_F(BlockedScripts, StopWhenTheyReconnectToAPortThatDoesNotAnswer) {
    GivenTcp();
    const Peer peer = GivenConnection();
    const SilentPort silent;
    Begin(WithPort("s.connect(", silent.GetPort(), ")"));
    Heard(3);
    ExpectStopReturns();
    ExpectNextRunWorks();
}

TEST_F(BlockedScripts, StopWhenTheyConnectToAPortThatDoesNotAnswer) {
    GivenTcp();
    const SilentPort silent;
    Begin(WithPort("s.connect(", silent.GetPort(), ")"));
    Heard(1);
    ExpectStopReturns();
    ExpectNextRunWorks();
}

TEST_F(BlockedScripts, EndAConnectThatIsNotAnsweredByThemselves) {
    GivenTcp();
    const SilentPort silent;
    Do(WithPort("s.connect(", silent.GetPort(), ")"));
    Do("s.end()");
    EXPECT_NE(HeardAfterAll().find("close,false,s"), std::string::npos);
    ForgetHeard();
    GivenConnection();
}

TEST_F(BlockedScripts, StopWhenNobodyAnswersForTheNameThatTheySendTo) {
    const SilentResolver resolver;
    if (!resolver.IsThere())
        GTEST_SKIP() << "needs a network of its own";
    GivenUdp();
    Begin("s.send(new Buffer('x'), 0, 1, 9, 'silent.example')");
    ASSERT_TRUE(resolver.WaitForQuestion());
    ExpectStopReturns();
    ExpectNextRunWorks();
}

TEST_F(BlockedScripts, StopWhenNobodyAnswersForTheNameThatTheyConnectTo) {
    const SilentResolver resolver;
    if (!resolver.IsThere())
        GTEST_SKIP() << "needs a network of its own";
    GivenTcp();
    Do("s.connect(1, 'silent.example')");
    ASSERT_TRUE(resolver.WaitForQuestion());
    const auto begin = std::chrono::steady_clock::now();
    device->Stop();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    ExpectNextRunWorks();
}

} // namespace
