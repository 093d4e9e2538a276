#include "Colors.h"

#include "Terminal.h"

namespace stagehost {

namespace {

/// Stands for "escape" in what this source makes, until it is written: a character of Unicode that no text has
/// (noncharacter U+FDD0). Every other one comes from somebody's text.
constexpr QChar kEscapeOfOurs(0xFDD0);

/// "Select graphic rendition" of ECMA-48, by Ink.
constexpr const char* kRenditions[] = {"1", "32", "31", "33", "2"};

bool HasColors(StandardChannel channel) {
    return IsTerminal(channel) && qgetenv("NO_COLOR").isEmpty() && qgetenv("TERM") != "dumb";
}

QString InColor(Ink ink, const QString& text) {
    return QStringLiteral("%1[%2m%3%1[0m")
        .arg(kEscapeOfOurs)
        .arg(QLatin1String(kRenditions[static_cast<int>(ink)]), text);
}

/// A character that a terminal takes for a part of a sequence (ECMA-48).
bool IsControl(ushort code) {
    return (code < 0x20 && code != '\n' && code != '\t') || (code >= 0x7F && code <= 0x9F);
}

} // namespace

QString ForChannel(bool isTerminal, const QString& text) {
    QString shown;
    for (const QChar c : text) {
        if (c == kEscapeOfOurs)
            shown += QChar(0x1B);
        else if (isTerminal && IsControl(c.unicode()))
            shown += QStringLiteral("\\x%1").arg(uint(c.unicode()), 2, 16, QLatin1Char('0'));
        else
            shown += c;
    }
    return shown;
}

QString OnOutput(Ink ink, const QString& text) {
    static const bool hasColors = HasColors(StandardChannel::Output);
    return hasColors && !text.isEmpty() ? InColor(ink, text) : text;
}

QString OnErrors(Ink ink, const QString& text) {
    static const bool hasColors = HasColors(StandardChannel::Error);
    return hasColors && !text.isEmpty() ? InColor(ink, text) : text;
}

} // namespace stagehost
