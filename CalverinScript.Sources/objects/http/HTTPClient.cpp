#include "HTTPClient.h"

#include <chrono>

#include "BufferConversion.h"
#include "Descriptors.h"
#include "EventRecords.h"
#include "HeaderList.h"
#include "HostText.h"
#include "HttpErrors.h"
#include "HttpRequest.h"
#include "IScriptObjectOwner.h"
#include "MScriptParamList.h"
#include "MThreadHTTPClient.h"
#include "RunWithinMemory.h"
#include "ScriptView.h"

namespace {

constexpr std::chrono::milliseconds kThreadReadyTime(10000);
constexpr int kDescriptorsOfClient = 8; ///< of the event loops behind a client, with some to spare

/// A text of the script as it goes out.
QString Plain(const QString& text) {
    return FromHostText(ToHostText(text).constData());
}

} // namespace

HTTPClient::HTTPClient(IScriptObjectOwner* objectOwner)
    : m_owner(objectOwner)
    , m_lpThread(new MThreadHTTPClient)
    , m_drops(TellOfSlowScript(objectOwner, [] { return QStringLiteral("HTTP progress events"); }))
    , m_backlog([this](bool full) {
        if (!full)
            m_drops.TellRest();
    }) {
    m_type = ScriptObjectType::HttpClient;
    qRegisterMetaType<QNetworkRequest>("QNetworkRequest");
    ConnectThread();
    if (m_owner != nullptr && CanOpenDescriptors(kDescriptorsOfClient))
        StartThread();
}

HTTPClient::~HTTPClient() {
    RunWithinMemory([this] { MThreadHTTPClient::Retire(m_lpThread); });
    RunWithinMemory([this] { m_drops.TellRest(); });
}

void HTTPClient::ConnectThread() {
    connect(m_lpThread, &MThreadHTTPClient::SignalResponseReceived, this, &HTTPClient::SlotResponseReceived,
            Qt::DirectConnection);
    connect(m_lpThread, &MThreadHTTPClient::SignalDownloadProgressReceived, this,
            &HTTPClient::SlotDownloadProgressReceived, Qt::DirectConnection);
    connect(m_lpThread, &MThreadHTTPClient::SignalUploadProgressReceived, this, &HTTPClient::SlotUploadProgressReceived,
            Qt::DirectConnection);
    connect(m_lpThread, &MThreadHTTPClient::SignalWarning, this, &HTTPClient::SlotWarning, Qt::DirectConnection);
}

void HTTPClient::StartThread() {
    connect(m_lpThread, &MThreadHTTPClient::SignalInitialized, this, &HTTPClient::SlotThreadReady,
            Qt::DirectConnection);
    m_lpThread->start(QThread::InheritPriority);
    if (m_lpThread->isRunning() || m_lpThread->isFinished()) { // otherwise the system has no thread left
        std::unique_lock<std::mutex> guard(m_mutex);
        m_wakeUp.wait_for(guard, kThreadReadyTime, [this] { return m_ready; });
    }
    disconnect(m_lpThread, &MThreadHTTPClient::SignalInitialized, this, &HTTPClient::SlotThreadReady);
}

QScriptValue HTTPClient::ToScript(QScriptEngine& engine) {
    return WrapOwnedByHost(engine, this);
}

QString HTTPClient::getHeaderValue(const QString& HeaderList, const QString& HeaderName) const {
    return HeaderValue(HeaderList, HeaderName);
}

QString HTTPClient::getHeaderNameByIndex(const QString& HeaderList, int HeaderIndex) const {
    return HeaderNameAt(HeaderList, HeaderIndex);
}

QString HTTPClient::getHeaderValueByIndex(const QString& HeaderList, int HeaderIndex) const {
    return HeaderValueAt(HeaderList, HeaderIndex);
}

int HTTPClient::getHeaderCount(const QString& HeaderList) const {
    return HeaderCount(HeaderList);
}

QString HTTPClient::addHeader(const QString& HeaderList, const QString& HeaderName, const QString& HeaderValue) const {
    return WithHeader(HeaderList, HeaderName, HeaderValue);
}

void HTTPClient::on(const QString& sEvent, const QScriptValue& svListener) {
    SetListener(sEvent, svListener);
}

void HTTPClient::get(const QString& sRequest, const QString& sRequestHeaders, const QString& sRequestItems,
                     int iItemsEncoding, const QString& sUser, const QString& sPassword) {
    if (!HasWorker())
        return;
    const QNetworkRequest request = MakeHttpRequest(sRequest, sRequestHeaders, sRequestItems, iItemsEncoding);
    SetAuthentication(sUser, sPassword);
    m_lpThread->SlotGet(request);
}

void HTTPClient::post(const QString& sRequest, const QString& sRequestHeaders, const QScriptValue& params,
                      const QString& sRequestItems, int iItemsEncoding, const QString& sUser,
                      const QString& sPassword) {
    if (!HasWorker())
        return;
    const QNetworkRequest request = MakeHttpRequest(sRequest, sRequestHeaders, sRequestItems, iItemsEncoding);
    SetAuthentication(sUser, sPassword);
    Send(&MThreadHTTPClient::SlotPost, request, params);
}

void HTTPClient::put(const QString& sRequest, const QString& sRequestHeaders, const QScriptValue& params,
                     const QString& sRequestItems, int iItemsEncoding, const QString& sUser, const QString& sPassword) {
    if (!HasWorker())
        return;
    const QNetworkRequest request = MakeHttpRequest(sRequest, sRequestHeaders, sRequestItems, iItemsEncoding);
    SetAuthentication(sUser, sPassword);
    Send(&MThreadHTTPClient::SlotPut, request, params);
}

void HTTPClient::downloadFile(const QString& sRequest, const QString& sRequestHeaders, const QString& sPath,
                              const QString& sRequestItems, int iItemsEncoding, const QString& sUser,
                              const QString& sPassword) {
    if (!HasWorker())
        return;
    const QNetworkRequest request = MakeHttpRequest(sRequest, sRequestHeaders, sRequestItems, iItemsEncoding);
    SetAuthentication(sUser, sPassword);
    m_lpThread->SlotDownloadFile(request, Plain(sPath));
}

void HTTPClient::deleteResource(const QString& sRequest, const QString& sRequestHeaders, const QString& sRequestItems,
                                int iItemsEncoding, const QString& sUser, const QString& sPassword) {
    if (!HasWorker())
        return;
    const QNetworkRequest request = MakeHttpRequest(sRequest, sRequestHeaders, sRequestItems, iItemsEncoding);
    SetAuthentication(sUser, sPassword);
    m_lpThread->SlotDelete(request);
}

/// A request for which the system has no thread or no descriptor is answered at once.
bool HTTPClient::HasWorker() {
    const bool hasWorker = m_lpThread->IsReady();
    if (!hasWorker && m_owner != nullptr)
        SlotResponseReceived(QByteArray(), QByteArray(), 0, kHttpUnknownNetworkError);
    return hasWorker;
}

void HTTPClient::SetAuthentication(const QString& user, const QString& password) {
    m_lpThread->SlotSetAuthentication(Plain(user), Plain(password));
}

void HTTPClient::Send(SendBody verb, const QNetworkRequest& request, const QScriptValue& body) {
    if (IsBuffer(body))
        (m_lpThread->*verb)(request, BytesFromBuffer(body));
    else if (body.isString())
        (m_lpThread->*verb)(request, ToHostText(body.toString()));
}

/// The network library calls it, and cannot carry a C++ exception. An answer without memory for it becomes one of a failure, which
/// needs less.
void HTTPClient::SlotResponseReceived(const QByteArray& bysResponse, const QByteArray& bysResponseHeaders,
                                      int iHTTPStatusCode, int iError) {
    const auto raise = [&] { RaiseResponse(bysResponse, bysResponseHeaders, iHTTPStatusCode, iError); };
    if (!RunWithinMemory(raise))
        RunWithinMemory([this] { RaiseResponse(QByteArray(), QByteArray(), 0, kHttpUnknownNetworkError); });
}

void HTTPClient::RaiseResponse(const QByteArray& bysResponse, const QByteArray& bysResponseHeaders, int iHTTPStatusCode,
                               int iError) {
    const HTTPResponse response(bysResponse, iHTTPStatusCode, QString::fromLatin1(bysResponseHeaders));
    const SocketErrorInfo error(iError, QString::fromLatin1(HttpErrorText(iError)));
    MScriptParamList values;
    values.Add(QVariant::fromValue(response));
    values.Add(QVariant::fromValue(error));
    values.Carry(m_backlog.Add({1, static_cast<std::uint64_t>(bysResponse.size())}));
    m_owner->PostScriptEvent(QStringLiteral("response"), &values, this);
}

void HTTPClient::SlotDownloadProgressReceived(int iProgress) {
    RaiseProgress(QStringLiteral("download_progress"), iProgress);
}

void HTTPClient::SlotUploadProgressReceived(int iProgress) {
    RaiseProgress(QStringLiteral("upload_progress"), iProgress);
}

void HTTPClient::RaiseProgress(const QString& event, int percent) {
    if (m_backlog.GetRoom().events == 0) {
        m_drops.Note(1);
        return;
    }
    const auto raise = [&] {
        MScriptParamList values;
        values.Add(percent);
        values.Carry(m_backlog.Add({1, 0}));
        m_owner->PostScriptEvent(event, &values, this);
    };
    if (!RunWithinMemory(raise))
        RunWithinMemory([this] { m_drops.Note(1); });
}

void HTTPClient::SlotWarning(const QString& text) {
    RunWithinMemory([&] { m_owner->TraceMessage(text, QStringLiteral("ALARM")); });
}

void HTTPClient::SlotThreadReady() {
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_ready = true;
    m_wakeUp.notify_all();
}
