#include "FrameText.h"

#include "JsonNode.h"

namespace stagehost {

namespace {

constexpr int kLongestShown = 80; // characters

QString PlainText(QChar character) {
    if (character == QLatin1Char('\r'))
        return QStringLiteral("\\r");
    if (character == QLatin1Char('\n'))
        return QStringLiteral("\\n");
    if (character.unicode() >= 0x20 && character.unicode() < 0x7F)
        return character;
    return QStringLiteral("\\x%1").arg(uint(character.unicode()), 2, 16, QLatin1Char('0'));
}

} // namespace

QString FrameForPeople(const QString& frame) {
    QString text;
    for (const QChar character : frame.left(kLongestShown))
        text += PlainText(character);
    return Quoted(text + (frame.size() > kLongestShown ? QStringLiteral("...") : QString()));
}

} // namespace stagehost
