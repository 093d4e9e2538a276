#include "SocketFixture.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

// The UDP object as a script sees it.

namespace {

using UDPObjects = SocketFixture;

/// A port with its two bytes exchanged.
std::uint16_t Exchanged(std::uint16_t port) {
    return static_cast<std::uint16_t>(port << 8 | port >> 8);
}

std::string Message(const std::string& text, const Peer& sender) {
    return "message," + text + "," + std::to_string(Exchanged(sender.GetPort())) + ",127.0.0.1,s,3";
}

TEST_F(UDPObjects, HandOverMessagesWithTheSenderWhosePortBytesAreExchangedAsItIsMeant) {
    GivenUdp();
    const std::uint16_t port = GivenBound();
    const Peer sender = Peer::Datagrams();
    ASSERT_TRUE(sender.SendTo("hello", port));
    EXPECT_EQ(Heard(1), Message("hello", sender));
}

TEST_F(UDPObjects, HearOfSendersThatTakeTurns) {
    GivenUdp();
    const std::uint16_t port = GivenBound();
    const Peer one = Peer::Datagrams();
    const Peer two = Peer::Datagrams("127.0.0.2");
    one.SendTo("1", port);
    two.SendTo("2", port);
    one.SendTo("3", port);
    Heard(3);
    EXPECT_EQ(Do("0"), "0");
    const std::string second = "message,2," + std::to_string(Exchanged(two.GetPort())) + ",127.0.0.2,s,3";
    EXPECT_EQ(HeardAfterAll(), Message("1", one) + " " + second + " " + Message("3", one));
}

TEST_F(UDPObjects, TellSendersOfOneAddressApartByTheirPorts) {
    GivenUdp();
    const std::uint16_t port = GivenBound();
    const Peer one = Peer::Datagrams();
    const Peer two = Peer::Datagrams();
    one.SendTo("1", port);
    two.SendTo("2", port);
    two.SendTo("3", port);
    one.SendTo("4", port);
    Heard(4);
    EXPECT_EQ(HeardAfterAll(),
              Message("1", one) + " " + Message("2", two) + " " + Message("3", two) + " " + Message("4", one));
}

TEST_F(UDPObjects, HearNothingOfAnEmptyDatagram) {
    GivenUdp();
    const std::uint16_t port = GivenBound();
    const Peer sender = Peer::Datagrams();
    sender.SendTo("", port);
    sender.SendTo("x", port);
    EXPECT_EQ(Heard(1), Message("x", sender));
}

TEST_F(UDPObjects, HearOfADatagramThatIsTooLongAndThenGetItsBeginning) {
    GivenUdp();
    const std::uint16_t port = GivenBound();
    const Peer sender = Peer::Datagrams();
    sender.SendTo("before", port);
    sender.SendTo(std::string(4096, 'a'), port);
    sender.SendTo(std::string(4097, 'b'), port);
    sender.SendTo("behind", port);
    Heard(5);
    EXPECT_EQ(HeardAfterAll(), Message("before", sender) + " " + Message(std::string(4096, 'a'), sender) +
                                   " error,-12/Datagram receive buffer too small,s " +
                                   Message(std::string(4096, 'b'), sender) + " " + Message("behind", sender));
}

TEST_F(UDPObjects, TellThePortThatTheSystemChoseAndAnEmptyAddress) {
    GivenUdp();
    EXPECT_EQ(Do("names = []; for (var k in s.address()) names.push(k + '=' + s.address()[k]); names"),
              "port=0,family=IPv4,address=");
    EXPECT_NE(GivenBound(), 0);
    EXPECT_EQ(Do("s.address().address === ''"), "true");
}

TEST_F(UDPObjects, TakeTheLowerSixteenBitsOfAPort) {
    GivenUdp();
    const Peer holder = Peer::Datagrams();
    const std::string port = std::to_string(holder.GetPort());
    EXPECT_EQ(Do("s.send(new Buffer('x'), 0, 1, 65536 + " + port + ", '127.0.0.1')"), "undefined");
    EXPECT_EQ(holder.ReceiveDatagram(), "x");
    EXPECT_EQ(Do("s.bind(65536 + " + port + "); s.address().port"), port);
}

TEST_F(UDPObjects, ReceiveOnTheOneAddressThatTheyAreBoundTo) {
    GivenUdp();
    const std::uint16_t port = GivenBound("127.0.0.2");
    const Peer sender = Peer::Datagrams();
    sender.SendTo("elsewhere", port, "127.0.0.1");
    sender.SendTo("here", port, "127.0.0.2");
    EXPECT_EQ(Heard(1), Message("here", sender));
}

TEST_F(UDPObjects, ReceiveOnAllAddressesWhenSeveralAreGiven) {
    GivenUdp();
    const std::uint16_t port = GivenBound("127.0.0.2;127.0.0.3");
    const Peer sender = Peer::Datagrams();
    sender.SendTo("anywhere", port, "127.0.0.1");
    EXPECT_EQ(Heard(1), Message("anywhere", sender));
}

TEST_F(UDPObjects, AreSilentAboutAPortThatIsInUse) {
    const Peer holder = Peer::Datagrams();
    GivenUdp();
    EXPECT_EQ(Do(WithPort("s.bind(", holder.GetPort(), ")")), "undefined");
    EXPECT_EQ(Do("s.bind(0, 'nonsense'); s.bind(0, '10.99.0.1')"), "undefined");
    EXPECT_EQ(HeardAfterAll(), "");
    const Peer sender = Peer::Datagrams();
    sender.SendTo("x", GivenBound());
    EXPECT_EQ(Heard(1), Message("x", sender));
}

TEST_F(UDPObjects, HoldTheirPortAloneUnlessTheyAreToldOtherwise) {
    GivenUdp();
    const std::string port = std::to_string(GivenBound());
    Do("t = QCalverin.CreateSocket('udp4'); t.setExclusivePort(false); t.bind(" + port + ")");
    Do("s.close(); s.setExclusivePort(false); s.bind(0)");
    const std::string shared = Do("s.address().port");
    Do("t.on('message', function (b) { hear('t ' + b.toString()) }); t.bind(" + shared + "); s.close()");
    const Peer sender = Peer::Datagrams();
    sender.SendTo("shared", static_cast<std::uint16_t>(std::stoi(shared)));
    EXPECT_EQ(Heard(1), "t shared");
}

TEST_F(UDPObjects, AreExclusiveAgainWhenTheyAreToldNothing) {
    GivenUdp();
    Do("s.setExclusivePort(false); s.setExclusivePort(); s.bind(0);"
       "t = QCalverin.CreateSocket('udp4'); t.setExclusivePort(false); t.bind(s.address().port); s.close();"
       "t.on('message', tell('t'))");
    const Peer sender = Peer::Datagrams();
    sender.SendTo("x", static_cast<std::uint16_t>(std::stoi(Do("s.address().port"))));
    sender.SendTo("y", GivenBound());
    EXPECT_EQ(Heard(1), Message("y", sender));
}

TEST_F(UDPObjects, SendThePieceOfABuffer) {
    GivenUdp();
    const Peer peer = Peer::Datagrams();
    const std::string to = ", " + std::to_string(peer.GetPort()) + ", '127.0.0.1')";
    Do("b = new Buffer([1, 2, 3])");
    const auto sent = [&](const std::string& piece) {
        Do("s.send(b, " + piece + to);
        return peer.ReceiveDatagram();
    };
    EXPECT_EQ(sent("0, 3"), "\1\2\3");
    EXPECT_EQ(sent("1, 5"), "\2\3");
    EXPECT_EQ(sent("-7, 1"), "\1");
    EXPECT_EQ(sent("2, -1"), "");
    EXPECT_EQ(sent("4, 1"), "");
    EXPECT_EQ(sent("1, 2147483647"), "\2\3");
}

TEST_F(UDPObjects, SendAnEmptyDatagramForATextAsItIsMeant) {
    GivenUdp();
    const Peer peer = Peer::Datagrams();
    Do(WithPort("s.send('text', 0, 4, ", peer.GetPort(), ", '127.0.0.1')"));
    EXPECT_EQ(peer.ReceiveDatagram(), "");
}

TEST_F(UDPObjects, SendNothingElse) {
    GivenUdp();
    const Peer peer = Peer::Datagrams();
    const std::string to = ", 0, 1, " + std::to_string(peer.GetPort()) + ", '127.0.0.1');";
    Do("s.send(5" + to + "s.send(null" + to + "s.send(undefined" + to + "s.send([1]" + to + "s.send({}" + to +
       "s.send(new Buffer('x')" + to);
    EXPECT_EQ(peer.ReceiveDatagram(), "x");
}

TEST_F(UDPObjects, PassOnTheAddressOfNobodyWhichIsThisMachine) {
    GivenUdp();
    const Peer peer = Peer::Datagrams();
    Do(WithPort("s.send(new Buffer('x'), 0, 1, ", peer.GetPort(), ")"));
    EXPECT_EQ(peer.ReceiveDatagram(), "x");
}

TEST_F(UDPObjects, SendToANameThatResolvesAndLoseWhatDoesNot) {
    GivenUdp();
    const Peer peer = Peer::Datagrams();
    EXPECT_EQ(Do(WithPort("s.send(new Buffer('lost'), 0, 4, ", peer.GetPort(), ", 'no..name')")), "undefined");
    Do(WithPort("s.send(new Buffer('x'), 0, 1, ", peer.GetPort(), ", 'localhost')"));
    EXPECT_EQ(peer.ReceiveDatagram(), "x");
    EXPECT_EQ(HeardAfterAll(), "");
}

TEST_F(UDPObjects, ReceiveNoAnswerBeforeTheyAreBound) {
    GivenUdp();
    const Peer peer = Peer::Datagrams();
    Do(WithPort("s.send(new Buffer('x'), 0, 1, ", peer.GetPort(), ", '127.0.0.1')"));
    std::uint32_t source = 0;
    peer.ReceiveDatagram(&source);
    peer.SendTo("answer", static_cast<std::uint16_t>(source));
    peer.SendTo("bound", GivenBound());
    EXPECT_EQ(Heard(1), Message("bound", peer));
}

TEST_F(UDPObjects, SendFromThePortThatTheyAreBoundTo) {
    GivenUdp();
    const std::uint16_t port = GivenBound();
    const Peer peer = Peer::Datagrams();
    Do(WithPort("s.send(new Buffer('x'), 0, 1, ", peer.GetPort(), ", '127.0.0.1')"));
    std::uint32_t source = 0;
    peer.ReceiveDatagram(&source);
    EXPECT_EQ(source, port);
}

TEST_F(UDPObjects, BroadcastWithoutBeingToldBefore) {
    if (!HasOwnNetwork())
        GTEST_SKIP() << "needs a network of its own";
    GivenUdp();
    const Peer peer = Peer::Datagrams("0.0.0.0");
    Do(WithPort("s.send(new Buffer('all'), 0, 3, ", peer.GetPort(), ", '255.255.255.255')"));
    EXPECT_EQ(peer.ReceiveDatagram(), "all");
}

TEST_F(UDPObjects, SendToAGroupButNeverJoinOne) {
    if (!HasOwnNetwork())
        GTEST_SKIP() << "needs a network of its own";
    const Peer member = Peer::Datagrams("0.0.0.0");
    const ip_mreq group{{inet_addr("239.1.2.3")}, {INADDR_ANY}};
    ASSERT_EQ(setsockopt(member.GetDescriptor(), IPPROTO_IP, IP_ADD_MEMBERSHIP, &group, sizeof group), 0);
    GivenUdp();
    Do(WithPort("s.send(new Buffer('heard'), 0, 5, ", member.GetPort(), ", '239.1.2.3')"));
    EXPECT_EQ(member.ReceiveDatagram(), "heard");
    const Peer sender = Peer::Datagrams();
    for (const char* addresses : {"", "239.1.2.3;239.1.2.4"}) {
        ForgetHeard();
        const std::uint16_t port = GivenBound(addresses);
        sender.SendTo("to the group", port, "239.1.2.3");
        sender.SendTo("alone", port);
        EXPECT_EQ(Heard(1), Message("alone", sender)) << addresses;
    }
    EXPECT_EQ(Do("s.address().address"), "");
}

TEST_F(UDPObjects, CloseWithoutASignWhateverTheirState) {
    GivenUdp();
    EXPECT_EQ(Do("s.close(); s.bind(0); s.close(); s.close()"), "undefined");
    const Peer sender = Peer::Datagrams();
    sender.SendTo("again", GivenBound());
    EXPECT_EQ(Heard(1), Message("again", sender));
}

TEST_F(UDPObjects, BindAgainWhileTheyAreBound) {
    GivenUdp();
    const std::uint16_t first = GivenBound();
    const std::uint16_t second = GivenBound();
    const Peer sender = Peer::Datagrams();
    if (first != second)
        sender.SendTo("old port", first);
    sender.SendTo("new port", second);
    EXPECT_EQ(Heard(1), Message("new port", sender));
}

TEST_F(UDPObjects, HaveTheMethodsOfScriptsAlone) {
    GivenUdp();
    EXPECT_EQ(Do("m = []; for (var k in s) m.push(k.replace(/\\(.*/, ''));"
                 "m.filter(function (n, i) { return m.indexOf(n) === i }).sort()"),
              "address,bind,close,on,send,setExclusivePort");
}

TEST_F(UDPObjects, HandOverEveryDatagramThatTheyReceiveInOrder) {
    constexpr int kDatagrams = 20000;
    GivenUdp();
    const std::string port = std::to_string(GivenBound());
    Do("last = -1, wrong = 0, seen = 0;"
       "s.on('message', function (b) { var n = Number(b.toString()); if (n !== last + 1) ++wrong; last = n;"
       "  if (++seen % 100 === 0) hear(seen) })");
    const Peer sender = Peer::Datagrams();
    for (int i = 0; i < kDatagrams; ++i) {
        ASSERT_TRUE(sender.SendTo(std::to_string(i), static_cast<std::uint16_t>(std::stoi(port))));
        if (i % 100 == 99)
            Heard(static_cast<std::size_t>(i / 100 + 1));
    }
    EXPECT_EQ(Do("seen + ' ' + wrong"), std::to_string(kDatagrams) + " 0");
}

TEST_F(UDPObjects, KeepTheOrderOfWhatIsLeftOfAFlood) {
    GivenUdp();
    const std::uint16_t port = GivenBound();
    Do("last = -1, wrong = 0; s.on('message', function (b) { var n = Number(b.toString());"
       "  if (n <= last) ++wrong; last = n; if (n === 1e6) hear('end') })");
    const Peer sender = Peer::Datagrams();
    for (int i = 0; i < 100000; ++i)
        sender.SendTo(std::to_string(i), port);
    for (int i = 0; i < 1000 && HeardCount() == 0; ++i) {
        sender.SendTo("1000000", port);
        HeardAfterAll();
    }
    EXPECT_EQ(Heard(1).substr(0, 3), "end");
    EXPECT_LE(std::stoi(Do("wrong")), 999) << "only the repeated end";
}

} // namespace
