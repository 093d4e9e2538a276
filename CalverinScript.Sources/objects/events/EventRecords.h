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
        : m_data(new Data(port, address)) {}
    int GetPort() const { return m_data ? m_data->port : 0; }
    QString GetAddress() const { return m_data ? m_data->address : QString(); }

private:
    struct Data : QSharedData {
        Data(int thePort, const QString& theAddress)
            : port(thePort)
            , address(theAddress) {}
        const int port;
        const QString address;
    };
    QExplicitlySharedDataPointer<Data> m_data; ///< null without a sender
};
Q_DECLARE_TYPEINFO(IPInfo, Q_MOVABLE_TYPE);
Q_DECLARE_METATYPE(IPInfo)

/// A network error, as it rides in a QVariant to a listener.
class SocketErrorInfo {
public:
    SocketErrorInfo() = default;
    SocketErrorInfo(int code, const QString& text)
        : m_errorCode(code)
        , m_errorText(text) {}
    int GetErrorCode() const { return m_errorCode; }
    const QString& GetErrorText() const { return m_errorText; }

private:
    int m_errorCode = 0;
    QString m_errorText;
};
Q_DECLARE_METATYPE(SocketErrorInfo)

/// The answer to an HTTP request, as it rides in a QVariant to a listener.
class HTTPResponse {
public:
    HTTPResponse() = default;
    HTTPResponse(const QByteArray& theData, int theStatusCode, const QString& theHeaders)
        : m_data(theData)
        , m_statusCode(theStatusCode)
        , m_headers(theHeaders) {}
    const QByteArray& GetData() const { return m_data; }
    int GetStatusCode() const { return m_statusCode; }
    const QString& GetHeaders() const { return m_headers; }

private:
    QByteArray m_data;
    int m_statusCode = 0;
    QString m_headers;
};
Q_DECLARE_METATYPE(HTTPResponse)
