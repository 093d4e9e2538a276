#include "HttpGate.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>
#include <QTcpSocket>

#include "EventLoopUntil.h"
#include "HostileServer.h"
#include "HttpPassage.h"

// The gate as its client sees it, byte by byte, and as the network library uses it.

namespace {

class Gate : public testing::Test {
protected:
    Gate()
        : gate(std::make_unique<HttpGate>())
        , proxy(gate->GetProxy()) {
        client.setProxy(QNetworkProxy(QNetworkProxy::NoProxy));
        QObject::connect(gate.get(), &HttpGate::SignalServerSpoke, [this](HttpPassage* passage, qint64 count) {
            last = passage;
            unanswered.push_back(count);
        });
    }

    /// Sends bytes to the gate as they are.
    void Say(const QByteArray& bytes) {
        if (client.state() == QAbstractSocket::UnconnectedState)
            client.connectToHost(proxy.hostName(), proxy.port());
        ASSERT_TRUE(Until([this] { return client.state() == QAbstractSocket::ConnectedState; }));
        client.write(bytes);
    }
    QByteArray Hear(int count) {
        Until([&] { return client.bytesAvailable() >= count || client.state() != QAbstractSocket::ConnectedState; });
        return client.isOpen() ? client.read(count) : QByteArray();
    }
    bool IsShownOut() {
        return Until([this] { return client.state() == QAbstractSocket::UnconnectedState; });
    }
    QByteArray Password() const {
        const QByteArray user = proxy.user().toLatin1();
        const QByteArray word = proxy.password().toLatin1();
        return QByteArray(1, 1) + char(user.size()) + user + char(word.size()) + word;
    }
    void GivenOneWhoMayPass() {
        Say(QByteArray("\5\1\2", 3));
        ASSERT_EQ(Hear(2), QByteArray("\5\2", 2));
        Say(Password());
        ASSERT_EQ(Hear(2), QByteArray("\1\0", 2));
    }
    static QByteArray RequestFor(std::uint16_t port) {
        const char bytes[] = {5, 1, 0, 1, 127, 0, 0, 1, static_cast<char>(port >> 8U), static_cast<char>(port)};
        return QByteArray(bytes, sizeof(bytes));
    }
    void GivenAPassageTo(const HostileServer& server) {
        GivenOneWhoMayPass();
        Say(RequestFor(server.Port()));
        ASSERT_EQ(Hear(10).left(2), QByteArray("\5\0", 2));
    }

    std::unique_ptr<HttpGate> gate;
    const QNetworkProxy proxy;
    QTcpSocket client;
    HttpPassage* last = nullptr;
    std::vector<qint64> unanswered;
};

void Echo(Peer& peer) {
    std::string request = peer.ReadRequest();
    peer.Send(request);
    peer.WaitForClose();
}

} // namespace

TEST_F(Gate, PassesBytesBothWays) {
    const HostileServer server(&Echo);
    GivenAPassageTo(server);
    Say("there and back\r\n\r\n");
    EXPECT_EQ(Hear(18), "there and back\r\n\r\n");
}

TEST_F(Gate, UnderstandsWhatComesInPieces) {
    const HostileServer server(&Echo);
    for (const char byte :
         QByteArray("\5\2\0\2", 4) + Password() + RequestFor(server.Port()) + "piece by piece\r\n\r\n") {
        Say(QByteArray(1, byte));
        client.flush();
    }
    EXPECT_EQ(Hear(4 + 10), QByteArray("\5\2\1\0\5\0\0\1\0\0\0\0\0\0", 14));
    EXPECT_EQ(Hear(18), "piece by piece\r\n\r\n");
}

TEST_F(Gate, IsClosedToWhoDoesNotHaveThePassword) {
    const HostileServer server(&Echo);
    for (const QByteArray& knock :
         {QByteArray("\5\1\2", 3) + Password().chopped(1) + "?" + RequestFor(server.Port()),
          QByteArray("\5\1\2\1\0\0", 6) + QByteArray(100, '\0'), QByteArray("\5\1\0", 3) + RequestFor(server.Port()),
          QByteArray("\4\1\2", 3), QByteArray("GET / HTTP/1.1\r\n\r\n")}) {
        Say(knock);
        EXPECT_TRUE(IsShownOut()) << knock.toStdString();
    }
    EXPECT_EQ(server.Connections(), 0);
    EXPECT_NE(HttpGate().GetProxy().password(), proxy.password()) << "each has its own";
}

TEST_F(Gate, LeadsToAddressesAlone) {
    for (const QByteArray& wish : {QByteArray("\5\2\0\1", 4), QByteArray("\5\1\0\3", 4), QByteArray("\4\1\0\1", 4)}) {
        GivenOneWhoMayPass();
        Say(wish);
        EXPECT_TRUE(IsShownOut());
    }
}

TEST_F(Gate, TellsThatAServerRefuses) {
    GivenOneWhoMayPass();
    Say(RequestFor(UnusedPort()));
    EXPECT_EQ(Hear(10).left(2), QByteArray("\5\5", 2));
    EXPECT_TRUE(IsShownOut());
}

TEST_F(Gate, BringsAllThatCameBeforeTheServersEnd) {
    const std::string film(3000000, 'f');
    const HostileServer server([&](Peer& peer) {
        peer.ReadRequest();
        peer.Send(film);
    });
    GivenAPassageTo(server);
    Say("\r\n\r\n");
    EXPECT_TRUE(IsShownOut());
    EXPECT_EQ(client.readAll().toStdString(), film);
}

TEST_F(Gate, BringsAllThatTheClientSaidBeforeItsEnd) {
    std::string heard;
    HostileServer server([&](Peer& peer) { heard = peer.ReadRequest(); });
    GivenAPassageTo(server);
    const std::string film = "content-length: 3000000\r\n\r\n" + std::string(3000000, 'f');
    Say(QByteArray::fromStdString(film));
    client.disconnectFromHost();
    EXPECT_TRUE(IsShownOut());
    EXPECT_TRUE(Until([&] { return gate->findChildren<HttpPassage*>().isEmpty(); })) << "nothing stays behind";
    EXPECT_TRUE(Until([&] { return server.AllClosed(); }));
    EXPECT_EQ(heard, film);
}

TEST_F(Gate, CountsWhatComesSinceTheClientHasSaidSomething) {
    const HostileServer server(&Echo);
    GivenAPassageTo(server);
    Say("12345678\r\n\r\n");
    EXPECT_EQ(Hear(12).size(), 12);
    ASSERT_FALSE(unanswered.empty());
    EXPECT_EQ(unanswered.back(), 12);

    const HostileServer talkative([](Peer& peer) {
        for (std::string request = peer.ReadRequest(); !request.empty(); request = peer.ReadRequest())
            peer.Send("ten bytes.");
    });
    client.disconnectFromHost();
    ASSERT_TRUE(IsShownOut());
    GivenAPassageTo(talkative);
    for (int i = 0; i < 3; ++i) {
        Say("\r\n\r\n");
        EXPECT_EQ(Hear(10), "ten bytes.");
        EXPECT_EQ(unanswered.back(), 10) << "it begins anew";
    }
}

TEST_F(Gate, CutsBothSides) {
    HostileServer server([](Peer& peer) {
        peer.Send("x");
        peer.WaitForClose();
    });
    GivenAPassageTo(server);
    ASSERT_TRUE(Until([this] { return last != nullptr; }));
    last->Cut();
    EXPECT_TRUE(IsShownOut());
    EXPECT_TRUE(Until([&] { return gate->findChildren<HttpPassage*>().isEmpty(); }));
    EXPECT_TRUE(Until([&] { return server.AllClosed(); }));
}

TEST_F(Gate, KeepsLittleOfWhatNobodyTakes) {
    const HostileServer flood([](Peer& peer) {
        while (peer.Send(std::string(65536, 'x'))) {
        }
    });
    GivenAPassageTo(flood);
    client.setReadBufferSize(1);
    ASSERT_TRUE(Until([this] { return !unanswered.empty(); }));
    qint64 most = 0;
    QObject::connect(last, &HttpPassage::SignalServerSpoke, [&](HttpPassage*, qint64 count) { most = count; });

    const HostileServer talkative([](Peer& peer) {
        while (!peer.ReadRequest().empty())
            peer.Send("ten bytes.");
    });
    QTcpSocket other;
    other.setProxy(proxy);
    other.connectToHost(QStringLiteral("127.0.0.1"), talkative.Port());
    for (int i = 1; i <= 300; ++i) { // meanwhile the flooded passage has its turns too
        other.write("\r\n\r\n");
        ASSERT_TRUE(Until([&] { return other.bytesAvailable() == i * 10; }));
    }
    EXPECT_LT(most, 4 << 20);
}

TEST_F(Gate, TakesItsConnectionsWithIt) {
    HostileServer server([](Peer& peer) { peer.WaitForClose(); });
    GivenAPassageTo(server);
    gate.reset();
    EXPECT_TRUE(IsShownOut());
    EXPECT_TRUE(Until([&] { return server.AllClosed(); }));
}

TEST_F(Gate, ServesSocketsOfTheNetworkLibrary) {
    const HostileServer server(&Echo);
    client.setProxy(proxy);
    client.connectToHost(QStringLiteral("localhost"), server.Port(), QIODevice::ReadWrite,
                         QAbstractSocket::IPv4Protocol);
    ASSERT_TRUE(Until([this] { return client.state() == QAbstractSocket::ConnectedState; }));
    client.write("there and back\r\n\r\n");
    EXPECT_EQ(Hear(18), "there and back\r\n\r\n");
}

TEST_F(Gate, TheProxyOfTheHostGoesBeforeIt) {
    HttpGateRoute route(*gate);
    const QNetworkProxyQuery query(QUrl(QStringLiteral("http://desk.example/")));
    EXPECT_EQ(route.queryProxy(query), QList<QNetworkProxy>{proxy});
    const bool system = QNetworkProxyFactory::usesSystemConfiguration();
    const QNetworkProxy hosts(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), 9);
    QNetworkProxy::setApplicationProxy(hosts);
    EXPECT_EQ(route.queryProxy(query), QList<QNetworkProxy>{hosts});
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    EXPECT_EQ(route.queryProxy(query), QList<QNetworkProxy>{proxy});
    QNetworkProxyFactory::setUseSystemConfiguration(system);
}

TEST_F(Gate, AProxyOfTheEnvironmentDoesNotCount) {
    HttpGateRoute route(*gate);
    const QNetworkProxyQuery query(QUrl(QStringLiteral("http://desk.example/")));
    qputenv("http_proxy", "http://127.0.0.1:1");
    const QList<QNetworkProxy> ofTheSystem = QNetworkProxyFactory::proxyForQuery(query);
    EXPECT_EQ(route.queryProxy(query), QList<QNetworkProxy>{proxy});
    qunsetenv("http_proxy");
    EXPECT_EQ(ofTheSystem.first().type(), QNetworkProxy::HttpProxy) << "or the test shows nothing";
}
