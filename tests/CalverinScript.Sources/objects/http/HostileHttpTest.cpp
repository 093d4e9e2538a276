#include <string>

#include "HostileRounds.h"
#include "HttpFixture.h"
#include "OtherClient.h"

// The table of servers that misbehave over HTTP, each again and again beside another client that is at work.

namespace {

constexpr int kNoAnswer = -1; ///< the client is given up while it waits

/// A server, and how a request to it ends.
struct HttpRow {
    const char* name;
    int code;
    const char* data;
    void (*play)(Peer& peer); ///< null: nobody listens
    int requests = 1;         ///< in each round, one behind the other
};

void Answers(Peer& peer, const std::string& answer) {
    peer.ReadRequest();
    peer.Send(answer);
}

/// Sends the same without an end.
void Pours(Peer& peer, const char* first, const std::string& piece) {
    Answers(peer, first);
    while (peer.Send(piece)) {
    }
}

const HttpRow kHttpRows[] = {
    {"IsNotThere", 1, "", nullptr},
    {"ResetsBeforeItsAnswer", 2, "",
     [](Peer& peer) {
         peer.ReadRequest();
         peer.Reset();
     }},
    {"ClosesWithoutAnAnswer", 2, "", [](Peer& peer) { peer.ReadRequest(); }},
    {"ClosesInTheHeaders", 2, "", [](Peer& peer) { Answers(peer, "HTTP/1.1 200 OK\r\nContent-Le"); }},
    {"ResetsInTheBody", 2, "",
     [](Peer& peer) {
         Answers(peer, "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nten bytes.");
         peer.Reset();
     }},
    {"ClosesOneHalfInTheBody", 2, "",
     [](Peer& peer) {
         Answers(peer, "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nten bytes.");
         peer.HalfClose();
         peer.WaitForClose();
     }},
    {"SendsOneByteInAPacket", 0, "hello",
     [](Peer& peer) {
         peer.ReadRequest();
         peer.SendSlowly("HTTP/1.1 200 OK\r\nX-Slow: yes\r\nContent-Length: 5\r\n\r\nhello");
         peer.WaitForClose();
     }},
    {"SendsMoreThanItAnnounces", 0, "hello",
     [](Peer& peer) { Answers(peer, "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello and much more"); }},
    {"EndsItsBodyByClosing", 0, "until the end",
     [](Peer& peer) { Answers(peer, "HTTP/1.0 200 OK\r\n\r\nuntil the end"); }},
    {"SpeaksAnotherProtocol", 2, "",
     [](Peer& peer) {
         Answers(peer, "220 mail.example ESMTP ready, and no end of the matter\r\n\r\n");
         peer.WaitForClose();
     }},
    // The toolkit takes a length that is none for the end.
    {"BreaksItsChunks", 0, "",
     [](Peer& peer) { Answers(peer, "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\nhello\r\n"); }},
    {"CutsItsChunks", 2, "",
     [](Peer& peer) { Answers(peer, "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n40\r\nhello"); }},
    {"HasNoEndOfHeaders", 299, "",
     [](Peer& peer) { Pours(peer, "HTTP/1.1 200 OK\r\n", "X-More: " + std::string(65536, 'm') + "\r\n"); }},
    {"PromisesAnotherAnswerForEver", 299, "",
     [](Peer& peer) {
         std::string promises;
         while (promises.size() < 65536)
             promises += "HTTP/1.1 100 Continue\r\n\r\n";
         Pours(peer, "", promises);
     }},
    {"FailsByItsStatus", 299, "",
     [](Peer& peer) { Answers(peer, "HTTP/1.1 503 No\r\nContent-Length: 4\r\n\r\nbody"); }},
    {"AsksForCredentialsForEver", 204, "",
     [](Peer& peer) {
         while (!peer.ReadRequest().empty())
             if (!peer.Send("HTTP/1.1 401 No\r\nWWW-Authenticate: Basic realm=\"x\"\r\nContent-Length: 0\r\n\r\n"))
                 return;
     }},
    {"IsSilentAndIsLeft", kNoAnswer, "", [](Peer& peer) { peer.WaitForClose(); }},
    {"StreamsWithoutEndAndIsLeft", kNoAnswer, "",
     [](Peer& peer) { Pours(peer, "HTTP/1.1 200 OK\r\n\r\n", std::string(65536, 'x')); }},
    {"ClosesEachOfAHundredConnections", 0, "ok",
     [](Peer& peer) { Answers(peer, "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 2\r\n\r\nok"); }, 100},
};

std::ostream& operator<<(std::ostream& out, const HttpRow& row) {
    return out << row.name;
}

class HostileHttp : public BesideAWebServer, public testing::WithParamInterface<HttpRow> {
protected:
    void Ask(const std::string& address) {
        const HttpRow& row = GetParam();
        for (int count = 0; count < row.requests && !HasFailure(); ++count) {
            const Answer answer = AnswerTo("client.get(" + Quoted(address) + ", '', '', 0, 'ada', 'wrong')");
            EXPECT_EQ(answer.code, row.code);
            EXPECT_EQ(answer.status, row.code == 0 ? 200 : 0);
            EXPECT_EQ(answer.data.toStdString(), row.data);
        }
    }
    /// The client goes while its request is under way.
    void Leave(HostileServer& server, int connections) {
        Run("client.get(" + Quoted(server.Address()) + ")");
        ASSERT_TRUE(server.WaitForConnections(connections));
        EndClient();
        EXPECT_TRUE(server.WaitUntilAllClosed());
        HttpFixture::SetUp();
    }
    void Play() {
        if (GetParam().play == nullptr)
            return Ask("http://127.0.0.1:" + std::to_string(UnusedPort()) + "/");
        HostileServer server(GetParam().play);
        if (GetParam().code == kNoAnswer)
            Leave(server, 1);
        else
            Ask(server.Address());
    }
};

TEST_P(HostileHttp, EndsAsStatedEachTimeWhileOthersAreServed) {
    OtherClient other(web->Address("/hello.txt"));
    Bystander bystander([&other] { return other.IsServed(); });
    for (int round = 0; round < HostileRounds() && !HasFailure(); ++round)
        Play();
    EXPECT_EQ(keeper.AnswersLeft(), 0U);
    EXPECT_EQ(bystander.Tell(GetParam().name), 0U);
}

INSTANTIATE_TEST_SUITE_P(AServerThat, HostileHttp, testing::ValuesIn(kHttpRows),
                         [](const auto& row) { return row.param.name; });

} // namespace
