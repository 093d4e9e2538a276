#pragma once

#include <QString>

#include "SerialSettings.h"

namespace stagehost {

/// Reads the settings of a serial line as they are usually written: "9600", "19200,8n1", "115200,7e2,rts", where rts
/// has Request To Send and Clear To Send hold data up.
/// @return empty, or what is wrong.   [any]
QString ReadLineSettings(const QString& text, SerialSettings& settings);

} // namespace stagehost
