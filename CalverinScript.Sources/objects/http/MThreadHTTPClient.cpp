#include "MThreadHTTPClient.h"

#include "MHTTPClient.h"
#include "RunWithinMemory.h"

namespace {

constexpr unsigned long kThreadEndMs = 1000;

} // namespace

MThreadHTTPClient::MThreadHTTPClient() = default;
MThreadHTTPClient::~MThreadHTTPClient() = default;

void MThreadHTTPClient::run() {
    const auto work = [this] {
        MHTTPClient worker;
        ConnectWorker(worker);
        m_ready = true;
        Q_EMIT SignalInitialized();
        exec();
        m_ready = false;
    };
    if (!RunWithinMemory(work))
        Q_EMIT SignalInitialized(); // it is waited for, and finds that there is no worker
    Q_EMIT SignalThreadTerminated();
    m_left = true;
}

void MThreadHTTPClient::ConnectWorker(MHTTPClient& worker) {
    connect(&worker, &MHTTPClient::SignalResponseReceived, this, &MThreadHTTPClient::SlotResponseReceived,
            Qt::DirectConnection);
    connect(&worker, &MHTTPClient::SignalDownloadProgressReceived, this,
            &MThreadHTTPClient::SlotDownloadProgressReceived, Qt::DirectConnection);
    connect(&worker, &MHTTPClient::SignalUploadProgressReceived, this, &MThreadHTTPClient::SlotUploadProgressReceived,
            Qt::DirectConnection);
    connect(&worker, &MHTTPClient::SignalWarning, this, &MThreadHTTPClient::SlotWarning, Qt::DirectConnection);
    connect(this, &MThreadHTTPClient::SignalSetAuthentication, &worker, &MHTTPClient::SlotSetAuthentication);
    connect(this, &MThreadHTTPClient::SignalGet, &worker, &MHTTPClient::SlotGet);
    connect(this, &MThreadHTTPClient::SignalPost, &worker, &MHTTPClient::SlotPost);
    connect(this, &MThreadHTTPClient::SignalPut, &worker, &MHTTPClient::SlotPut);
    connect(this, &MThreadHTTPClient::SignalDownloadFile, &worker, &MHTTPClient::SlotDownloadFile);
    connect(this, &MThreadHTTPClient::SignalDelete, &worker, &MHTTPClient::SlotDelete);
    connect(this, &MThreadHTTPClient::SignalCancelPreviousRequest, &worker, &MHTTPClient::SlotCancelPreviousRequest);
}

void MThreadHTTPClient::Retire(MThreadHTTPClient* thread) {
    thread->Silence();
    thread->exit(0);
    thread->wait(kThreadEndMs);
    Retired().Add(thread);
    Retired().Sweep();
}

std::size_t MThreadHTTPClient::SweepRetired() {
    return Retired().Sweep();
}

/// Threads whose end took too long. Never destroyed itself: what is in it at the end of the process still runs.
SetAside<MThreadHTTPClient>& MThreadHTTPClient::Retired() {
    static auto* const retired =
        new SetAside<MThreadHTTPClient>([](const MThreadHTTPClient& thread) { return thread.HasEnded(); },
                                        [](MThreadHTTPClient* thread) { delete thread; });
    return *retired;
}

/// A thread that was never started counts as ended.
bool MThreadHTTPClient::HasEnded() const {
    return isFinished() ? m_left.load() : !isRunning();
}

void MThreadHTTPClient::Silence() {
    const std::lock_guard<std::mutex> guard(m_wayOut);
    m_silent = true;
}

void MThreadHTTPClient::SlotSetAuthentication(const QString& sUser, const QString& sPassword) {
    if (m_ready)
        Q_EMIT SignalSetAuthentication(sUser, sPassword);
}

void MThreadHTTPClient::SlotGet(const QNetworkRequest& request) {
    if (m_ready)
        Q_EMIT SignalGet(request);
}

void MThreadHTTPClient::SlotPost(const QNetworkRequest& request, const QByteArray& params) {
    if (m_ready)
        Q_EMIT SignalPost(request, params);
}

void MThreadHTTPClient::SlotPut(const QNetworkRequest& request, const QByteArray& params) {
    if (m_ready)
        Q_EMIT SignalPut(request, params);
}

void MThreadHTTPClient::SlotDownloadFile(const QNetworkRequest& request, const QString& path) {
    if (m_ready)
        Q_EMIT SignalDownloadFile(request, path);
}

void MThreadHTTPClient::SlotDelete(const QNetworkRequest& request) {
    if (m_ready)
        Q_EMIT SignalDelete(request);
}

void MThreadHTTPClient::SlotCancelPreviousRequest() {
    if (m_ready)
        Q_EMIT SignalCancelPreviousRequest();
}

void MThreadHTTPClient::SlotResponseReceived(const QByteArray& bysResponse, const QByteArray& bysResponseHeaders,
                                             int iHTTPStatusCode, int iError) {
    const std::lock_guard<std::mutex> guard(m_wayOut);
    if (!m_silent)
        Q_EMIT SignalResponseReceived(bysResponse, bysResponseHeaders, iHTTPStatusCode, iError);
}

void MThreadHTTPClient::SlotDownloadProgressReceived(int iProgress) {
    const std::lock_guard<std::mutex> guard(m_wayOut);
    if (!m_silent)
        Q_EMIT SignalDownloadProgressReceived(iProgress);
}

void MThreadHTTPClient::SlotUploadProgressReceived(int iProgress) {
    const std::lock_guard<std::mutex> guard(m_wayOut);
    if (!m_silent)
        Q_EMIT SignalUploadProgressReceived(iProgress);
}

void MThreadHTTPClient::SlotWarning(const QString& text) {
    const std::lock_guard<std::mutex> guard(m_wayOut);
    if (!m_silent)
        Q_EMIT SignalWarning(text);
}
