#pragma once

#include <QSerialPort>

#include "SerialLine.h"
#include "SerialSettings.h"

namespace stagehost {

/// The name for people, such as "baud rate".
const char* NameOf(SerialSetting setting);

/// Why no port of this system can do that, or null. Handshakes with Data Terminal Ready and Data Set
/// Ready have no driver.
const char* WhyImpossible(SerialSetting setting, std::uint32_t value);

/// Brings one setting onto an open port. @return whether the port took it; what it really does is for the line to tell.
bool ApplySetting(QSerialPort& port, const SerialSettings& wanted, SerialSetting setting);

/// Whether the line does what a setting says.
bool IsInForce(const LineSettings& line, const SerialSettings& wanted, SerialSetting setting);

} // namespace stagehost
