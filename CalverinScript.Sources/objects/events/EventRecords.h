#pragma once

#include <QByteArray>
#include <QMetaType>
#include <QString>

/// Where a datagram came from, as it rides in a QVariant to a listener.
class IPInfo {
public:
    IPInfo() = default;
    IPInfo(int thePort, const QString& theAddress)
        : port(thePort)
        , address(theAddress) {}
    int GetPort() const { return port; }
    const QString& GetAddress() const { return address; }

private:
    int port = 0;
    QString address;
};
Q_DECLARE_METATYPE(IPInfo)

/// A network error, as it rides in a QVariant to a listener.
class SocketErrorInfo {
public:
    SocketErrorInfo() = default;
    SocketErrorInfo(int code, const QString& text)
        : errorCode(code)
        , errorText(text) {}
    int GetErrorCode() const { return errorCode; }
    const QString& GetErrorText() const { return errorText; }

private:
    int errorCode = 0;
    QString errorText;
};
Q_DECLARE_METATYPE(SocketErrorInfo)

/// The answer to an HTTP request, as it rides in a QVariant to a listener.
class HTTPResponse {
public:
    HTTPResponse() = default;
    HTTPResponse(const QByteArray& theData, int theStatusCode, const QString& theHeaders)
        : data(theData)
        , statusCode(theStatusCode)
        , headers(theHeaders) {}
    const QByteArray& GetData() const { return data; }
    int GetStatusCode() const { return statusCode; }
    const QString& GetHeaders() const { return headers; }

private:
    QByteArray data;
    int statusCode = 0;
    QString headers;
};
Q_DECLARE_METATYPE(HTTPResponse)
