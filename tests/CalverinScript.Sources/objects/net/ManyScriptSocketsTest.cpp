#include "SocketFixture.h"

#include <cstdint>
#include <thread>

// Many sockets at once, and many bytes through one.

namespace {

constexpr int kMany = 200;

class ManyScriptSockets : public SocketFixture {};

/// Sends what comes back until the client goes.
void Echo(const Peer& client) {
    for (std::string bytes = client.Receive(1); !bytes.empty(); bytes = client.Receive(1))
        client.Send(bytes);
}

TEST_F(ManyScriptSockets, TwoHundredOfEachKindWorkAtOnce) {
    const Listener wide(kMany);
    std::vector<std::thread> echoes;
    const std::size_t threads = CountThreads();
    GivenScript("var n = 200, tcp = 0, udp = 0, sockets = [], i;"
                "function done() { if (tcp === n * 3 && udp === n * 3) hear('all') }"
                "function client(port) { var c = QCalverin.CreateSocket(), left = 3;"
                "  c.on('data', function (b, o) { tcp += b.length; if (--left > 0) o.write('x'); done() });"
                "  c.connect(port, '127.0.0.1', function (o) { o.write('x') }); sockets.push(c) }"
                "function talker() { var u = QCalverin.CreateSocket('udp4'), left = 3, b = new Buffer('y'); u.bind(0);"
                "  u.on('message', function (m, from, o) { ++udp; if (--left > 0)"
                "    o.send(m, 0, 1, o.address().port, '127.0.0.1'); done() });"
                "  u.send(b, 0, 1, u.address().port, '127.0.0.1'); sockets.push(u) }"
                "({ Go: function (port) { for (i = 0; i < n; ++i) { client(Number(port)); talker() } },"
                "   Seen: function () { return tcp + ' ' + udp } })");
    ASSERT_EQ(Error(), "");
    Call("Go", {std::to_string(wide.GetPort())});
    for (int i = 0; i < kMany; ++i)
        echoes.emplace_back([peer = wide.Accept()] { Echo(peer); });
    EXPECT_EQ(Heard(1), "all") << Call("Seen");
    device->Stop();
    for (std::thread& echo : echoes)
        echo.join();
    OnScriptThread([] {}); // behind the end of the sockets
    EXPECT_LE(CountThreads(), threads + 1);
}

/// CRC-16 with the reversed polynomial 0xA001, from 0: what a script's Checksum computes as "Crc16".
std::uint16_t Crc16(const std::string& bytes, std::uint16_t crc) {
    for (const char byte : bytes) {
        crc = static_cast<std::uint16_t>(crc ^ static_cast<unsigned char>(byte));
        for (int bit = 0; bit < 8; ++bit)
            crc = static_cast<std::uint16_t>((crc & 1U) != 0 ? crc >> 1U ^ 0xA001U : crc >> 1U);
    }
    return crc;
}

TEST_F(ManyScriptSockets, SixtyFourMegabytesComeThroughOneClientAsTheyWereSent) {
    constexpr std::size_t kBlock = 1U << 16U;
    constexpr std::size_t kBlocks = 1024;
    GivenTcp();
    const Peer peer = GivenConnection();
    Do("sum = new Checksum(), total = 0; sum.Init('Crc16', 2, false, true); sum.ResetChecksumToCompute();"
       "s.on('data', function (b) { sum.UpdateChecksumToCompute(b); total += b.length;"
       "  if (total === 67108864) hear(sum.GetComputedChecksum().toString()) })");
    std::uint16_t crc = 0;
    std::uint32_t random = 1;
    std::string block(kBlock, '\0');
    for (std::size_t i = 0; i < kBlocks; ++i) {
        for (char& byte : block) {
            random = random * 1664525U + 1013904223U; // Numerical Recipes' quick generator
            byte = static_cast<char>(random >> 24U);
        }
        crc = Crc16(block, crc);
        ASSERT_TRUE(peer.Send(block));
    }
    char text[8];
    std::snprintf(text, sizeof text, "%04X", crc);
    EXPECT_EQ(Heard(2), std::string("connect,s ") + text);
}

TEST_F(ManyScriptSockets, MegabytesGoOutThroughOneClientAsTheyWereWritten) {
    GivenTcp();
    const Peer peer = GivenConnection();
    std::thread reader([&] {
        const std::string all = peer.Receive(std::size_t{8} << 20U);
        ASSERT_EQ(all.size(), std::size_t{8} << 20U);
        for (std::size_t i = 0; i < all.size(); i += 4096)
            ASSERT_EQ(static_cast<unsigned char>(all[i]), (i >> 20U) + 1);
    });
    Do("for (var i = 1; i <= 8; ++i) { var b = new Buffer(1048576); b.fill(i); s.write(b) }");
    reader.join();
}

} // namespace
