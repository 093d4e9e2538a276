#include "LineSettingsText.h"

#include <QRegularExpression>

namespace stagehost {

QString ReadLineSettings(const QString& text, SerialSettings& settings) {
    static const QRegularExpression form(QStringLiteral("^(\\d{1,7})(?:,([5-8])([noe])([12]))?(,rts)?$"),
                                         QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch() || match.captured(1).toUInt() == 0)
        return QStringLiteral("\"%1\" is no BAUD[,BITS][,rts], such as 9600,8n1").arg(text);
    settings.Set(SerialSetting::BaudRate, match.captured(1).toUInt());
    if (!match.captured(2).isEmpty()) {
        settings.Set(SerialSetting::DataSize, match.captured(2).toUInt());
        settings.Set(SerialSetting::Parity,
                     static_cast<std::uint32_t>(QStringLiteral("noe").indexOf(match.captured(3).toLower())));
        settings.Set(SerialSetting::StopBits, match.captured(4).toUInt());
    }
    if (!match.captured(5).isEmpty()) {
        settings.Set(SerialSetting::RtsHandshake, 1);
        settings.Set(SerialSetting::CtsOutFlow, 1);
    }
    return {};
}

} // namespace stagehost
