#include "Colors.h"

#include "Terminal.h"

namespace stagehost {

namespace {

/// "Select graphic rendition" of ECMA-48, by Ink.
constexpr const char* kRenditions[] = {"1", "32", "31", "33", "2"};

bool HasColors(StandardChannel channel) {
    return IsTerminal(channel) && qgetenv("NO_COLOR").isEmpty() && qgetenv("TERM") != "dumb";
}

QString InColor(Ink ink, const QString& text) {
    return QStringLiteral("\033[%1m%2\033[0m").arg(QLatin1String(kRenditions[static_cast<int>(ink)]), text);
}

} // namespace

QString OnOutput(Ink ink, const QString& text) {
    static const bool hasColors = HasColors(StandardChannel::Output);
    return hasColors && !text.isEmpty() ? InColor(ink, text) : text;
}

QString OnErrors(Ink ink, const QString& text) {
    static const bool hasColors = HasColors(StandardChannel::Error);
    return hasColors && !text.isEmpty() ? InColor(ink, text) : text;
}

} // namespace stagehost
