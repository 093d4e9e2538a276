#include "Deadline.h"
#include "SocketFixture.h"

#include <algorithm>
#include <vector>

#include <QScriptEngine>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

// The TCP client as a script sees it.

namespace {

using TCPClients = SocketFixture;

/// Whether a thread has ended meanwhile that came between two looks. Their number alone says nothing: the device's tick may get one.
bool OneOfTheNewHasEnded(const std::vector<int>& before, const std::vector<int>& after) {
    const std::vector<int> now = Threads();
    const auto isIn = [](const std::vector<int>& threads, int one) {
        return std::binary_search(threads.begin(), threads.end(), one);
    };
    return std::any_of(after.begin(), after.end(), [&](int one) { return !isIn(before, one) && !isIn(now, one); });
}

TEST_F(TCPClients, ConnectAndHearOfItWithThemselvesAsTheOnlyValue) {
    GivenTcp();
    const Peer peer = GivenConnection();
    EXPECT_TRUE(peer.IsOpen());
    EXPECT_EQ(HeardAfterAll(), "connect,s");
}

TEST_F(TCPClients, ConnectToThisMachineWhenNoHostIsGiven) {
    GivenTcp();
    const Peer peer = GivenConnection();
    EXPECT_EQ(Do("s.address().address"), "127.0.0.1");
}

TEST_F(TCPClients, TakeTheListenerOfConnectInPlaceOfTheEarlierOne) {
    GivenTcp();
    Do(WithPort("s.connect(", listener.GetPort(), ", '127.0.0.1', function (o) { hear('other ' + (o === s)) })"));
    EXPECT_EQ(Heard(1), "other true");
    EXPECT_EQ(HeardAfterAll(), "other true");
}

TEST_F(TCPClients, KeepTheListenerWhenConnectIsGivenSomethingElse) {
    GivenTcp();
    Do(WithPort("s.connect(", listener.GetPort(), ", '127.0.0.1', 'no function')"));
    EXPECT_EQ(Heard(1), "connect,s");
}

TEST_F(TCPClients, KnowTheirFirstPortAndAddressBeforeTheyConnect) {
    GivenTcp();
    EXPECT_EQ(Do("names = []; for (var k in s.address()) names.push(k + '=' + s.address()[k]); names"),
              "port=4422,family=IPv4,address=127.0.0.1");
    EXPECT_EQ(Do("typeof s.address().port"), "number");
}

TEST_F(TCPClients, TellThePortAndHostThatTheyWereGivenLast) {
    GivenTcp();
    EXPECT_EQ(Do(WithPort("s.connect(", ClosedPort(), ", 'localhost'); s.address().address")), "localhost");
}

TEST_F(TCPClients, TakeTheLowerSixteenBitsOfAPort) {
    GivenTcp();
    Do("s.connect(65536 + " + std::to_string(listener.GetPort()) + ")");
    EXPECT_EQ(Heard(1), "connect,s");
    EXPECT_EQ(Do("s.address().port"), std::to_string(listener.GetPort()));
}

TEST_F(TCPClients, TakeAHostThatIsNoTextAsItsText) {
    GivenTcp();
    Do("s.connect(1, 127)");
    EXPECT_EQ(Do("s.address().address"), "127");
    Do("s.end(); s.connect(1, { toString: function () { return '127.0.0.9' } })");
    EXPECT_EQ(Do("s.address().address"), "127.0.0.9");
}

TEST_F(TCPClients, HandOverDataWithThemselvesBehindIt) {
    GivenTcp();
    const Peer peer = GivenConnection();
    Do("want = 5");
    ASSERT_TRUE(peer.Send("hello"));
    EXPECT_EQ(Heard(2), "connect,s got:hello,s,2");
}

TEST_F(TCPClients, HandOverDataAsABufferOfTheirOwn) {
    GivenTcp();
    const Peer peer = GivenConnection();
    Do("s.on('data', function (b) { b[0] = 255; hear(b.toString('hex')); hear(b instanceof Buffer || b.length) })");
    ASSERT_TRUE(peer.Send(std::string("\0a", 2)));
    EXPECT_EQ(Heard(3).substr(0, 14), "connect,s ff61");
}

TEST_F(TCPClients, WriteTextsAsLatin1) {
    GivenTcp();
    const Peer peer = GivenConnection();
    Do("s.write('\\u00e9\\u20ac!')");
    EXPECT_EQ(peer.Receive(3), "\xE9?!");
    Do("s.write('a\\u0000b')");
    EXPECT_EQ(peer.Receive(3), std::string("a\0b", 3)) << "with the length of the text";
}

TEST_F(TCPClients, WriteTheBytesOfABufferZerosIncluded) {
    GivenTcp();
    const Peer peer = GivenConnection();
    Do("s.write(new Buffer([0, 1, 255, 0]))");
    EXPECT_EQ(peer.Receive(4), std::string("\0\x01\xFF\0", 4));
}

TEST_F(TCPClients, WriteNothingElse) {
    GivenTcp();
    const Peer peer = GivenConnection();
    EXPECT_EQ(Do("s.write(123); s.write(null); s.write(undefined); s.write({}); s.write([1]); s.write(true);"
                 "s.write(''); s.write(new Buffer(0)); s.write(new String('object')); s.write('x')"),
              "undefined");
    EXPECT_EQ(peer.Receive(1), "x");
    EXPECT_EQ(Do("s.write()").substr(0, 6), "error:") << "the engine's own error";
}

TEST_F(TCPClients, WriteAlsoWhenTheMethodIsCalledInUnusualWays) {
    GivenTcp();
    const Peer peer = GivenConnection();
    EXPECT_EQ(Do("var w = s.write; w('a'); s.write.call(s, 'b'); s.write('c', 1); s.write.apply(s, ['d'])"),
              "undefined");
    EXPECT_EQ(peer.Receive(4), "abcd");
    EXPECT_EQ(Do("w.call({})").substr(0, 6), "error:");
}

TEST_F(TCPClients, DropWhatIsWrittenWithoutAConnection) {
    GivenTcp();
    EXPECT_EQ(Do("s.write('early')"), "undefined");
    const Peer peer = GivenConnection();
    Do("s.write('on time')");
    EXPECT_EQ(peer.Receive(7), "on time");
    Do("s.end(); s.write('late')");
    EXPECT_EQ(Heard(2), "connect,s close,false,s");
}

TEST_F(TCPClients, RaiseOneCloseWithFalseWhenTheyEnd) {
    GivenTcp();
    const Peer peer = GivenConnection();
    Do("s.end()");
    EXPECT_TRUE(peer.SeesTheEnd());
    EXPECT_EQ(HeardAfterAll(), "connect,s close,false,s");
}

TEST_F(TCPClients, RaiseCloseWhenTheyEndWithoutEverHavingConnected) {
    GivenTcp();
    Do("s.end(); s.end()");
    EXPECT_EQ(HeardAfterAll(), "close,false,s close,false,s");
}

TEST_F(TCPClients, RaiseCloseWhenThePeerCloses) {
    GivenTcp();
    Peer peer = GivenConnection();
    peer.Close();
    EXPECT_EQ(Heard(2), "connect,s close,false,s");
}

TEST_F(TCPClients, ConnectAgainAtOnceAfterEnd) {
    GivenTcp();
    GivenConnection().Close();
    Heard(2);
    std::vector<Peer> peers;
    for (int i = 0; i < 5; ++i) {
        ForgetHeard();
        Do("s.end(); s.connect(" + std::to_string(listener.GetPort()) + ")");
        EXPECT_EQ(Heard(2), "close,false,s connect,s");
        peers.push_back(listener.Accept());
        EXPECT_TRUE(peers.back().IsOpen());
    }
}

TEST_F(TCPClients, MakeNoNewAttemptAsItIsMeantWhenTheyAreToConnectWhileTheirThreadRuns) {
    GivenTcp();
    const Peer peer = GivenConnection();
    Do(WithPort("s.connect(", listener.GetPort(), ")"));
    Do("s.write('still there')");
    EXPECT_EQ(peer.Receive(11), "still there") << "the connection stays as it is";
    EXPECT_EQ(HeardAfterAll(), "connect,s") << "and no second one is told of";
}

TEST_F(TCPClients, MakeNoNewAttemptAsItIsMeantAfterAClose) {
    GivenTcp();
    const std::string connect = "s.connect(" + std::to_string(listener.GetPort()) + ")";
    for (int i = 0; i < 30; ++i) {
        ForgetHeard();
        Do("s.end()");
        const std::vector<int> before = Threads();
        Do(connect);
        Heard(2);
        const std::vector<int> connected = Threads();
        listener.Accept().Close();
        EXPECT_EQ(Heard(3), "close,false,s connect,s close,false,s");
        Do(connect);
        ASSERT_TRUE(Eventually([&] { return OneOfTheNewHasEnded(before, connected); })) << "the thread ends";
        ASSERT_EQ(HeardAfterAll(), "close,false,s connect,s close,false,s") << "and that is all";
    }
    Do(connect);
    EXPECT_EQ(Heard(4), "close,false,s connect,s close,false,s connect,s") << "the next call makes an attempt";
}

TEST_F(TCPClients, ReconnectAtOnceWhenAConnectionStandsAndThePortChanges) {
    GivenTcp();
    const Peer first = GivenConnection();
    const Listener other;
    Do(WithPort("want = 4; s.connect(", other.GetPort(), ")"));
    EXPECT_TRUE(first.SeesTheEnd());
    EXPECT_EQ(Heard(3), "connect,s close,false,s connect,s");
    const Peer second = other.Accept();
    Do("s.write('moved')");
    EXPECT_EQ(second.Receive(5), "moved");
    ASSERT_TRUE(second.Send("read"));
    EXPECT_EQ(Heard(4), "connect,s close,false,s connect,s got:read,s,2");
}

TEST_F(TCPClients, HearOfARefusedConnectionOnceAndNothingMore) {
    GivenTcp();
    Do(WithPort("s.connect(", ClosedPort(), ")"));
    EXPECT_EQ(Heard(1), "error,-5/Connection refused or aborted,s");
    EXPECT_EQ(HeardAfterAll(), "error,-5/Connection refused or aborted,s");
}

TEST_F(TCPClients, HearOfAnUnreachableHost) {
    if (!HasOwnNetwork())
        GTEST_SKIP() << "needs a network of its own";
    GivenTcp();
    Do("s.connect(1, '10.99.0.1')");
    EXPECT_EQ(Heard(1), "error,-6/Host unreach,s");
}

TEST_F(TCPClients, ConnectToANameThatResolves) {
    GivenTcp();
    Do(WithPort("s.connect(", listener.GetPort(), ", 'localhost')"));
    EXPECT_EQ(Heard(1), "connect,s");
}

TEST_F(TCPClients, HearNothingOfANameThatDoesNotResolve) {
    if (!HasOwnNetwork())
        GTEST_SKIP() << "needs a network of its own";
    GivenTcp();
    Do("s.connect(1, 'no..name')");
    Do("s.end()");
    EXPECT_EQ(HeardAfterAll().find("error,-3/"), std::string::npos);
    ForgetHeard();
    Do(WithPort("s.connect(", listener.GetPort(), ")"));
    EXPECT_EQ(Heard(1), "connect,s");
}

/// What the client's socket says of TCP_NODELAY: it is the one that is connected and was not accepted.
int NoDelayOf(const Listener& listener, const Peer& accepted) {
    for (const int descriptor : SocketDescriptors()) {
        sockaddr_in peer{};
        socklen_t size = sizeof peer;
        const bool connected = getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) == 0;
        if (!connected || ntohs(peer.sin_port) != listener.GetPort() || descriptor == accepted.GetDescriptor())
            continue;
        int on = -1;
        size = sizeof on;
        getsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, &size);
        return on;
    }
    return -1;
}

TEST_F(TCPClients, SendAtOnceUnlessTheyAreToldOtherwise) {
    GivenTcp();
    const Peer peer = GivenConnection();
    EXPECT_EQ(NoDelayOf(listener, peer), 1);
    EXPECT_EQ(Do("s.setNoDelay(false)"), "undefined");
    EXPECT_EQ(NoDelayOf(listener, peer), 0);
    EXPECT_EQ(Do("s.setNoDelay()"), "undefined");
    EXPECT_EQ(NoDelayOf(listener, peer), 1) << "nothing means yes";
}

TEST_F(TCPClients, RememberWhatTheyWereToldOfNoDelayForTheNextConnection) {
    GivenTcp();
    EXPECT_EQ(Do("s.setNoDelay(); s.setNoDelay(true); s.setNoDelay(false)"), "undefined");
    const Peer peer = GivenConnection();
    EXPECT_EQ(NoDelayOf(listener, peer), 0);
}

TEST_F(TCPClients, HaveTheMethodsOfScriptsAlone) {
    GivenTcp();
    EXPECT_EQ(Do("m = []; for (var k in s) m.push(k.replace(/\\(.*/, ''));"
                 "m.filter(function (n, i) { return m.indexOf(n) === i }).sort()"),
              "address,connect,end,on,setNoDelay,write");
    EXPECT_EQ(Do("typeof s.deleteLater + typeof s.OnConnect + typeof s.objectName"), "undefinedundefinedundefined");
}

TEST_F(TCPClients, GoOnWhenTheScriptHasDroppedThem) {
    GivenSocketScript("var s = null, held = QCalverin.CreateSocket();"
                      "held.on('data', function (b) { hear(b.toString()) });"
                      "held.on('connect', function () { held = null; gc(); gc(); hear('dropped') });");
    Do(WithPort("held.connect(", listener.GetPort(), ")"));
    EXPECT_EQ(Heard(1), "dropped");
    ASSERT_TRUE(listener.Accept().Send("still here"));
    EXPECT_EQ(Heard(2), "dropped still here");
}

TEST_F(TCPClients, AreClosedWhenTheDeviceStopsOrAnotherScriptIsLoaded) {
    GivenTcp();
    const Peer first = GivenConnection();
    WhenTextIsLoaded("({})");
    EXPECT_TRUE(first.SeesTheEnd());
    ForgetHeard();
    GivenTcp();
    const Peer second = GivenConnection();
    device->Stop();
    EXPECT_TRUE(second.SeesTheEnd());
}

} // namespace
