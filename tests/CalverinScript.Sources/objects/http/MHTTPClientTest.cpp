#include "MHTTPClient.h"

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QNetworkProxy>
#include <QProcess>
#include <QTemporaryDir>
#include <unistd.h>

#include "EventLoopUntil.h"
#include "FewDescriptors.h"
#include "HostileServer.h"

// The worker on the test's own thread: what it does with more than one request, and with answers that never end.

namespace {

struct Response {
    QByteArray data;
    QByteArray headers;
    int status;
    int error;
};

class Worker : public testing::Test {
protected:
    explicit Worker(qint64 maxBytes = kMaxHttpAnswerBytes)
        : worker(maxBytes) {
        QObject::connect(&worker, &MHTTPClient::SignalResponseReceived,
                         [this](const QByteArray& data, const QByteArray& headers, int status, int error) {
                             responses.push_back({data, headers, status, error});
                         });
        QObject::connect(&worker, &MHTTPClient::SignalDownloadProgressReceived,
                         [this](int percent) { percents.push_back(percent); });
        QObject::connect(&worker, &MHTTPClient::SignalUploadProgressReceived,
                         [this](int percent) { percents.push_back(percent); });
    }

    static QNetworkRequest To(const HostileServer& server, const char* path = "/") {
        return QNetworkRequest(QUrl(QString::fromStdString(server.Address(path))));
    }
    bool UntilResponses(std::size_t count) {
        return Until([&] { return responses.size() >= count; });
    }
    int Replies() const { return worker.findChildren<QNetworkReply*>().size(); }

    MHTTPClient worker;
    std::vector<Response> responses;
    std::vector<int> percents;
};

class WorkerWithALimit : public Worker {
protected:
    WorkerWithALimit()
        : Worker(1000) {}
};

std::string Ok(const std::string& body) {
    return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

constexpr int kOldFilmSize = 11;

/// @return the path of a file that is there before a download.
QString OldFilm(const QTemporaryDir& folder) {
    QFile film(folder.filePath(QStringLiteral("film")));
    EXPECT_TRUE(film.open(QIODevice::WriteOnly));
    EXPECT_EQ(film.write("an old film"), kOldFilmSize);
    return film.fileName();
}

/// Answers /quick at once and nothing else ever.
void AnswerQuickOnes(Peer& peer) {
    const std::string request = peer.ReadRequest();
    if (request.find("GET /quick ") == 0)
        peer.Send(Ok("quick"));
    peer.WaitForClose();
}

} // namespace

TEST_F(Worker, ARequestThatMeetsTheEndOfAConnectionIsSentOnAnother) {
    constexpr std::size_t kRequests = 600;
    const HostileServer server([](Peer& peer) {
        if (!peer.ReadRequest().empty())
            peer.Send(Ok("whole"));
    });
    QObject::connect(&worker, &MHTTPClient::SignalResponseReceived, [&] {
        if (responses.size() < kRequests)
            worker.SlotGet(To(server));
    });
    worker.SlotGet(To(server));
    for (std::size_t some = 100; some <= kRequests; some += 100)
        ASSERT_TRUE(UntilResponses(some));
    EXPECT_EQ(
        std::count_if(responses.begin(), responses.end(), [](const Response& response) { return response.error != 0; }),
        0);
    EXPECT_TRUE(Until([&] { return Replies() == 0; }));
}

TEST_F(Worker, TheEndOfAnEarlierRequestReportsTheLastOneAsItIsMeant) {
    const HostileServer server(&AnswerQuickOnes);
    worker.SlotGet(To(server, "/quick"));
    worker.SlotGet(To(server, "/silent"));
    ASSERT_TRUE(UntilResponses(1));
    EXPECT_EQ(responses[0].error, 0);
    EXPECT_EQ(responses[0].status, 0);
    EXPECT_EQ(responses[0].data, "");
    EXPECT_TRUE(Until([&] { return Replies() == 0; })) << "neither request stays behind";
    EXPECT_EQ(responses.size(), 1U);
}

TEST_F(Worker, AnEarlierRequestIsNotCancelledByALaterOne) {
    HostileServer server(&AnswerQuickOnes);
    worker.SlotGet(To(server, "/silent"));
    worker.SlotGet(To(server, "/quick"));
    ASSERT_TRUE(UntilResponses(1));
    EXPECT_EQ(responses[0].data, "quick");
    EXPECT_TRUE(Until([&] { return Replies() == 1; })) << "the silent one goes on";
    EXPECT_EQ(responses.size(), 1U);
}

/// Resident memory of this process now, in MB.
long ResidentMegabytes() {
    QFile status(QStringLiteral("/proc/self/statm"));
    EXPECT_TRUE(status.open(QIODevice::ReadOnly));
    return status.readAll().split(' ').value(1).toLong() * ::sysconf(_SC_PAGESIZE) >> 20;
}

TEST_F(Worker, ADownloadIsWrittenAsItComesInLittleMemory) {
    constexpr int kMegabytes = 1536; // more than an answer for a script may have
    const HostileServer server([](Peer& peer) {
        peer.ReadRequest();
        peer.Send("HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(std::int64_t{kMegabytes} << 20) + "\r\n\r\n");
        const std::string block(1 << 20, 'x');
        for (int i = 0; i < kMegabytes && peer.Send(block); ++i) {
        }
        peer.WaitForClose();
    });
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("film"));
    const long before = ResidentMegabytes();
    long most = 0;
    QObject::connect(&worker, &MHTTPClient::SignalDownloadProgressReceived,
                     [&](int) { most = std::max(most, ResidentMegabytes()); });
    worker.SlotDownloadFile(To(server), path);
    ASSERT_TRUE(Until([&] { return !responses.empty(); }, std::chrono::minutes(5)));
    EXPECT_EQ(responses[0].error, 0);
    EXPECT_EQ(responses[0].data, "");
    EXPECT_EQ(QFileInfo(path).size(), qint64(kMegabytes) << 20);
    EXPECT_GT(most, 0);
    EXPECT_LT(most - before, MEMORY_ALLOWANCE_MB / 2);
    ASSERT_FALSE(percents.empty());
    EXPECT_EQ(percents.back(), 100);
}

TEST_F(Worker, ADownloadThatBreaksOffLeavesTheOldFileAndNothingElse) {
    const HostileServer server([](Peer& peer) {
        peer.ReadRequest();
        peer.Send("HTTP/1.1 200 OK\r\nContent-Length: 5000000\r\n\r\n" + std::string(4000000, 'x'));
    });
    const QTemporaryDir folder;
    const QString film = OldFilm(folder);
    worker.SlotDownloadFile(To(server), film);
    ASSERT_TRUE(UntilResponses(1));
    EXPECT_EQ(responses[0].error, 2);
    EXPECT_EQ(QFileInfo(film).size(), kOldFilmSize);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("film")});
}

/// The network library drops the last bytes of a connection when it may hold only so many.
TEST_F(Worker, ADownloadThatEndsWithItsConnectionIsWhole) {
    constexpr int kSize = 4000000;
    const HostileServer server([](Peer& peer) {
        peer.ReadRequest();
        peer.Send("HTTP/1.1 200 OK\r\n\r\n" + std::string(kSize, 'x'));
    });
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("film"));
    for (int round = 1; round <= 20; ++round) {
        worker.SlotDownloadFile(To(server), path);
        ASSERT_TRUE(UntilResponses(round));
        ASSERT_EQ(responses.back().error, 0);
        ASSERT_EQ(QFileInfo(path).size(), kSize) << "round " << round;
    }
}

/// What the thread of a server has heard.
class Heard {
public:
    void Take(const std::string& request) {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_request = request;
    }
    bool Has(const std::string& part) {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_request.find(part) != std::string::npos;
    }

private:
    std::mutex m_lock;
    std::string m_request; ///< the last one; under m_lock
};

/// A server that packs what nobody asked it to: the library would take the half of it for all.
TEST_F(Worker, ADownloadAsksForTheFileAsItIsSoThatAPackedOneThatBreaksOffLeavesTheOldFile) {
    Heard heard;
    const HostileServer server([&](Peer& peer) {
        heard.Take(peer.ReadRequest());
        peer.Send("HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 5000\r\n\r\n" +
                  std::string("\x1f\x8b\x08\0\0\0\0\0\0\x03", 10));
    });
    const QTemporaryDir folder;
    const QString film = OldFilm(folder);
    worker.SlotDownloadFile(To(server), film);
    ASSERT_TRUE(UntilResponses(1));
    EXPECT_EQ(responses[0].error, 2);
    EXPECT_EQ(QFileInfo(film).size(), kOldFilmSize);
    EXPECT_TRUE(heard.Has("\r\nAccept-Encoding: identity\r\n"));
}

TEST_F(Worker, ADownloadWithAnEncodingOfItsOwnAsksForThatOne) {
    Heard heard;
    const HostileServer server([&](Peer& peer) {
        heard.Take(peer.ReadRequest());
        peer.Send(Ok("packed"));
        peer.WaitForClose();
    });
    const QTemporaryDir folder;
    QNetworkRequest request = To(server);
    request.setRawHeader("Accept-Encoding", "gzip");
    worker.SlotDownloadFile(request, folder.filePath(QStringLiteral("film")));
    ASSERT_TRUE(UntilResponses(1));
    EXPECT_EQ(responses[0].error, 0);
    EXPECT_FALSE(heard.Has("identity"));
    EXPECT_TRUE(heard.Has("\r\nAccept-Encoding: gzip\r\n"));
}

TEST_F(Worker, ADownloadThatDoesNotFitIsAnsweredAtOnceAndLetsTheServerGo) {
    HostileServer server([](Peer& peer) {
        peer.ReadRequest();
        peer.Send("HTTP/1.1 200 OK\r\nContent-Length: 999999999999\r\n\r\n");
        while (peer.Send(std::string(65536, 'x'))) {
        }
    });
    const QTemporaryDir folder;
    worker.SlotDownloadFile(To(server), folder.filePath(QStringLiteral("missing/film")));
    ASSERT_TRUE(UntilResponses(1));
    EXPECT_EQ(responses[0].error, 25);
    EXPECT_EQ(responses[0].status, 200);
    EXPECT_TRUE(Until([&] { return server.AllClosed(); }));
}

TEST_F(Worker, ADownloadOverAFileThatCannotBeWrittenWarnsAndCountsAsItIsMeant) {
    const HostileServer server(&AnswerQuickOnes);
    const QTemporaryDir folder;
    QFile old(folder.filePath(QStringLiteral("film")));
    std::vector<std::string> warnings;
    QObject::connect(&worker, &MHTTPClient::SignalWarning,
                     [&](const QString& text) { warnings.push_back(text.toStdString()); });
    // What makes a file unwritable for this user depends on who that is: one that runs can be written by nobody.
    ASSERT_TRUE(QFile::copy(QStringLiteral("/bin/sleep"), old.fileName()));
    QProcess runs;
    runs.start(old.fileName(), {QStringLiteral("1000")});
    ASSERT_TRUE(runs.waitForStarted());
    const qint64 size = old.size();
    worker.SlotDownloadFile(To(server, "/quick"), old.fileName());
    const bool answered = UntilResponses(1);
    runs.kill();
    runs.waitForFinished();
    ASSERT_TRUE(answered);
    EXPECT_EQ(responses[0].error, 0);
    EXPECT_EQ(old.size(), size);
    EXPECT_EQ(warnings, std::vector<std::string>{"download: " + old.fileName().toStdString() +
                                                 " cannot be written to and stays as it was"});
}

TEST_F(Worker, ARequestDuringADownloadGoesToItsFileAsItIsMeant) {
    const HostileServer server(&AnswerQuickOnes);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("film"));
    worker.SlotDownloadFile(To(server, "/silent"), path);
    worker.SlotGet(To(server, "/quick"));
    ASSERT_TRUE(UntilResponses(1));
    EXPECT_EQ(responses[0].error, 0);
    EXPECT_EQ(responses[0].data, "");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "quick");
}

TEST_F(Worker, TheErrorOfAnEarlierRequestGivesUpTheLastOne) {
    const HostileServer silent(&AnswerQuickOnes);
    worker.SlotGet(QNetworkRequest(QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(UnusedPort()))));
    worker.SlotGet(To(silent));
    ASSERT_TRUE(UntilResponses(1));
    EXPECT_EQ(responses[0].error, 1);
    EXPECT_TRUE(Until([&] { return Replies() == 0; }));
}

TEST_F(Worker, ACancelledRequestEndsUnheard) {
    const HostileServer server([](Peer& peer) {
        for (std::string request = peer.ReadRequest(); !request.empty(); request = peer.ReadRequest())
            peer.Send(Ok(request.substr(0, request.find(" HTTP"))));
    });
    worker.SlotGet(To(server, "/unheard"));
    worker.SlotCancelPreviousRequest();
    EXPECT_EQ(Replies(), 1) << "it goes on";
    EXPECT_TRUE(Until([&] { return Replies() == 0; })) << "and is gone when it has ended";
    worker.SlotGet(To(server, "/heard"));
    ASSERT_TRUE(UntilResponses(1));
    EXPECT_EQ(responses.size(), 1U);
    EXPECT_EQ(responses[0].data, "GET /heard");
}

TEST_F(Worker, CancellingWithoutRequestDoesNothing) {
    worker.SlotCancelPreviousRequest();
    EXPECT_TRUE(responses.empty());
}

TEST_F(Worker, ATimeOutAnswersFourAndGivesUpTheRequest) {
    const HostileServer server(&AnswerQuickOnes);
    worker.SlotGet(To(server));
    ASSERT_TRUE(QMetaObject::invokeMethod(&worker, "SlotTimeOut"));
    ASSERT_EQ(responses.size(), 1U);
    EXPECT_EQ(responses[0].data, "TimeOut");
    EXPECT_EQ(responses[0].headers, "");
    EXPECT_EQ(responses[0].status, 0);
    EXPECT_EQ(responses[0].error, 4);
    EXPECT_TRUE(Until([&] { return Replies() == 0; }));
}

TEST_F(Worker, ProgressWithoutTotalIsNotTold) {
    worker.SlotDownloadProgress(0, 0);
    worker.SlotDownloadProgress(10, -1);
    worker.SlotDownloadProgress(10, 0);
    worker.SlotUploadProgress(0, 0);
    worker.SlotUploadProgress(10, -1);
    EXPECT_TRUE(percents.empty());
}

TEST_F(Worker, ProgressOfVeryMuchIsCountedInFull) {
    worker.SlotDownloadProgress(0, 7);
    worker.SlotDownloadProgress(2, 3);
    worker.SlotUploadProgress(5000000000LL, 10000000000LL);
    EXPECT_EQ(percents, (std::vector<int>{0, 66, 50}));
}

TEST_F(WorkerWithALimit, AnAnswerWithoutEndIsBrokenOff) {
    HostileServer server([](Peer& peer) {
        peer.ReadRequest();
        peer.Send("HTTP/1.1 200 OK\r\n\r\n");
        while (peer.Send(std::string(500, 'x'))) {
        }
    });
    worker.SlotGet(To(server));
    ASSERT_TRUE(UntilResponses(1));
    EXPECT_EQ(responses[0].error, 299);
    EXPECT_EQ(responses[0].data, "");
    EXPECT_TRUE(Until([&] { return Replies() == 0; }));
    EXPECT_TRUE(Until([&] { return server.AllClosed(); }));
    EXPECT_EQ(responses.size(), 1U);
}

TEST_F(WorkerWithALimit, AnAnswerAtTheLimitIsWhole) {
    const HostileServer server([](Peer& peer) {
        peer.ReadRequest();
        peer.Send(Ok(std::string(1000, 'x')));
    });
    worker.SlotGet(To(server));
    ASSERT_TRUE(UntilResponses(1));
    EXPECT_EQ(responses[0].error, 0);
    EXPECT_EQ(responses[0].data.size(), 1000);
}

TEST_F(Worker, WithoutFreeDescriptorsARequestFailsAndTheProcessLives) {
    const HostileServer server(&AnswerQuickOnes);
    {
        const FewDescriptors few(4);
        worker.SlotGet(To(server, "/quick"));
    }
    ASSERT_EQ(responses.size(), 1U);
    EXPECT_EQ(responses[0].error, 99);
}

TEST_F(Worker, AProxyThatRefusesIsNotAskedForEver) {
    std::atomic<int> requests{0};
    const HostileServer proxy([&requests](Peer& peer) {
        while (!peer.ReadRequest().empty()) {
            ++requests;
            if (!peer.Send("HTTP/1.1 407 No\r\nProxy-Authenticate: Basic realm=\"x\"\r\nContent-Length: 0\r\n\r\n"))
                return;
        }
    });
    worker.setProxy(QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), proxy.Port()));
    worker.SlotSetAuthentication(QStringLiteral("ada"), QStringLiteral("wrong"));
    worker.SlotGet(QNetworkRequest(QUrl(QStringLiteral("http://127.0.0.1:1/"))));
    ASSERT_TRUE(UntilResponses(1));
    EXPECT_EQ(responses[0].error, 105);
    EXPECT_LE(requests, 3);
}

TEST_F(Worker, AProxyThatAcceptsTheCredentialsIsUsed) {
    const HostileServer proxy([](Peer& peer) {
        for (;;) {
            const std::string request = peer.ReadRequest();
            if (request.empty())
                return;
            const bool known = request.find("Proxy-Authorization: Basic YWRhOmVuZ2luZQ==") != std::string::npos;
            peer.Send(known ? Ok("through")
                            : "HTTP/1.1 407 No\r\nProxy-Authenticate: Basic realm=\"x\"\r\nContent-Length: 0\r\n\r\n");
        }
    });
    worker.setProxy(QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), proxy.Port()));
    worker.SlotSetAuthentication(QStringLiteral("ada"), QStringLiteral("engine"));
    worker.SlotGet(QNetworkRequest(QUrl(QStringLiteral("http://127.0.0.1:1/"))));
    ASSERT_TRUE(UntilResponses(1));
    EXPECT_EQ(responses[0].data, "through");
}
