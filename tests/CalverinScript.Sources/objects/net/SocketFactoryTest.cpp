#include "SocketFixture.h"

#include <QScriptEngine>

#include "Deadline.h"
#include "MScriptMngRemote.h"
#include "MScriptUDP.h"
#include "TCPClient.h"

// What CreateSocket makes, and sockets without a device.

namespace {

class SocketFactory : public SocketFixture {};

TEST_F(SocketFactory, MakesAUdpObjectForUdp4ExactlyAndATcpClientForEverythingElse) {
    GivenScript("function kind(o) { return o.bind ? 'udp' : o.connect ? 'tcp' : 'none' }"
                "({ Kinds: function () { return [kind(QCalverin.CreateSocket('udp4')), kind(QCalverin.CreateSocket()),"
                "  kind(QCalverin.CreateSocket('UDP4')), kind(QCalverin.CreateSocket('udp4 ')),"
                "  kind(QCalverin.CreateSocket('tcp')), kind(QCalverin.CreateSocket(5))].join() } })");
    EXPECT_EQ(Call("Kinds"), "udp,tcp,tcp,tcp,tcp,tcp");
}

TEST_F(SocketFactory, MakesNothingWithoutAnEngine) {
    MScriptMngRemote bridge(nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_FALSE(bridge.CreateSocket().isValid());
    EXPECT_FALSE(bridge.CreateSocket(QStringLiteral("udp4")).isValid());
}

TEST_F(SocketFactory, MakesIdleSocketsForAScriptThatIsOnlyLookedAt) {
    const Peer nobody = Peer::Datagrams();
    const std::size_t sockets = SocketDescriptors().size();
    QScriptEngine looking;
    MScriptMngRemote bridge(nullptr, nullptr, nullptr, nullptr, &looking);
    looking.globalObject().setProperty(QStringLiteral("QCalverin"), looking.newQObject(&bridge));
    const QString script = QStringLiteral(
        "t = QCalverin.CreateSocket(), u = QCalverin.CreateSocket('udp4');"
        "t.on('connect', function () {}); t.connect(%1); t.write('x'); t.setNoDelay(false);"
        "u.bind(0); u.send('x', 0, 1, %1, '127.0.0.1'); u.close(); t.address().port + ' ' + u.address().port");
    const QScriptValue value = looking.evaluate(script.arg(listener.GetPort()));
    EXPECT_EQ(value.toString().toStdString(), std::to_string(listener.GetPort()) + " 0");
    EXPECT_EQ(SocketDescriptors().size(), sockets);
    EXPECT_EQ(looking.evaluate(QStringLiteral("t.end(); 'ended'")).toString(), QStringLiteral("ended"));
    bridge.ReleaseScriptObjects();
}

TEST_F(SocketFactory, GivesSocketsThatHaveNoEngineOutsideAScript) {
    TCPClient client(nullptr);
    MScriptUDP object(nullptr);
    EXPECT_FALSE(client.address().isValid());
    EXPECT_FALSE(object.address().isValid());
    EXPECT_TRUE(client.OnQueryConnect(nullptr));
}

TEST_F(SocketFactory, MakesObjectsThatAreGoneWithTheirScript) {
    GivenScript("({ Make: function () { keptTcp = QCalverin.CreateSocket(); keptUdp = QCalverin.CreateSocket('udp4') },"
                "   Use: function () { var told = []; try { keptTcp.write('x'); told.push('wrote') }"
                "     catch (e) { told.push('gone') } try { keptUdp.bind(0); told.push('bound') }"
                "     catch (e) { told.push('gone') } return told.join() } })");
    Call("Make");
    EXPECT_EQ(Call("Use"), "wrote,bound");
    device->Stop();
    device->Start();
    EXPECT_EQ(Call("Use"), "gone,gone");
}

TEST_F(SocketFactory, MakesAndDropsAThousandSocketsWithoutLeavingAnything) {
    const auto round = [this] {
        GivenScript("for (var i = 0; i < 50; ++i) { var u = QCalverin.CreateSocket('udp4'); u.bind(0);"
                    "  QCalverin.CreateSocket().connect(1) } ({})");
        device->Stop();
        OnScriptThread([] {}); // behind the end of the sockets
    };
    round();
    const std::size_t descriptors = CountDescriptors();
    const std::size_t threads = CountThreads();
    for (int i = 0; i < 10; ++i)
        round();
    EXPECT_EQ(CountDescriptors(), descriptors);
    EXPECT_TRUE(Eventually([=] { return CountThreads() <= threads + 1; })) << "one more may be that of the tick";
}

} // namespace
