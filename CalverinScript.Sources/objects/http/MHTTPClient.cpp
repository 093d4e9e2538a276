#include "MHTTPClient.h"

#include <algorithm>

#include "Descriptors.h"
#include "DownloadFile.h"
#include "HttpErrors.h"
#include "HttpPassage.h"
#include "HttpRequest.h"
#include "RunWithinMemory.h"

namespace {

constexpr int kDescriptorsOfRequest = 20; ///< sockets, look-ups and the event loops behind them, with some to spare
constexpr int kPercent = 100;
constexpr int kSends =
    4; ///< of one request; as many as the network library tries for a server that goes without an answer
constexpr const char* kAnswered = "challengeAnswered";
constexpr const char* kAcceptEncoding = "Accept-Encoding";

QByteArray OneLine(QByteArray value) {
    return value.replace('\n', ' ').replace('\r', ' ');
}

/// A body that the network library unpacks may break off unnoticed, so a file is asked for as it is.
QNetworkRequest Unpacked(QNetworkRequest request) {
    if (!request.hasRawHeader(kAcceptEncoding))
        request.setRawHeader(kAcceptEncoding, "identity");
    return request;
}

QByteArray HeaderListOf(const QNetworkReply& reply) {
    QByteArray list;
    for (const QNetworkReply::RawHeaderPair& header : reply.rawHeaderPairs())
        list += (list.isEmpty() ? "" : "\r\n") + header.first + ':' + OneLine(header.second);
    return list;
}

} // namespace

MHTTPClient::MHTTPClient(qint64 maxAnswerBytes)
    : m_maxBytes(maxAnswerBytes) {
    setProxyFactory(new HttpGateRoute(m_gate)); // which the manager owns
    setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
    connect(this, &QNetworkAccessManager::finished, this, &MHTTPClient::SlotDestroyNAMReply);
    connect(&m_gate, &HttpGate::SignalServerSpoke, this, &MHTTPClient::SlotServerSpoke);
}

MHTTPClient::~MHTTPClient() {
    disconnect(this, nullptr, nullptr, nullptr);
    for (QNetworkReply* reply : findChildren<QNetworkReply*>()) {
        Silence(reply);
        reply->abort();
        delete reply;
    }
}

/// Requests arrive as events of this thread, whose loop cannot carry a C++ exception.
bool MHTTPClient::event(QEvent* received) {
    bool isKnown = true;
    AnswerWantOfMemory([&] { isKnown = QNetworkAccessManager::event(received); });
    return isKnown;
}

/// Runs work that the network library or the event loop has called for.
template <typename Work>
void MHTTPClient::AnswerWantOfMemory(Work work) {
    if (!RunWithinMemory(work))
        RunWithinMemory([this] { Fail(kHttpUnknownNetworkError); });
}

/// @return whether a request can go out. One that cannot is answered, and takes the place of the last one as any other.
bool MHTTPClient::MayBegin(const QNetworkRequest& request) {
    if (!IsHttpAddress(request.url())) {
        Fail(kHttpUnknownProtocol);
        return false;
    }
    if (!CanOpenDescriptors(kDescriptorsOfRequest)) {
        Fail(kHttpUnknownNetworkError);
        return false;
    }
    return true;
}

void MHTTPClient::Begin(const QNetworkRequest& request, std::function<QNetworkReply*()> send) {
    m_lpReply = nullptr;
    if (!MayBegin(request))
        return;
    ++m_proxyAnswersLeft;
    m_send = std::move(send);
    m_sendsLeft = kSends;
    Send();
}

void MHTTPClient::Send() {
    connect(this, &QNetworkAccessManager::authenticationRequired, this, &MHTTPClient::SlotAuthRequired,
            Qt::UniqueConnection);
    connect(this, &QNetworkAccessManager::proxyAuthenticationRequired, this, &MHTTPClient::SlotProxyAuthRequired,
            Qt::UniqueConnection);
    --m_sendsLeft;
    m_lpReply = m_send();
    connect(m_lpReply, &QNetworkReply::finished, this, &MHTTPClient::SlotReadyRead);
    connect(m_lpReply, &QNetworkReply::errorOccurred, this, &MHTTPClient::SlotError);
    connect(m_lpReply, &QNetworkReply::downloadProgress, this, &MHTTPClient::SlotDownloadProgress);
    connect(m_lpReply, &QNetworkReply::uploadProgress, this, &MHTTPClient::SlotUploadProgress);
    connect(m_lpReply, &QNetworkReply::readyRead, this, &MHTTPClient::SlotBodyGrows);
    // No read buffer size: with one, the SOCKS client of the network library drops what it holds back when the server
    // goes. It is not needed either: the gate passes bytes on in this thread, and so not while the disk is written to.
    if (m_lpDownload != nullptr)
        m_lpDownload->Restart(); // the body of the last request it is, and of no other
}

void MHTTPClient::SlotGet(const QNetworkRequest& request) {
    Begin(request, [=] { return get(request); });
}

void MHTTPClient::SlotPost(const QNetworkRequest& request, const QByteArray& params) {
    Begin(request, [=] { return post(request, params); });
}

void MHTTPClient::SlotPut(const QNetworkRequest& request, const QByteArray& params) {
    Begin(request, [=] { return put(request, params); });
}

void MHTTPClient::SlotDelete(const QNetworkRequest& request) {
    Begin(request, [=] { return deleteResource(request); });
}

void MHTTPClient::SlotDownloadFile(const QNetworkRequest& request, const QString& path) {
    m_lpDownload.reset();
    const QString target = DownloadTarget(path, request.url());
    if (target.isEmpty()) {
        Q_EMIT SignalResponseReceived(QByteArray(), QByteArray(), 0, kHttpWrongPath);
        return;
    }
    m_lpDownload = std::make_unique<DownloadFile>(target);
    SlotGet(Unpacked(request));
}

void MHTTPClient::SlotDownloadProgress(qint64 bytesReceived, qint64 bytesTotal) {
    if (bytesTotal > 0)
        Q_EMIT SignalDownloadProgressReceived(static_cast<int>(bytesReceived * kPercent / bytesTotal));
}

void MHTTPClient::SlotUploadProgress(qint64 bytesSent, qint64 bytesTotal) {
    if (bytesTotal > 0)
        Q_EMIT SignalUploadProgressReceived(static_cast<int>(bytesSent * kPercent / bytesTotal));
}

void MHTTPClient::SlotCancelPreviousRequest() {
    if (m_lpReply != nullptr)
        Silence(m_lpReply);
    m_lpReply = nullptr;
    m_send = nullptr;
}

void MHTTPClient::SlotSetAuthentication(const QString& _sUser, const QString& _sPassword) {
    m_sUser = _sUser;
    m_sPassword = _sPassword;
}

void MHTTPClient::SlotAuthRequired(QNetworkReply* _lpNR, QAuthenticator* _lpAuth) {
    if (_lpNR == nullptr || _lpNR->isFinished() || _lpAuth == nullptr || _lpNR->property(kAnswered).toBool())
        return;
    _lpNR->setProperty(kAnswered, true);
    _lpAuth->setUser(m_sUser);
    _lpAuth->setPassword(m_sPassword);
}

void MHTTPClient::SlotProxyAuthRequired(const QNetworkProxy& /*Proxy*/, QAuthenticator* _lpAuth) {
    if (_lpAuth == nullptr || m_proxyAnswersLeft == 0)
        return;
    --m_proxyAnswersLeft;
    _lpAuth->setUser(m_sUser);
    _lpAuth->setPassword(m_sPassword);
}

/// The end of the current request or of an earlier one; either way what the current one has got is what is reported.
void MHTTPClient::SlotReadyRead() {
    AnswerWantOfMemory([this] { TakeAnswer(); });
}

void MHTTPClient::TakeAnswer() {
    if (m_lpReply == nullptr)
        return;
    QByteArray body = m_lpReply->readAll();
    const int status = m_lpReply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (m_lpDownload != nullptr) {
        if (!m_lpDownload->Write(body) || !FinishDownload()) {
            Fail(kHttpFileRefused, status);
            return;
        }
        body.clear();
        m_lpDownload.reset();
    }
    const QByteArray headers = HeaderListOf(*m_lpReply);
    ReleaseReply();
    Q_EMIT SignalResponseReceived(body, headers, status, kHttpNoError);
}

void MHTTPClient::SlotError(QNetworkReply::NetworkError error) {
    if (!MaySendAgain(error))
        return FailFor(error);
    SlotNAMReplyFinished(m_lpReply);
    AnswerWantOfMemory([this] { Send(); });
}

/// The network library keeps the certificates of each encrypted connection that it has refused, some kilobytes, as long as it
/// remembers the server: with a driver that asks once a second that would be hundreds of megabytes a day.
void MHTTPClient::FailFor(QNetworkReply::NetworkError error) {
    Fail(HttpErrorNumber(error));
    const QList<QNetworkReply*> replies = findChildren<QNetworkReply*>();
    const auto goesOn = [failed = sender()](const QNetworkReply* reply) {
        return reply != failed && !reply->isFinished();
    };
    if (error == QNetworkReply::SslHandshakeFailedError && std::none_of(replies.begin(), replies.end(), goesOn))
        clearConnectionCache(); // it would break off what goes on
}

/// A server may end a connection without a word once it has answered. The network library sends a request that it had
/// just put there on another connection; but when the end came before its first byte was written, its SOCKS client
/// gives this error instead.
bool MHTTPClient::MaySendAgain(QNetworkReply::NetworkError error) const {
    return error == QNetworkReply::UnknownNetworkError && m_lpReply != nullptr && sender() == m_lpReply &&
           m_sendsLeft > 0 && !m_lpReply->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid();
}

void MHTTPClient::SlotTimeOut() {
    Fail(kHttpTimedOut, 0, QByteArrayLiteral("TimeOut"));
}

void MHTTPClient::SlotBodyGrows() {
    auto* growing = qobject_cast<QNetworkReply*>(sender());
    if (growing == nullptr)
        return;
    if (growing == m_lpReply && m_lpDownload != nullptr) {
        const int status = growing->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        bool isWritten = false;
        RunWithinMemory([&] { isWritten = m_lpDownload->Write(growing->readAll()); });
        if (!isWritten)
            RefuseBody(growing, kHttpFileRefused, status);
    } else if (growing->bytesAvailable() > m_maxBytes) {
        RefuseBody(growing, kHttpUnknownContentError, 0);
    }
}

void MHTTPClient::RefuseBody(QNetworkReply* reply, int error, int status) {
    if (reply == m_lpReply)
        Fail(error, status);
    Silence(reply);
    reply->abort();
}

/// By the letter a file that is there counts, new or not; the log tells which.
bool MHTTPClient::FinishDownload() {
    const DownloadFile::End end = m_lpDownload->Finish();
    if (end == DownloadFile::End::KeptOld)
        Q_EMIT SignalWarning(
            QStringLiteral("download: %1 cannot be written to and stays as it was").arg(m_lpDownload->GetTarget()));
    return end != DownloadFile::End::Refused;
}

/// A connection has one request at a time, and which one is not told. So it is the headers that have no end only while
/// no request is past its own.
void MHTTPClient::SlotServerSpoke(HttpPassage* passage, qint64 unanswered) {
    if (unanswered <= kMaxHttpHeaderBytes || AnyBodyIsComing())
        return;
    if (m_lpReply != nullptr)
        Fail(kHttpUnknownContentError);
    passage->Cut();
}

bool MHTTPClient::AnyBodyIsComing() const {
    const QList<QNetworkReply*> replies = findChildren<QNetworkReply*>();
    return std::any_of(replies.begin(), replies.end(), [](const QNetworkReply* reply) {
        return !reply->isFinished() && reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid();
    });
}

/// Forgets the download and the current request, then answers.
void MHTTPClient::Fail(int error, int status, const QByteArray& body) {
    m_lpDownload.reset();
    ReleaseReply();
    Q_EMIT SignalResponseReceived(body, QByteArray(), status, error);
}

void MHTTPClient::ReleaseReply() {
    if (m_lpReply != nullptr)
        SlotNAMReplyFinished(m_lpReply);
    m_lpReply = nullptr;
    m_send = nullptr;
}

void MHTTPClient::SlotNAMReplyFinished(QNetworkReply* reply) {
    Silence(reply);
    reply->deleteLater();
}

/// Earlier requests, which nobody reads any more, go when they end.
void MHTTPClient::SlotDestroyNAMReply(QNetworkReply* reply) {
    if (reply != m_lpReply)
        reply->deleteLater();
}

/// Only what Begin has connected: the manager listens to its replies itself.
void MHTTPClient::Silence(QNetworkReply* reply) {
    disconnect(this, &QNetworkAccessManager::authenticationRequired, this, &MHTTPClient::SlotAuthRequired);
    disconnect(this, &QNetworkAccessManager::proxyAuthenticationRequired, this, &MHTTPClient::SlotProxyAuthRequired);
    disconnect(reply, &QNetworkReply::finished, this, &MHTTPClient::SlotReadyRead);
    disconnect(reply, &QNetworkReply::errorOccurred, this, &MHTTPClient::SlotError);
    disconnect(reply, &QNetworkReply::downloadProgress, this, &MHTTPClient::SlotDownloadProgress);
    disconnect(reply, &QNetworkReply::uploadProgress, this, &MHTTPClient::SlotUploadProgress);
    disconnect(reply, &QNetworkReply::readyRead, this, &MHTTPClient::SlotBodyGrows);
}
