#include <optional>
#include <string>

#include <malloc.h>

#include <QSslConfiguration>

#include "HostileRounds.h"
#include "HttpFixture.h"
#include "OtherClient.h"
#include "WebServer.h"

// The table of servers that misbehave where an encrypted connection is wanted, each again and again beside another client that is at
// work. Bytes are those of the record layer and of the handshake of TLS 1.2 (RFC 5246, 6.2.1 and 7.4.1.3).

namespace {

const std::string kHandshakeRecord("\x16\x03\x03", 3);
const std::string kAlertRecord("\x15\x03\x03\x00\x02", 5);
constexpr char kFatal = 2;
constexpr char kHandshakeFailure = 40;
constexpr char kProtocolVersion = 70;

std::string Alert(char description) {
    return kAlertRecord + kFatal + description;
}

/// The beginning of an answer of the server, with a version that it chooses.
std::string ServerHello(const std::string& version) {
    const std::string body = version + std::string(32, 'r') + '\0' + std::string("\xC0\x2F\x00", 3);
    const std::string message = std::string("\x02\x00\x00", 3) + static_cast<char>(body.size()) + body;
    return kHandshakeRecord + '\0' + static_cast<char>(message.size()) + message;
}

/// A server, and the number that a request to it ends with.
struct TlsRow {
    const char* name;
    int code;
    std::optional<WebServer::Certificate> certificate; ///< of a real server
    void (*play)(Peer& peer);                          ///< of one that is none
};

const TlsRow kTlsRows[] = {
    {"SignsItself", 6, WebServer::Certificate::SelfSigned, nullptr},
    {"HasAnothersName", 6, WebServer::Certificate::WrongName, nullptr},
    {"HasAnExpiredCertificate", 6, WebServer::Certificate::Expired, nullptr},
    {"HasACertificateThatIsNotValidYet", 6, WebServer::Certificate::NotYetValid, nullptr},
    {"IsOfAnUnknownAuthority", 6, WebServer::Certificate::Good, nullptr},
    {"SpeaksInTheClear", 6, std::nullopt,
     [](Peer& peer) {
         peer.Send("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
         peer.WaitForClose();
     }},
    {"ClosesAtOnce", 2, std::nullopt, [](Peer&) {}},
    {"ResetsAtOnce", 2, std::nullopt, [](Peer& peer) { peer.Reset(); }},
    {"CutsItsHandshake", 2, std::nullopt,
     [](Peer& peer) { peer.Send(ServerHello(std::string("\x03\x03", 2)).substr(0, 20)); }},
    {"KnowsNoVersionOfOurs", 6, std::nullopt,
     [](Peer& peer) {
         peer.Send(Alert(kProtocolVersion));
         peer.WaitForClose();
     }},
    {"ChoosesAVersionThatIsTooOld", 6, std::nullopt,
     [](Peer& peer) {
         peer.Send(ServerHello(std::string("\x03\x00", 2)));
         peer.WaitForClose();
     }},
    {"RefusesTheHandshake", 6, std::nullopt,
     [](Peer& peer) {
         peer.Send(Alert(kHandshakeFailure));
         peer.WaitForClose();
     }},
    {"AnswersWithNoise", 6, std::nullopt,
     [](Peer& peer) {
         peer.Send(kHandshakeRecord + std::string("\x40\x00", 2) + std::string(16384, '\x7F'));
         peer.WaitForClose();
     }},
};

std::ostream& operator<<(std::ostream& out, const TlsRow& row) {
    return out << row.name;
}

class HostileTls : public BesideAWebServer, public testing::WithParamInterface<TlsRow> {
protected:
    void SetUp() override {
        BesideAWebServer::SetUp();
        if (GetParam().certificate && *GetParam().certificate != WebServer::Certificate::Good)
            TrustTheAuthority();
    }
    void TearDown() override {
        HttpFixture::TearDown();
        QSslConfiguration::setDefaultConfiguration(m_before);
    }

    void Play(const std::string& address) {
        for (int round = 0; round < HostileRounds() && !HasFailure(); ++round) {
            const Answer answer = AnswerTo("client.get(" + Quoted(address) + ")");
            EXPECT_EQ(answer.code, GetParam().code) << "in round " << round;
            EXPECT_EQ(answer.status, 0);
            EXPECT_EQ(answer.data, "");
        }
        EXPECT_EQ(keeper.AnswersLeft(), 0U);
    }

private:
    void TrustTheAuthority() {
        QSslConfiguration trusting = m_before;
        trusting.addCaCertificates(web->AuthorityFile());
        QSslConfiguration::setDefaultConfiguration(trusting);
    }

    const QSslConfiguration m_before = QSslConfiguration::defaultConfiguration();
};

TEST_P(HostileTls, GivesItsNumberEachTimeWhileOthersAreServed) {
    OtherClient other(web->Address("/hello.txt"));
    Bystander bystander([&other] { return other.IsServed(); });
    if (GetParam().certificate) {
        Play(web->SecureAddress(*GetParam().certificate, "/hello.txt"));
    } else {
        const HostileServer server(GetParam().play);
        Play("https://127.0.0.1:" + std::to_string(server.Port()) + "/");
    }
    EXPECT_EQ(bystander.Tell(GetParam().name), 0U);
}

INSTANTIATE_TEST_SUITE_P(AServerThat, HostileTls, testing::ValuesIn(kTlsRows),
                         [](const auto& row) { return row.param.name; });

TEST_F(HttpFixture, AHandshakeWithoutAnAnswerDoesNotKeepTheClient) {
    for (int round = 0; round < HostileRounds(); ++round) {
        HostileServer server([](Peer& peer) { peer.WaitForClose(); });
        SetUp();
        Run("client.get('https://127.0.0.1:" + std::to_string(server.Port()) + "/')");
        ASSERT_TRUE(server.WaitForConnections(1));
        EndClient();
        EXPECT_TRUE(server.WaitUntilAllClosed());
        EXPECT_EQ(keeper.AnswersLeft(), 0U);
    }
}

/// Bytes in use of all the allocator's arenas.
std::size_t BytesInUse() {
    const auto heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

TEST_F(HttpFixture, CertificatesOfServersThatAreRefusedAreNotKept) {
    constexpr std::size_t kMostBytesOfARefusal = 2048; // a certificate that is kept costs 6 KB
    constexpr std::size_t kRefusals = 200;
    const WebServer web;
    ASSERT_EQ(web.Problem(), "");
    const std::string get =
        "client.get(" + Quoted(web.SecureAddress(WebServer::Certificate::SelfSigned, "/hello.txt")) + ")";
    for (std::size_t i = 0; i < kRefusals / 4; ++i)
        ASSERT_EQ(AnswerTo(get).code, 6);
    const std::size_t before = BytesInUse();
    for (std::size_t i = 0; i < kRefusals; ++i)
        ASSERT_EQ(AnswerTo(get).code, 6);
    EXPECT_LT(BytesInUse(), before + kRefusals * kMostBytesOfARefusal);
}

} // namespace
