#include "HttpRequest.h"

#include <algorithm>
#include <iterator>

#include <QUrl>

#include "HeaderList.h"
#include "HostText.h"
#include "MStringParser.h"

namespace {

/// What RFC 3986 allows in a query, without the two characters that part its items.
constexpr char kPlainInItems[] = "!$'()*+,;:@/?";
constexpr char kItemDelimiters[] = "=&";
constexpr char kSchemes[][6] = {"http", "https"};

QByteArray EncodePlain(const QByteArray& text) {
    return QUrl::toPercentEncoding(FromHostText(text.constData()), kPlainInItems, kItemDelimiters);
}

/// Encoded already: only what cannot stand in an address at all is encoded.
QByteArray EncodeRest(const QByteArray& bytes) {
    QByteArray result;
    for (const char c : bytes) {
        if (c > ' ' && c < '\x7F')
            result += c;
        else
            result += '%' + QByteArray(1, c).toHex().toUpper();
    }
    return result;
}

QByteArray EncodeItem(const std::string& item, int encoding) {
    const std::size_t equals = item.find('=');
    if (equals == std::string::npos)
        return {};
    const QByteArray name = QByteArray::fromStdString(item.substr(0, equals));
    const QByteArray value = QByteArray::fromStdString(item.substr(equals + 1));
    const auto encode = encoding == kItemsAreEncoded ? &EncodeRest : &EncodePlain;
    return encode(name) + '=' + encode(value);
}

void AddItems(QUrl& url, const QString& items, int encoding) {
    MStringParser parser(ToHostText(items).constData());
    const MStringParser::Parts* parts = parser.Split('&');
    if (parts == nullptr)
        return;
    QByteArray query = url.query(QUrl::FullyEncoded).toLatin1();
    for (const std::string& part : *parts) {
        const QByteArray item = EncodeItem(part, encoding);
        if (!item.isEmpty())
            query += (query.isEmpty() ? "" : "&") + item;
    }
    if (!query.isEmpty())
        url.setQuery(QString::fromLatin1(query));
}

void AddHeaders(QNetworkRequest& request, const QString& headers) {
    for (const QString& line : headers.split(QStringLiteral("\r\n"))) {
        const int colon = line.indexOf(QLatin1Char(':'));
        if (colon >= 0)
            request.setRawHeader(ToHostText(line.left(colon)), ToHostText(line.mid(colon + 1)));
    }
}

} // namespace

QNetworkRequest MakeHttpRequest(const QString& address, const QString& headers, const QString& items,
                                int itemsEncoding) {
    QUrl url(FromHostText(ToHostText(address).constData()));
    if (!items.isEmpty())
        AddItems(url, items, itemsEncoding);
    QNetworkRequest request(url);
    AddHeaders(request, headers);
    return request;
}

bool IsHttpAddress(const QUrl& url) {
    const QString scheme = url.scheme();
    return std::any_of(std::begin(kSchemes), std::end(kSchemes),
                       [&](const char* known) { return scheme == QLatin1String(known); });
}
