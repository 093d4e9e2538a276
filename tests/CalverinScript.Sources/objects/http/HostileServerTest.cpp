#include <QDir>
#include <QFile>
#include <QSemaphore>

#include "HttpFixture.h"
#include "MThreadHTTPClient.h"

// Servers that break every rule: each request ends in the event that is promised, and a client can always go.

class HostileServers : public HttpFixture {
protected:
    Answer Get(const HostileServer& server) { return AnswerTo("client.get(" + Quoted(server.Address()) + ")"); }
};

TEST_F(HostileServers, NobodyListens) {
    const Answer answer = AnswerTo("client.get('http://127.0.0.1:" + std::to_string(UnusedPort()) + "/')");
    EXPECT_EQ(answer.code, 1);
    EXPECT_EQ(answer.text, "the remote server refused the connection (the server is not accepting requests)");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.headers, "");
    EXPECT_EQ(answer.data, "");
    EXPECT_EQ(answer.object, static_cast<MScriptCommonEvent*>(client.get()));
}

TEST_F(HostileServers, AConnectionWithoutAnyAnswerIsTriedAgainAFewTimes) {
    for (const char* verb : {"get", "post"}) {
        const HostileServer server([](Peer& peer) { peer.ReadRequest(); });
        const Answer answer =
            AnswerTo(std::string("client.") + verb + "(" + Quoted(server.Address()) + ", 'Content-Type:x/y')");
        EXPECT_EQ(answer.code, 2) << verb;
        EXPECT_GE(server.Connections(), 1) << verb;
        EXPECT_LE(server.Connections(), 4) << verb;
    }
}

TEST_F(HostileServers, OneByteAtATime) {
    HostileServer server([](Peer& peer) {
        peer.ReadRequest();
        peer.SendSlowly("HTTP/1.1 200 OK\r\nX-Slow: yes\r\nContent-Length: 5\r\n\r\nhello");
        peer.WaitForClose();
    });
    const Answer answer = Get(server);
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.data, "hello");
    EXPECT_EQ(answer.headers, "X-Slow:yes\r\nContent-Length:5");
}

TEST_F(HostileServers, LineBreaksInHeaderValuesArriveAsBlanks) {
    const HostileServer server([](Peer& peer) {
        peer.ReadRequest();
        peer.Send("HTTP/1.1 200 OK\r\nSet-Cookie: a=1\r\nSet-Cookie: b=2\r\nX-Bare: p\rq\r\nContent-Length: 0\r\n\r\n");
    });
    EXPECT_EQ(Get(server).headers, "Set-Cookie:a=1 b=2\r\nX-Bare:p q\r\nContent-Length:0");
}

TEST_F(HostileServers, ServerErrorsHaveTheGeneralNumber) {
    for (const char* status : {"500", "501", "503", "599", "409", "410", "413"}) {
        const HostileServer server([status](Peer& peer) {
            peer.ReadRequest();
            peer.Send(std::string("HTTP/1.1 ") + status + " No\r\nContent-Length: 4\r\n\r\nbody");
        });
        const Answer answer = Get(server);
        EXPECT_EQ(answer.code, 299) << status;
        EXPECT_EQ(answer.status, 0) << status;
        EXPECT_EQ(answer.data, "") << status;
    }
}

TEST_F(HostileServers, RequestsThatAServerRejectsHaveNumbersOfTheirOwn) {
    const std::pair<const char*, int> rows[] = {{"400", 302}, {"401", 204}, {"403", 201}, {"404", 203}, {"405", 202}};
    for (const auto& [status, code] : rows) {
        const char* line = status;
        const HostileServer server([line](Peer& peer) {
            peer.ReadRequest();
            peer.Send(std::string("HTTP/1.1 ") + line + " No\r\nContent-Length: 4\r\n\r\nbody");
        });
        const Answer answer = Get(server);
        EXPECT_EQ(answer.code, code) << status;
        EXPECT_EQ(answer.data, "") << status;
    }
}

TEST_F(HostileServers, CredentialsThatAreRefusedAreNotOfferedForEver) {
    std::atomic<int> requests{0};
    const HostileServer server([&requests](Peer& peer) {
        while (!peer.ReadRequest().empty()) {
            ++requests;
            if (!peer.Send("HTTP/1.1 401 No\r\nWWW-Authenticate: Basic realm=\"x\"\r\nContent-Length: 0\r\n\r\n"))
                return;
        }
    });
    const Answer answer = AnswerTo("client.get(" + Quoted(server.Address()) + ", '', '', 0, 'ada', 'wrong')");
    EXPECT_EQ(answer.code, 204);
    EXPECT_LE(requests, 3);
}

/// A server that asks for credentials when it is told to, and takes those of Ada.
class WaitingDoorman {
public:
    HostileServer::Behaviour Behaviour() {
        return [this](Peer& peer) {
            peer.ReadRequest();
            m_asked.acquire();
            peer.Send("HTTP/1.1 401 No\r\nWWW-Authenticate: Basic realm=\"x\"\r\nContent-Length: 0\r\n\r\n");
            const bool known = peer.ReadRequest().find("Authorization: Basic YWRhOmVuZ2luZQ==") != std::string::npos;
            peer.Send(known ? "HTTP/1.1 200 OK\r\nContent-Length: 7\r\n\r\nwelcome"
                            : "HTTP/1.1 403 No\r\nContent-Length: 0\r\n\r\n");
        };
    }
    void Ask() { m_asked.release(); }

private:
    QSemaphore m_asked;
};

TEST_F(HostileServers, ThePairOfTheLastRequestAnswersEveryLaterChallenge) {
    WaitingDoorman doorman;
    const HostileServer server(doorman.Behaviour());
    Run("client.get(" + Quoted(server.Address()) + ", '', '', 0, 'ada', 'wrong')");
    Run("client.post(" + Quoted(server.Address()) + ", '', 5, '', 0, 'ada', 'engine')");
    doorman.Ask();
    EXPECT_EQ(keeper.NextAnswer().data, "welcome") << "a body that is not sent sets the pair all the same";
    EXPECT_EQ(server.Connections(), 1);
}

TEST_F(HostileServers, ARequestWithoutAPairClearsThatOfTheOneBefore) {
    WaitingDoorman doorman;
    const HostileServer server(doorman.Behaviour());
    Run("client.get(" + Quoted(server.Address()) + ", '', '', 0, 'ada', 'engine')");
    Run("client.post(" + Quoted(server.Address()) + ", '', 5)");
    doorman.Ask();
    EXPECT_NE(keeper.NextAnswer().code, 0);
}

TEST_F(HostileServers, ASilentServerDoesNotKeepTheClient) {
    HostileServer server([](Peer& peer) { peer.WaitForClose(); });
    Run("client.get(" + Quoted(server.Address()) + ")");
    ASSERT_TRUE(server.WaitForConnections(1));
    const auto begin = std::chrono::steady_clock::now();
    EndClient();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    EXPECT_TRUE(server.WaitUntilAllClosed());
    EXPECT_EQ(keeper.AnswersLeft(), 0U);
}

TEST_F(HostileServers, ManyRequestsUnderWayDoNotKeepTheClient) {
    HostileServer server([](Peer& peer) { peer.WaitForClose(); });
    for (int i = 0; i < 40; ++i)
        Run("client.get(" + Quoted(server.Address()) + ")");
    ASSERT_TRUE(server.WaitForConnections(2));
    EndClient();
    EXPECT_TRUE(server.WaitUntilAllClosed());
    EXPECT_EQ(keeper.AnswersLeft(), 0U);
}

TEST_F(HostileServers, AStreamWithoutEndDoesNotKeepTheClient) {
    HostileServer server([](Peer& peer) {
        peer.ReadRequest();
        peer.Send("HTTP/1.1 200 OK\r\n\r\n");
        while (peer.Send(std::string(65536, 'x'))) {
        }
    });
    Run("client.get(" + Quoted(server.Address()) + ")");
    ASSERT_TRUE(server.WaitForConnections(1));
    EndClient();
    EXPECT_TRUE(server.WaitUntilAllClosed());
}

/// What never becomes a complete head of an answer: headers, a header, a first line, and answers that only promise another.
static const std::pair<const char*, const char*> kHeadsWithoutEnd[] = {
    {"HTTP/1.1 200 OK\r\n", "X-More: and more\r\n"},
    {"HTTP/1.1 200 OK\r\nX-Long: ", "and longer "},
    {"HTTP/1.1 200 ", "indeed "},
    {"", "HTTP/1.1 100 Continue\r\n\r\n"},
};

static std::string Repeated(const std::string& text, std::size_t size) {
    std::string many;
    while (many.size() < size)
        many += text;
    return many;
}

/// What the process has in memory, in bytes.
static qint64 ResidentBytes() {
    QFile file(QStringLiteral("/proc/self/statm"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').value(1).toLongLong() * 4096 : -1;
}

static bool NoThreadIsLeft() {
    const auto deadline = std::chrono::steady_clock::now() + kHttpDeadline;
    while (MThreadHTTPClient::SweepRetired() != 0 && std::chrono::steady_clock::now() < deadline)
        QThread::yieldCurrentThread();
    return MThreadHTTPClient::SweepRetired() == 0;
}

TEST_F(HostileServers, AHeadWithoutEndIsCutAndAnswered) {
    for (const auto& [opening, rest] : kHeadsWithoutEnd) {
        const std::string block = Repeated(rest, 65536);
        const char* first = opening;
        HostileServer server([&block, first](Peer& peer) {
            peer.ReadRequest();
            peer.Send(first);
            while (peer.Send(block)) {
            }
        });
        const qint64 before = ResidentBytes();
        const Answer answer = Get(server);
        EXPECT_EQ(answer.code, 299) << opening << rest;
        EXPECT_EQ(answer.status, 0);
        EXPECT_EQ(answer.headers, "");
        EXPECT_EQ(answer.data, "");
        EXPECT_TRUE(server.WaitUntilAllClosed()) << rest;
        EXPECT_LT(ResidentBytes() - before, qint64(MEMORY_ALLOWANCE_MB) << 20U) << rest;
        EXPECT_EQ(server.Connections(), 1) << "it is not asked again";
    }
    const HostileServer good([](Peer& peer) {
        peer.ReadRequest();
        peer.Send("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
    });
    EXPECT_EQ(Get(good).data, "ok") << "the client goes on";
    EXPECT_EQ(keeper.AnswersLeft(), 0U);
}

TEST_F(HostileServers, HeadersWithoutEndKeepNeitherTheClientNorItsThreads) {
    HostileServer server([](Peer& peer) {
        peer.ReadRequest();
        peer.Send("HTTP/1.1 200 OK\r\n");
        while (peer.Send("X-More: and more\r\n")) {
        }
    });
    Run("client.get(" + Quoted(server.Address()) + ")");
    ASSERT_TRUE(server.WaitForConnections(1));
    const auto begin = std::chrono::steady_clock::now();
    EndClient();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    EXPECT_EQ(keeper.AnswersLeft(), 0U);
    EXPECT_TRUE(NoThreadIsLeft()) << "though the server goes on";
    EXPECT_TRUE(server.WaitUntilAllClosed());
}

TEST_F(HostileServers, LongHeadersAreReadWhole) {
    const std::string value(1000000, 'v');
    const HostileServer server([&value](Peer& peer) {
        peer.ReadRequest();
        peer.Send("HTTP/1.1 200 OK\r\nX-Long: " + value + "\r\nContent-Length: 2\r\n\r\nok");
    });
    const Answer answer = Get(server);
    EXPECT_EQ(answer.code, 0);
    EXPECT_EQ(answer.headers, "X-Long:" + value + "\r\nContent-Length:2");
}

TEST_F(HostileServers, ABodyBehindItsHeadersIsNeverTakenForHeaders) {
    const std::string film(50000000, 'f');
    const HostileServer server([&film](Peer& peer) {
        while (!peer.ReadRequest().empty())
            peer.Send("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(film.size()) + "\r\n\r\n" + film);
    });
    for (int i = 0; i < 4; ++i) {
        const Answer answer = Get(server);
        EXPECT_EQ(answer.code, 0);
        EXPECT_EQ(answer.data.size(), static_cast<int>(film.size()));
    }
}

TEST_F(HostileServers, AConnectionIsKeptForTheNextRequest) {
    const HostileServer server([](Peer& peer) {
        while (!peer.ReadRequest().empty())
            peer.Send("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
    });
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(Get(server).data, "ok");
    EXPECT_EQ(server.Connections(), 1);
}

TEST_F(HostileServers, AHundredClientsLeaveNeitherThreadsNorDescriptors) {
    const HostileServer server([](Peer& peer) {
        peer.ReadRequest();
        peer.Send("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
    });
    const auto count = [](const char* what) {
        return QDir(QString::fromLatin1(what)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System).size();
    };
    int threads = 0;
    int descriptors = 0;
    for (int i = 0; i < 100; ++i) {
        HTTPClient another(&keeper);
        another.get(QString::fromStdString(server.Address()));
        ASSERT_EQ(keeper.NextAnswer().code, 0);
        if (i == 10) {
            threads = count("/proc/self/task");
            descriptors = count("/proc/self/fd");
        }
    }
    EXPECT_LE(count("/proc/self/task"), threads + 3);
    EXPECT_LE(count("/proc/self/fd"), descriptors + 5);
}
