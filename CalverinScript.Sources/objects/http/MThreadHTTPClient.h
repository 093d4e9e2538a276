#pragma once

#include <atomic>
#include <mutex>

#include <QByteArray>
#include <QNetworkRequest>
#include <QString>
#include <QThread>

#include "SetAside.h"

class MHTTPClient;

/// The thread of one HTTP object of a script, and the two-way door between that object and its worker.
///
/// - Requests go in as queued signals and are begun in the order in which they were sent.
/// - A request that comes before the worker is there, or after its end, is dropped.
/// - Answers come out on the HTTP thread, by direct connections of whoever listens.
/// - After Silence has returned nothing comes out any more, and no listener is being called.
class MThreadHTTPClient : public QThread {
    Q_OBJECT

public:
    MThreadHTTPClient();
    ~MThreadHTTPClient() override;

    /// Ends the thread and deletes it. It gets 1000 ms, for all that a silent server needs is to be let go; one that takes longer
    /// goes on unheard and is deleted by a later call when it has ended.   [script, host]
    static void Retire(MThreadHTTPClient* thread);
    /// Threads that are over their time, after those that have ended since were deleted.   [any]
    static std::size_t SweepRetired();

    /// Whether requests are taken.   [script]
    bool IsReady() const { return m_ready; }

    /// Cuts the way out. Must not be called by a listener.   [any but http]
    void Silence();

public Q_SLOTS:
    void SlotSetAuthentication(const QString& sUser, const QString& sPassword);
    void SlotGet(const QNetworkRequest& request);
    void SlotPost(const QNetworkRequest& request, const QByteArray& params);
    void SlotPut(const QNetworkRequest& request, const QByteArray& params);
    void SlotDownloadFile(const QNetworkRequest& request, const QString& path);
    void SlotDelete(const QNetworkRequest& request);
    void SlotCancelPreviousRequest();

Q_SIGNALS:
    /// The worker is there.   [http]
    void SignalInitialized();
    // To the worker   [script]
    void SignalSetAuthentication(const QString& sUser, const QString& sPassword);
    void SignalGet(const QNetworkRequest& request);
    void SignalPost(const QNetworkRequest& request, const QByteArray& params);
    void SignalPut(const QNetworkRequest& request, const QByteArray& params);
    void SignalDownloadFile(const QNetworkRequest& request, const QString& path);
    void SignalDelete(const QNetworkRequest& request);
    // From the worker   [http]
    void SignalResponseReceived(const QByteArray& bysResponse, const QByteArray& bysResponseHeaders,
                                int iHTTPStatusCode, int iError);
    void SignalDownloadProgressReceived(int iProgress);
    void SignalUploadProgressReceived(int iProgress);
    void SignalWarning(const QString& text);
    /// The worker is gone.   [http]
    void SignalThreadTerminated();
    // To the worker   [script]
    void SignalCancelPreviousRequest();

protected:
    void run() override;

private Q_SLOTS:
    void SlotResponseReceived(const QByteArray& bysResponse, const QByteArray& bysResponseHeaders, int iHTTPStatusCode,
                              int iError);
    void SlotDownloadProgressReceived(int iProgress);
    void SlotUploadProgressReceived(int iProgress);
    void SlotWarning(const QString& text);

private:
    void ConnectWorker(MHTTPClient& worker);
    bool HasEnded() const;
    static SetAside<MThreadHTTPClient>& Retired();

    std::atomic<bool> m_ready{false}; ///< whether the worker is there: written by http, read by script
    std::atomic<bool> m_left{false};  ///< run() is over: written by http, read by whoever ends the thread
    std::mutex m_wayOut;              ///< held while something comes out
    bool m_silent = false;            ///< under m_wayOut
};
