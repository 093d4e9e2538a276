#include "SocketFixture.h"

#include <cstdint>
#include <cstdlib>
#include <thread>

#include "Deadline.h"

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
    GivenScript("var n = 200, all = [], i;" // of each socket: what it has seen
                "function seen(o) { return all.filter(function (a) { return a.o === o })[0] }"
                "function count(words) { return all.filter(function (a) { return a.words === words }).length }"
                "function note(o, word) { seen(o).words += word;"
                "  if (count('c123') === n && count('123') === n) hear('all') }"
                "function client(port) { var c = QCalverin.CreateSocket(), left = 3; all.push({ o: c, words: '' });"
                "  c.on('data', function (b, o) { note(o, b.toString()); if (--left > 0) o.write(String(4 - left)) });"
                "  c.on('close', function (h, o) { seen(o).words += 'x'; if (count('c123x') === n) hear('closed') });"
                "  c.connect(port, '127.0.0.1', function (o) { note(o, 'c'); o.write('1') }) }"
                "function talker() { var u = QCalverin.CreateSocket('udp4'), next = 1; all.push({ o: u, words: '' });"
                "  u.bind(0);"
                "  function say(o) { o.send(new Buffer(String(next++)), 0, 1, o.address().port, '127.0.0.1') }"
                "  u.on('message', function (m, from, o) { note(o, m.toString()); if (next < 4) say(o) }); say(u) }"
                "({ Go: function (port) { for (i = 0; i < n; ++i) { client(Number(port)); talker() } },"
                "   End: function () { all.forEach(function (a) { if (a.o.end) a.o.end() }) },"
                "   Seen: function () { return all.map(function (a) { return a.words }).join() } })");
    ASSERT_EQ(Error(), "");
    Call("Go", {std::to_string(wide.GetPort())});
    for (int i = 0; i < kMany; ++i)
        echoes.emplace_back([peer = wide.Accept()] { Echo(peer); });
    EXPECT_EQ(Heard(1), "all") << Call("Seen");
    Call("End");
    EXPECT_EQ(Heard(2), "all closed") << Call("Seen");
    device->Stop();
    for (std::thread& echo : echoes)
        echo.join();
    OnScriptThread([] {}); // behind the end of the sockets
    EXPECT_TRUE(Eventually([=] { return CountThreads() <= threads + 1; }));
}

/// CRC-16 with the reversed polynomial 0xA001, from 0: what a script's Checksum computes as "Crc16".
class Crc16 {
public:
    Crc16() {
        for (std::uint32_t byte = 0; byte < kTable; ++byte) {
            std::uint32_t row = byte;
            for (int bit = 0; bit < 8; ++bit)
                row = (row & 1U) != 0 ? row >> 1U ^ 0xA001U : row >> 1U;
            m_table[byte] = static_cast<std::uint16_t>(row);
        }
    }
    void Add(const std::string& bytes) {
        for (const char byte : bytes)
            m_crc =
                static_cast<std::uint16_t>(m_crc >> 8U ^ m_table[(m_crc ^ static_cast<unsigned char>(byte)) & 255U]);
    }
    std::string Text() const {
        char text[8];
        std::snprintf(text, sizeof text, "%04X", m_crc);
        return text;
    }

private:
    static constexpr std::uint32_t kTable = 256;
    std::uint16_t m_table[kTable];
    std::uint16_t m_crc = 0;
};

constexpr std::size_t kBlock = 1U << 16U;
constexpr std::size_t kBlocksOfMegabyte = 16;

/// What the stream test sends, in units of 64 MB: one, or as many as CALVERIN_STREAM_UNITS says (16 are 1 GB).
std::size_t StreamUnits() {
    const char* const wanted = std::getenv("CALVERIN_STREAM_UNITS");
    return wanted == nullptr ? 1 : std::strtoul(wanted, nullptr, 10);
}

/// Sends 64 MB that never repeat.
void SendUnit(const Peer& peer, std::uint32_t& random, Crc16& crc) {
    std::string block(kBlock, '\0');
    for (std::size_t i = 0; i < 64 * kBlocksOfMegabyte; ++i) {
        for (char& byte : block) {
            random = random * 1664525U + 1013904223U; // Numerical Recipes' quick generator
            byte = static_cast<char>(random >> 24U);
        }
        crc.Add(block);
        ASSERT_TRUE(peer.Send(block));
    }
}

TEST_F(ManyScriptSockets, SixtyFourMegabytesComeThroughOneClientAsTheyWereSent) {
    GivenTcp();
    const Peer peer = GivenConnection();
    Do("sum = new Checksum(), total = 0, unit = 67108864; sum.Init('Crc16', 2, false, true);"
       "sum.ResetChecksumToCompute();"
       "s.on('data', function (b) { var before = Math.floor(total / unit);"
       "  sum.UpdateChecksumToCompute(b); total += b.length;"
       "  if (Math.floor(total / unit) > before) hear(total / unit) })");
    Crc16 crc;
    std::uint32_t random = 1;
    const std::size_t units = StreamUnits();
    ASSERT_GT(units, 0U);
    for (std::size_t unit = 1; unit <= units; ++unit) {
        SendUnit(peer, random, crc);
        Heard(unit + 1); // no more is sent before the script has that much
    }
    EXPECT_EQ(Do("total"), std::to_string(units * 64 * kBlocksOfMegabyte * kBlock));
    EXPECT_EQ(Do("sum.GetComputedChecksum().toString()"), crc.Text());
    RecordProperty("checksum", crc.Text());
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
