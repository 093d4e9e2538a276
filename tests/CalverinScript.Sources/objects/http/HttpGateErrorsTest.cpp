#include <map>
#include <string>

#include <gtest/gtest.h>
#include <QNetworkAccessManager>
#include <QNetworkReply>

#include "EventLoopUntil.h"
#include "HostileServer.h"
#include "HttpErrors.h"
#include "MHTTPClient.h"

// The gate is nobody's business: a request that passes it ends with the number that the network library gives without one.

namespace {

int DirectNumber(const QUrl& address) {
    QNetworkAccessManager manager;
    manager.setProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    const std::unique_ptr<QNetworkReply> reply(manager.get(QNetworkRequest(address)));
    EXPECT_TRUE(Until([&] { return reply->isFinished(); }));
    return HttpErrorNumber(reply->error());
}

int NumberThroughTheGate(const QUrl& address) {
    MHTTPClient worker;
    int number = -1;
    QObject::connect(&worker, &MHTTPClient::SignalResponseReceived,
                     [&](const QByteArray&, const QByteArray&, int, int error) { number = error; });
    worker.SlotGet(QNetworkRequest(address));
    EXPECT_TRUE(Until([&] { return number != -1; }));
    return number;
}

struct Ending {
    const char* name;
    const char* scheme;
    HostileServer::Behaviour behaviour;
    int number;          ///< what the network library gives
    bool resets = false; ///< and mostly gives
};

const Ending kEndings[] = {
    {"closes as soon as it has accepted", "http", [](Peer&) {}, 2},
    {"resets as soon as it has accepted", "http", [](Peer& peer) { peer.Reset(); }, 2, true},
    {"closes when it has heard the request", "http", [](Peer& peer) { peer.ReadRequest(); }, 2},
    {"resets when it has heard the request", "http",
     [](Peer& peer) {
         peer.ReadRequest();
         peer.Reset();
     },
     2, true},
    {"speaks before it is asked, and closes", "http", [](Peer& peer) { peer.Send("220 ready\r\n"); }, 2},
    {"closes in the headers", "http",
     [](Peer& peer) {
         peer.ReadRequest();
         peer.Send("HTTP/1.1 200 OK\r\nX-Half");
     },
     2},
    {"resets in the body", "http",
     [](Peer& peer) {
         peer.ReadRequest();
         peer.Send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nhalf");
         peer.Reset();
     },
     2, true},
    {"closes before an encrypted connection", "https", [](Peer&) {}, 2},
    {"resets before an encrypted connection", "https", [](Peer& peer) { peer.Reset(); }, 2, true},
    {"answers in the clear to an encrypted connection", "https",
     [](Peer& peer) {
         peer.Send("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
         peer.WaitForClose();
     },
     6},
};

class GateErrors : public testing::TestWithParam<Ending> {};

std::ostream& operator<<(std::ostream& out, const Ending& ending) {
    return out << ending.name;
}

} // namespace

// The library alone now and then waits for ever, or takes half a body for all of it, when a server resets: the gate is told by the end of
// the connection and has no such cases.
TEST_P(GateErrors, AreThoseOfTheNetworkLibrary) {
    constexpr int kRounds = 40;
    const HostileServer server(GetParam().behaviour);
    QUrl address(QString::fromStdString(server.Address()));
    address.setScheme(QString::fromLatin1(GetParam().scheme));
    std::map<int, int> throughTheGate;
    for (int round = 0; round < kRounds; ++round)
        ++throughTheGate[NumberThroughTheGate(address)];
    EXPECT_EQ(throughTheGate, (std::map<int, int>{{GetParam().number, kRounds}}));
    if (!GetParam().resets) {
        EXPECT_EQ(DirectNumber(address), GetParam().number);
    }
}

INSTANTIATE_TEST_SUITE_P(AServerThat, GateErrors, testing::ValuesIn(kEndings), [](const auto& row) {
    std::string name = row.param.name;
    for (char& sign : name)
        sign = std::isalnum(static_cast<unsigned char>(sign)) != 0 ? sign : '_';
    return name;
});

TEST(GateErrorsOfConnections, ThatAreRefusedAreThoseOfTheNetworkLibrary) {
    const QUrl address(QStringLiteral("http://127.0.0.1:%1/").arg(UnusedPort()));
    EXPECT_EQ(DirectNumber(address), 1);
    EXPECT_EQ(NumberThroughTheGate(address), 1);
}
