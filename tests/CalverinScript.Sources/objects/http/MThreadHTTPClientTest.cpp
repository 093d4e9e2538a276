#include "MThreadHTTPClient.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

#include <gtest/gtest.h>
#include <QCoreApplication>
#include <QEvent>

#include "HostileServer.h"
#include "HttpDeadline.h"

// The thread of a client: nothing comes out after its end, and its end never takes long.

namespace {

/// Something that happens once on another thread.
class Happening {
public:
    void Happen() {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_happened = true;
        m_changed.notify_all();
    }
    bool Wait() {
        std::unique_lock<std::mutex> guard(m_lock);
        return m_changed.wait_for(guard, kHttpDeadline, [this] { return m_happened; });
    }

private:
    std::mutex m_lock;
    std::condition_variable m_changed;
    bool m_happened = false; ///< under m_lock
};

QNetworkRequest To(const HostileServer& server) {
    return QNetworkRequest(QUrl(QString::fromStdString(server.Address())));
}

void AnswerOk(Peer& peer) {
    peer.ReadRequest();
    peer.Send("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok");
}

/// Holds up the thread that it is made on as soon as it gets an event.
class Obstacle : public QObject {
public:
    bool event(QEvent* event) override {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        stuck.Happen();
        return release.Wait();
    }

    Happening stuck;
    Happening release;
};

/// A thread whose worker is there.
struct Running {
    explicit Running(const std::function<void()>& onThread = [] {}) {
        QObject::connect(
            thread, &MThreadHTTPClient::SignalInitialized, thread,
            [this, onThread] {
                onThread();
                initialized.Happen();
            },
            Qt::DirectConnection);
        QObject::connect(
            thread, &MThreadHTTPClient::SignalThreadTerminated, thread, [this] { terminated.Happen(); },
            Qt::DirectConnection);
        thread->start();
        EXPECT_TRUE(initialized.Wait());
    }

    Happening initialized;
    Happening terminated;
    MThreadHTTPClient* thread = new MThreadHTTPClient;
};

} // namespace

TEST(HttpThread, DropsWhatComesBeforeTheWorkerIsThere) {
    const HostileServer server(&AnswerOk);
    auto* thread = new MThreadHTTPClient;
    thread->SlotSetAuthentication(QStringLiteral("ada"), QString());
    thread->SlotGet(To(server));
    thread->SlotPost(To(server), "x");
    thread->SlotPut(To(server), "x");
    thread->SlotDelete(To(server));
    thread->SlotDownloadFile(To(server), QString());
    thread->SlotCancelPreviousRequest();
    MThreadHTTPClient::Retire(thread);
    EXPECT_EQ(server.Connections(), 0);
}

TEST(HttpThread, TellsWhenItsWorkerIsGone) {
    Running running;
    MThreadHTTPClient::Retire(running.thread);
    EXPECT_TRUE(running.terminated.Wait());
    EXPECT_EQ(MThreadHTTPClient::SweepRetired(), 0U);
}

TEST(HttpThread, BeginsRequestsInTheirOrder) {
    std::mutex lock;
    std::vector<int> codes; // under lock
    Happening all;
    const Running running;
    QObject::connect(
        running.thread, &MThreadHTTPClient::SignalResponseReceived, running.thread,
        [&](const QByteArray&, const QByteArray&, int, int error) {
            const std::lock_guard<std::mutex> guard(lock);
            codes.push_back(error);
            if (codes.size() == 4)
                all.Happen();
        },
        Qt::DirectConnection);
    const QNetworkRequest file(QUrl(QStringLiteral("file:///x")));
    running.thread->SlotDownloadFile(file, QString());
    running.thread->SlotGet(file);
    running.thread->SlotDownloadFile(file, QString());
    running.thread->SlotDelete(file);
    EXPECT_TRUE(all.Wait());
    MThreadHTTPClient::Retire(running.thread);
    EXPECT_EQ(codes, (std::vector<int>{24, 301, 24, 301}));
}

TEST(HttpThread, LetsNothingOutAfterSilence) {
    std::atomic<int> responses{0};
    HostileServer server(&AnswerOk);
    const Running running;
    QObject::connect(
        running.thread, &MThreadHTTPClient::SignalResponseReceived, running.thread, [&] { ++responses; },
        Qt::DirectConnection);
    running.thread->Silence();
    running.thread->SlotGet(To(server));
    EXPECT_TRUE(server.WaitForConnections(1));
    EXPECT_TRUE(server.WaitUntilAllClosed());
    MThreadHTTPClient::Retire(running.thread);
    EXPECT_EQ(responses, 0);
}

TEST(HttpThread, ThatIsStuckIsLeftAloneAndGoesLater) {
    std::unique_ptr<Obstacle> obstacle;
    Running running([&obstacle] { obstacle = std::make_unique<Obstacle>(); });
    QCoreApplication::postEvent(obstacle.get(), new QEvent(QEvent::User));
    ASSERT_TRUE(obstacle->stuck.Wait());
    const auto begin = std::chrono::steady_clock::now();
    MThreadHTTPClient::Retire(running.thread);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
    EXPECT_EQ(MThreadHTTPClient::SweepRetired(), 1U);
    obstacle->release.Happen();
    EXPECT_TRUE(running.terminated.Wait());
    const auto deadline = std::chrono::steady_clock::now() + kHttpDeadline;
    while (MThreadHTTPClient::SweepRetired() != 0 && std::chrono::steady_clock::now() < deadline)
        QThread::yieldCurrentThread();
    EXPECT_EQ(MThreadHTTPClient::SweepRetired(), 0U);
}

TEST(HttpThread, MayEndBeforeItHasBegun) {
    for (int i = 0; i < 50; ++i) {
        auto* thread = new MThreadHTTPClient;
        thread->start();
        MThreadHTTPClient::Retire(thread);
    }
    EXPECT_EQ(MThreadHTTPClient::SweepRetired(), 0U);
}
