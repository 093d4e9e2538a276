#include "SocketFixture.h"

#include <thread>

#include <poll.h>
#include <sys/socket.h>

#include "Deadline.h"
#include "IScriptObjectOwner.h"
#include "MEvent.h"
#include "MScriptUDP.h"
#include "MUDPSocket.h"
#include "NetCodes.h"
#include "ScriptBacklog.h"

// What waits for a script that stands still is bounded: a TCP peer has to wait, datagrams are dropped and counted.

namespace {

/// Takes events when the test says so.
class SlowScript final : public IScriptObjectOwner {
public:
    void PostScriptEvent(const QString& name, const MScriptParamList* params, MScriptCommonEvent*) override {
        names.push_back(name.toStdString());
        waiting.push_back(*params);
    }
    std::string GetDeviceName() const override { return ""; }
    void TraceMessage(const QString& message, const QString&) override {
        log.push_back(message.toStdString());
        const std::string text = log.back();
        told += std::stoul(text.substr(text.rfind(' ')));
    }

    std::vector<std::string> names;
    std::vector<MScriptParamList> waiting;
    std::vector<std::string> log;
    std::size_t told = 0; ///< dropped by the log's account
};

class UDPBacklog : public testing::Test {
protected:
    void Burst(int count, int length = 1) {
        const std::string bytes(static_cast<std::size_t>(length), 'x');
        for (int i = 0; i < count; ++i)
            m_udp->OnMessage(bytes.data(), length, "127.0.0.1", 1, &m_socket);
        m_udp->OnBurstEnd(&m_socket);
    }

    SlowScript m_script;
    MUDPSocket m_socket;
    std::unique_ptr<MScriptUDP> m_udp = std::make_unique<MScriptUDP>(&m_script);
};

TEST_F(UDPBacklog, HoldsAsManyDatagramsAsItsBoundAndTellsHowManyItDrops) {
    for (int i = 0; i < 70000; i += 20)
        Burst(20);
    EXPECT_EQ(m_script.waiting.size(), 65536U);
    ASSERT_FALSE(m_script.log.empty());
    EXPECT_EQ(m_script.log.front().rfind("datagrams at port 0 dropped, since the script does not keep up: ", 0), 0U);
    m_script.waiting.clear();
    EXPECT_EQ(m_script.told, 70000U - 65536U) << "what the last line left out is told when the script has caught up";
    Burst(3);
    EXPECT_EQ(m_script.waiting.size(), 3U);
}

TEST_F(UDPBacklog, HoldsAsManyBytesAsItsBound) {
    for (int i = 0; i < 5000; i += 20)
        Burst(20, 4096);
    EXPECT_EQ(m_script.waiting.size(), 4096U);
    m_udp.reset();
    EXPECT_EQ(m_script.told, 5000U - 4096U) << "what the last line left out is told at the end";
}

TEST_F(UDPBacklog, DropsACutDatagramTogetherWithItsError) {
    Burst(65536);
    m_udp->OnError(NetBufferTooSmall, &m_socket);
    m_script.waiting.clear();
    Burst(1, 4096);
    EXPECT_EQ(m_script.names.back(), "message");
    EXPECT_TRUE(m_script.waiting.empty());
    Burst(1);
    EXPECT_EQ(m_script.waiting.size(), 1U);
    m_udp.reset();
    EXPECT_EQ(m_script.told, 1U);
}

TEST_F(UDPBacklog, NeverDropsTheNewsThatItIsOutOfOrder) {
    Burst(65536);
    m_udp->OnError(NetSetupFailed, &m_socket);
    EXPECT_EQ(m_script.names.back(), "error");
}

class TCPBacklog : public SocketFixture {
protected:
    /// The script stands still until Release.
    void GivenBusyScript() {
        m_busy = std::thread([this] {
            OnScriptThread([this] {
                m_stands.Set();
                m_go.Wait(kDeadlineMs);
            });
        });
        ASSERT_TRUE(m_stands.Wait(kDeadlineMs));
    }
    void Release() {
        m_go.Set();
        m_busy.join();
    }
    /// Sends until the other side takes nothing for a while. @return how much it took.
    static std::size_t SendUntilItStops(const Peer& peer, const std::string& bytes) {
        constexpr int kPatienceMs = 1000;
        std::size_t done = 0;
        pollfd entry{peer.GetDescriptor(), POLLOUT, 0};
        while (done < bytes.size() && poll(&entry, 1, kPatienceMs) > 0) {
            const ssize_t sent =
                send(peer.GetDescriptor(), bytes.data() + done, bytes.size() - done, MSG_DONTWAIT | MSG_NOSIGNAL);
            done += sent > 0 ? static_cast<std::size_t>(sent) : 0;
        }
        return done;
    }

    MEvent m_stands;
    MEvent m_go;
    std::thread m_busy;
};

TEST_F(TCPBacklog, MakesThePeerWaitAndLosesNothing) {
    GivenSocketScript("var s = QCalverin.CreateSocket(), length = 0;"
                      "s.on('connect', function () { hear('connect,s') });"
                      "s.on('data', function (b) { length += b.length });"
                      "s.on('close', function () { hear('close') });");
    Peer peer = GivenConnection();
    GivenBusyScript();
    const std::string much(std::size_t{64} << 20, 'x');
    const std::size_t taken = SendUntilItStops(peer, much);
    EXPECT_LT(taken, std::size_t{32} << 20) << "16 MB and what the system holds";
    std::thread rest([&] {
        EXPECT_TRUE(peer.Send(much.substr(taken)));
        peer.Close();
    });
    Release();
    EXPECT_EQ(Heard(2), "connect,s close");
    rest.join();
    EXPECT_EQ(Do("length"), std::to_string(much.size()));
}

TEST_F(TCPBacklog, HoldsUpNoStop) {
    GivenTcp();
    const Peer peer = GivenConnection();
    GivenBusyScript();
    SendUntilItStops(peer, std::string(std::size_t{40} << 20, 'x'));
    std::thread stopper([this] { device->Stop(); });
    Release();
    stopper.join();
    EXPECT_TRUE(peer.SeesTheEnd());
}

} // namespace
