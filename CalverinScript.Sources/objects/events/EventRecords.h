#pragma once

#include <QByteArray>
#include <QMetaType>
#include <QSharedData>
#include <QString>

/// Where a datagram came from, as it rides in a QVariant to a listener. Copies share what they hold and, being no
/// larger than a pointer, stand in the variant itself: a flood of datagrams has one sender mostly.
class IPInfo {
public:
    IPInfo() = default;
    IPInfo(int port, const QString& address)
        : data(new Data(port, address)) {}
    int GetPort() const { return data ? data->port : 0; }
    QString GetAddress() const { return data ? data->address : QString(); }

private:
    struct Data : QSharedData {
        Data(int thePort, const QString& theAddress)
            : port(thePort)
            , address(theAddress) {}
        const int port;
        const QString address;
    };
    QExplicitlySharedDataPointer<Data> data; ///< null without a sender
};
Q_DECLARE_TYPEINFO(IPInfo, Q_MOVABLE_TYPE);
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
