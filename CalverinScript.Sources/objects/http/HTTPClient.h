#pragma once

#include <condition_variable>
#include <mutex>

#include <QByteArray>
#include <QNetworkRequest>
#include <QObject>
#include <QScriptable>
#include <QScriptValue>
#include <QString>

#include "DropLog.h"
#include "MScriptCommonEvent.h"
#include "ScriptBacklog.h"

class IScriptObjectOwner;
class MThreadHTTPClient;
class QScriptEngine;

/// What `QCalverin.CreateHTTPClient()` gives a script: five verbs that return at once, events that tell how they went, and text
/// functions for header lists. It has a thread of its own, on which the network work is done and the events are raised.
///
/// | event               | values |
/// |---------------------|--------|
/// | "response"          | HTTPResponse, SocketErrorInfo with a number of HttpErrors.h |
/// | "download_progress" | int, percent |
/// | "upload_progress"   | int, percent |
///
/// Progress that finds more waiting for the script than ScriptBacklog allows is dropped, and the log says how much; answers never are.
/// Texts of a request become Latin-1. What one request knows of the other is told at MHTTPClient.
class HTTPClient : public QObject, public QScriptable, public MScriptCommonEvent {
    Q_OBJECT

public:
    /// Starts the thread and waits until it can take requests, 10 s at most; a client whose thread did not come up drops all
    /// requests. @param owner borrowed for the object's life; null makes a client without thread, for scripts that are only
    /// looked at.   [script]
    explicit HTTPClient(IScriptObjectOwner* owner);
    /// Ends the thread, within about a second whatever its servers do. Requests under way end without event.   [script]
    ~HTTPClient() override;

    /// The script's view of this object, which it does not own.   [script]
    QScriptValue ToScript(QScriptEngine& engine);

    // What scripts call. Names of parameters and defaults are the script interface. All on the script thread.

    /// The value of the first header of that name; "" when there is none.
    Q_INVOKABLE QString getHeaderValue(const QString& HeaderList, const QString& HeaderName) const;
    /// @param HeaderIndex from 1. @return "" for a line that is not there or has no ":".
    Q_INVOKABLE QString getHeaderNameByIndex(const QString& HeaderList, int HeaderIndex) const;
    Q_INVOKABLE QString getHeaderValueByIndex(const QString& HeaderList, int HeaderIndex) const;
    /// The number of lines, 1 for an empty list.
    Q_INVOKABLE int getHeaderCount(const QString& HeaderList) const;
    /// The list with one more header.
    Q_INVOKABLE QString addHeader(const QString& HeaderList, const QString& HeaderName,
                                  const QString& HeaderValue) const;
    /// Sets the function that hears of an event; it stays until another takes its place.
    Q_INVOKABLE void on(const QString& sEvent, const QScriptValue& svListener);

    /// @param sRequestItems `name=value` pairs joined with "&", for the query of the address.
    /// @param iItemsEncoding 1 when the pairs are percent-encoded already.
    /// @param sUser what this and every later challenge of a server is answered with.
    Q_INVOKABLE void get(const QString& sRequest, const QString& sRequestHeaders = QString(),
                         const QString& sRequestItems = QString(), int iItemsEncoding = 0,
                         const QString& sUser = QString(), const QString& sPassword = QString());
    /// @param params the body: a Buffer or a text. Anything else sends nothing.
    Q_INVOKABLE void post(const QString& sRequest, const QString& sRequestHeaders = QString(),
                          const QScriptValue& params = QScriptValue(QString()),
                          const QString& sRequestItems = QString(), int iItemsEncoding = 0,
                          const QString& sUser = QString(), const QString& sPassword = QString());
    Q_INVOKABLE void put(const QString& sRequest, const QString& sRequestHeaders = QString(),
                         const QScriptValue& params = QScriptValue(QString()), const QString& sRequestItems = QString(),
                         int iItemsEncoding = 0, const QString& sUser = QString(),
                         const QString& sPassword = QString());
    /// A get whose body goes to a file. @param sPath the file, or a folder that exists.
    Q_INVOKABLE void downloadFile(const QString& sRequest, const QString& sRequestHeaders = QString(),
                                  const QString& sPath = QString(), const QString& sRequestItems = QString(),
                                  int iItemsEncoding = 0, const QString& sUser = QString(),
                                  const QString& sPassword = QString());
    Q_INVOKABLE void deleteResource(const QString& sRequest, const QString& sRequestHeaders = QString(),
                                    const QString& sRequestItems = QString(), int iItemsEncoding = 0,
                                    const QString& sUser = QString(), const QString& sPassword = QString());

private Q_SLOTS:
    // Direct connections of the thread's signals   [http]
    void SlotResponseReceived(const QByteArray& bysResponse, const QByteArray& bysResponseHeaders, int iHTTPStatusCode,
                              int iError);
    void SlotDownloadProgressReceived(int iProgress);
    void SlotUploadProgressReceived(int iProgress);
    void SlotWarning(const QString& text);
    void SlotThreadReady();

private:
    using SendBody = void (MThreadHTTPClient::*)(const QNetworkRequest& request, const QByteArray& body);

    void ConnectThread();
    void StartThread();
    bool HasWorker();
    void SetAuthentication(const QString& user, const QString& password);
    void Send(SendBody verb, const QNetworkRequest& request, const QScriptValue& body);
    void RaiseResponse(const QByteArray& bysResponse, const QByteArray& bysResponseHeaders, int iHTTPStatusCode,
                       int iError);
    void RaiseProgress(const QString& event, int percent);

    IScriptObjectOwner* const m_owner;
    MThreadHTTPClient* const m_lpThread; ///< owned; goes by MThreadHTTPClient::Retire
    bool m_ready = false;                ///< under m_mutex: the worker is there
    std::condition_variable m_wakeUp;    ///< m_ready was set
    std::mutex m_mutex;
    DropLog m_drops;
    ScriptBacklog m_backlog; ///< gone before all that it tells
};
