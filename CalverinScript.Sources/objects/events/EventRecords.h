#pragma once

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
