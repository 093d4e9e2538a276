#pragma once

#include <functional>
#include <memory>

#include <QAuthenticator>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QString>

#include "HttpGate.h"

class DownloadFile;

/// The most bytes of one answer, after unpacking. A server that sends without end would otherwise take the process's
/// memory before anybody hears of it; an answer that grows larger is broken off with the number 299.
inline constexpr qint64 kMaxHttpAnswerBytes = qint64(1) << 30;

/// The most bytes that a server may send before its headers are complete. It is more than the system's buffers hold
/// between the gate and the network library (6 MB at most unless it is told otherwise, twice while they are emptied): a
/// body that is on its way behind headers which nobody has read yet must not count.
inline constexpr qint64 kMaxHttpHeaderBytes = qint64(16) << 20;

/// The network manager of one HTTP object of a script. It lives
/// on that object's own thread, and all of it is used there.
///
/// It knows one request, the last that began. Earlier ones go on; when one of them ends, what is reported is the state
/// of the last, which is given up then. Who wants one answer for each request waits for it before the next.
///
/// Redirects are handed to the script, not followed. There is no time-out. The proxy is the one that the host process
/// has set for itself; what the computer's environment names as proxy does not divert the traffic of a show. Without a
/// proxy all connections pass an HttpGate, where endless headers are cut.
class MHTTPClient : public QNetworkAccessManager {
    Q_OBJECT

public:
    explicit MHTTPClient(qint64 maxAnswerBytes = kMaxHttpAnswerBytes);
    /// Breaks off all requests without a word.
    ~MHTTPClient() override;

public Q_SLOTS:
    void SlotGet(const QNetworkRequest& request);
    void SlotPost(const QNetworkRequest& request, const QByteArray& params);
    void SlotPut(const QNetworkRequest& request, const QByteArray& params);
    /// A get whose body goes to a file as it comes, of any size; see DownloadTarget for the path. Without a file it
    /// answers 24 at once.
    void SlotDownloadFile(const QNetworkRequest& request, const QString& path);
    void SlotDownloadProgress(qint64 bytesReceived, qint64 bytesTotal);
    void SlotUploadProgress(qint64 bytesSent, qint64 bytesTotal);
    void SlotDelete(const QNetworkRequest& request);
    /// Lets the current request end unheard.
    void SlotCancelPreviousRequest();
    /// What every later challenge of a server or proxy is answered with.
    void SlotSetAuthentication(const QString& _sUser, const QString& _sPassword);
    /// Answers a server's challenge, once for each request: a server that refuses would be asked again without end.
    void SlotAuthRequired(QNetworkReply* _lpNR, QAuthenticator* _lpAuth);
    /// The same for a proxy, as often as requests were begun.
    void SlotProxyAuthRequired(const QNetworkProxy& Proxy, QAuthenticator* _lpAuth);

Q_SIGNALS:
    /// One for each request that is heard to its end. @param iError 0 or a number of HttpErrors.h.   [http]
    void SignalResponseReceived(const QByteArray& bysResponse, const QByteArray& bysResponseHeaders,
                                int iHTTPStatusCode, int iError);
    /// In percent.   [http]
    void SignalDownloadProgressReceived(int iProgress);
    void SignalUploadProgressReceived(int iProgress);
    /// Something that its answer does not tell, for the log.   [http]
    void SignalWarning(const QString& text);

protected:
    bool event(QEvent* received) override;

private Q_SLOTS:
    void SlotNAMReplyFinished(QNetworkReply* reply);
    void SlotDestroyNAMReply(QNetworkReply* reply);
    void SlotReadyRead();
    void SlotError(QNetworkReply::NetworkError error);
    /// Answers 4. No clock leads here: a request waits as long as its server lets it.
    void SlotTimeOut();
    void SlotBodyGrows();
    void SlotServerSpoke(HttpPassage* passage, qint64 unanswered);

private:
    void Begin(const QNetworkRequest& request, std::function<QNetworkReply*()> send);
    void Send();
    template <typename Work>
    void AnswerWantOfMemory(Work work);
    void TakeAnswer();
    void FailFor(QNetworkReply::NetworkError error);
    bool MaySendAgain(QNetworkReply::NetworkError error) const;
    bool MayBegin(const QNetworkRequest& request);
    bool AnyBodyIsComing() const;
    void RefuseBody(QNetworkReply* reply, int error, int status);
    bool FinishDownload();
    void Silence(QNetworkReply* reply);
    void ReleaseReply();
    void Fail(int error, int status = 0, const QByteArray& body = QByteArray());

    const qint64 m_maxBytes;
    HttpGate m_gate;
    QNetworkReply* m_lpReply = nullptr;     ///< the last request, child of the manager
    std::function<QNetworkReply*()> m_send; ///< sends the current request, once more if need be; with its body
    int m_sendsLeft = 0;
    std::unique_ptr<DownloadFile> m_lpDownload; ///< where its body goes; null when it goes to the script
    QString m_sUser;
    QString m_sPassword;
    int m_proxyAnswersLeft = 0;
};
