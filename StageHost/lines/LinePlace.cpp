#include "LinePlace.h"

#include <QHostAddress>
#include <QHostInfo>

namespace stagehost {

namespace {

QString BetweenBrackets(const QString& host) {
    const bool has = host.startsWith(QLatin1Char('[')) && host.endsWith(QLatin1Char(']'));
    return has ? host.mid(1, host.size() - 2) : host;
}

} // namespace

QString NameOf(LineKind kind) {
    return QLatin1String(kLineKindNames[static_cast<int>(kind)]);
}

bool FindLineKind(const QString& name, LineKind& kind) {
    for (const LineKind one : {LineKind::Tcp, LineKind::Udp, LineKind::Serial}) {
        if (name == NameOf(one)) {
            kind = one;
            return true;
        }
    }
    return false;
}

QString ReadHostAndPort(const QString& text, const QString& host, LinePlace& place) {
    const int colon = text.lastIndexOf(QLatin1Char(':'));
    const QString typedHost = BetweenBrackets(text.left(qMax(colon, 0)));
    bool isPort = false;
    place.port = text.mid(colon + 1).toUShort(&isPort);
    if (!isPort || (typedHost.contains(QLatin1Char(':')) && QHostAddress(typedHost).isNull()))
        return QStringLiteral("\"%1\" is no HOST:PORT").arg(text);
    place.host = colon > 0 ? typedHost : host;
    return {};
}

QString TextOf(const LinePlace& place) {
    if (place.kind == LineKind::Serial)
        return place.path;
    const QString host = place.host.contains(QLatin1Char(':')) ? QStringLiteral("[%1]").arg(place.host) : place.host;
    return QStringLiteral("%1:%2").arg(host).arg(place.port);
}

QString AddressOf(const LinePlace& place, NetAddress& address) {
    address.port = place.port;
    QHostAddress number(place.host);
    if (number.isNull() && !place.host.isEmpty()) {
        const QHostInfo found = QHostInfo::fromName(place.host);
        if (found.addresses().isEmpty())
            return QStringLiteral("%1: %2").arg(place.host, found.errorString());
        number = found.addresses().first();
    }
    address.host = number.toString().toStdString();
    return {};
}

} // namespace stagehost
