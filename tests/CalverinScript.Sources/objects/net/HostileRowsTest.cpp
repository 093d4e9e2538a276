#include <algorithm>
#include <string>

#include <sys/socket.h>

#include "HostileRounds.h"
#include "SocketFixture.h"

// The table of peers that misbehave over TCP, each again and again beside another device that is at work.

namespace {

constexpr const char* kReset = "error,-29/The connection was reset by the remote side,s close,false,s";
constexpr const char* kClosed = "close,false,s";
constexpr const char* kAllAndClosed = "all close,false,s";
constexpr std::size_t kMegabyte = 1U << 20U;

/// What a peer does with its connection, and what the script hears of it behind "connect".
struct Row {
    const char* name;
    std::size_t bytes; ///< that reach the script, which hears "all" when they have
    void (*play)(Peer& peer);
    const char* before; ///< a line for the script, when it is connected
    const char* heard;
};

void SendInPieces(const Peer& peer, const std::string& bytes) {
    for (const char byte : bytes)
        peer.Send(std::string(1, byte));
}

std::string EveryByte() {
    std::string bytes;
    for (int value = 0; value < 256; ++value)
        bytes += static_cast<char>(value);
    return bytes;
}

const Row kRows[] = {
    {"ResetsAtOnce", 0, [](Peer& peer) { peer.Reset(); }, "", kReset},
    {"ResetsInTheMiddleOfALine", 0,
     [](Peer& peer) {
         peer.Send("half a li");
         peer.Reset();
     },
     "", kReset},
    {"ClosesAtOnce", 0, [](Peer& peer) { peer.Close(); }, "", kClosed},
    {"ClosesOverWhatItHasNotRead", 0,
     [](Peer& peer) {
         peer.Receive(1);
         peer.Close();
     },
     "s.write('unread')", kReset},
    {"ClosesOneHalfBehindItsData", 4,
     [](Peer& peer) {
         peer.Send("last");
         peer.ShutDownSending();
         peer.SeesTheEnd();
     },
     "", kAllAndClosed},
    {"HearsNothingAndSpeaks", 2,
     [](Peer& peer) {
         ::shutdown(peer.GetDescriptor(), SHUT_RD);
         peer.Send("ok");
         peer.Close();
     },
     "", kAllAndClosed},
    {"SendsOneByteInAPacket", 200,
     [](Peer& peer) {
         SendInPieces(peer, std::string(200, 'b'));
         peer.Close();
     },
     "", kAllAndClosed},
    {"SendsAMegabyteInALine", kMegabyte,
     [](Peer& peer) {
         peer.Send(std::string(kMegabyte - 1, 'x') + "\n");
         peer.SeesTheEnd();
     },
     "s.on('data', function (b) { if ((sum += b.length) === all) { hear('all'); s.end(); } })", kAllAndClosed},
    {"FloodsWithoutALineEnd", 8 * kMegabyte,
     [](Peer& peer) {
         peer.Send(std::string(8 * kMegabyte, 'x'));
         peer.Close();
     },
     "", kAllAndClosed},
    {"SendsEveryByte", 256,
     [](Peer& peer) {
         peer.Send(EveryByte());
         peer.Close();
     },
     "", kAllAndClosed},
    {"SendsUrgently", 6,
     [](Peer& peer) {
         peer.Send("abc");
         ::send(peer.GetDescriptor(), "!", 1, MSG_OOB);
         peer.Send("def");
         peer.Close();
     },
     "", kAllAndClosed},
    {"TakesNothingInAndResets", 0,
     [](Peer& peer) {
         const int least = 1;
         ::setsockopt(peer.GetDescriptor(), SOL_SOCKET, SO_RCVBUF, &least, sizeof(least));
         peer.Receive(1);
         peer.Reset();
     },
     "s.write(new Array(60000).join('w'))", kReset},
    {"SpeaksToNobody", 0,
     [](Peer& peer) {
         peer.SeesTheEnd();
         peer.Send("is anybody there?");
     },
     "s.end()", kClosed},
    {"IsSilentAndIsLeft", 0, [](Peer& peer) { peer.SeesTheEnd(); }, "s.end()", kClosed},
};

/// Another device of the process, which answers a command now and then.
class OtherDevice : public DeviceFixture {
public:
    OtherDevice() {
        MakeDevice();
        GivenScript("({ Answer: function (text) { return text; } })");
    }
    ~OtherDevice() override { EndDevice(); }
    bool Answers() { return Call("Answer", {"here"}) == "here"; }

private:
    void TestBody() override {}
};

class HostileRows : public SocketFixture, public testing::WithParamInterface<Row> {
protected:
    void Play(const Row& row) {
        ForgetHeard();
        Do("sum = 0; all = " + std::to_string(row.bytes) +
           "; s.on('data', function (b) { if ((sum += b.length) === all) hear('all') })");
        Do("s.end(); s.connect(" + std::to_string(listener.GetPort()) + ")");
        Peer peer = listener.Accept();
        ASSERT_EQ(Heard(2), "close,false,s connect,s");
        EXPECT_EQ(Do(row.before).find("error: "), std::string::npos);
        row.play(peer);
        const std::string wanted = std::string("close,false,s connect,s ") + row.heard;
        ASSERT_EQ(Heard(static_cast<std::size_t>(std::count(wanted.begin(), wanted.end(), ' ')) + 1 -
                        (row.heard == kReset ? kBlanksOfReset : 0)),
                  wanted)
            << Do("sum + ' of ' + all");
    }

    static constexpr std::size_t kBlanksOfReset = 7; ///< inside the text of the error
    OtherDevice other;
};

TEST_P(HostileRows, IsToldAsStatedEachTimeWhileOthersAreServed) {
    GivenTcp();
    Do("var sum = 0, all = 0");
    Bystander bystander([this] { return other.Answers(); });
    for (int round = 0; round < HostileRounds() && !HasFatalFailure(); ++round)
        Play(GetParam());
    EXPECT_EQ(bystander.Tell(GetParam().name), 0U);
}

std::ostream& operator<<(std::ostream& out, const Row& row) {
    return out << row.name;
}

INSTANTIATE_TEST_SUITE_P(APeerThat, HostileRows, testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.name; });

} // namespace
