#include "HeaderList.h"

#include <QVector>

namespace {

const QString& LineEnd() {
    static const QString end = QStringLiteral("\r\n");
    return end;
}

struct HeaderLine {
    QStringRef name;
    QStringRef value;
};

/// A line without ":" has neither name nor value.
HeaderLine SplitLine(const QStringRef& line) {
    const int colon = line.indexOf(QLatin1Char(':'));
    if (colon < 0)
        return {};
    return {line.left(colon), line.mid(colon + 1)};
}

HeaderLine LineAt(const QString& list, int index) {
    return index < 1 ? HeaderLine() : SplitLine(list.splitRef(LineEnd()).value(index - 1));
}

} // namespace

QString HeaderValue(const QString& list, const QString& name) {
    for (const QStringRef& line : list.splitRef(LineEnd())) {
        const HeaderLine header = SplitLine(line);
        if (header.value.string() != nullptr && header.name == name)
            return header.value.toString();
    }
    return {};
}

QString HeaderNameAt(const QString& list, int index) {
    return LineAt(list, index).name.toString();
}

QString HeaderValueAt(const QString& list, int index) {
    return LineAt(list, index).value.toString();
}

int HeaderCount(const QString& list) {
    return list.count(LineEnd()) + 1;
}

QString WithHeader(const QString& list, const QString& name, const QString& value) {
    return (list.isEmpty() ? list : list + LineEnd()) + name + QLatin1Char(':') + value;
}
