#include "SettingTable.h"

namespace stagehost {

namespace {

bool HasFlow(const SerialSettings& wanted) {
    return wanted.Or(SerialSetting::RtsHandshake, 0) != 0 || wanted.Or(SerialSetting::CtsOutFlow, 0) != 0;
}

bool ApplyBaudRate(QSerialPort& port, const SerialSettings&, std::uint32_t value) {
    return port.setBaudRate(static_cast<qint32>(value));
}

bool ApplyParity(QSerialPort& port, const SerialSettings&, std::uint32_t value) {
    constexpr QSerialPort::Parity kParities[] = {QSerialPort::NoParity, QSerialPort::OddParity,
                                                 QSerialPort::EvenParity};
    return value < 3 && port.setParity(kParities[value]);
}

bool ApplyDataSize(QSerialPort& port, const SerialSettings&, std::uint32_t value) {
    return value >= 5 && value <= 8 && port.setDataBits(static_cast<QSerialPort::DataBits>(value));
}

bool ApplyStopBits(QSerialPort& port, const SerialSettings&, std::uint32_t value) {
    return (value == 1 || value == 2) && port.setStopBits(value == 1 ? QSerialPort::OneStop : QSerialPort::TwoStop);
}

bool ApplyBreak(QSerialPort& port, const SerialSettings&, std::uint32_t value) {
    return port.setBreakEnabled(value != 0);
}

bool ApplyDtr(QSerialPort& port, const SerialSettings&, std::uint32_t value) {
    return port.setDataTerminalReady(value != 0);
}

bool ApplyRts(QSerialPort& port, const SerialSettings&, std::uint32_t value) {
    return port.setRequestToSend(value != 0);
}

/// Both directions are one switch of the driver.
bool ApplyFlow(QSerialPort& port, const SerialSettings& wanted, std::uint32_t) {
    return port.setFlowControl(HasFlow(wanted) ? QSerialPort::HardwareControl : QSerialPort::NoFlowControl);
}

/// Nothing to do: no driver does it, and it is refused before.
bool ApplyNothing(QSerialPort&, const SerialSettings&, std::uint32_t value) {
    return value == 0;
}

bool HoldsBaudRate(const LineSettings& line, const SerialSettings& wanted) {
    return line.baudRate == 0 || line.baudRate == wanted.Or(SerialSetting::BaudRate, line.baudRate);
}

bool HoldsParity(const LineSettings& line, const SerialSettings& wanted) {
    return line.parity == wanted.Or(SerialSetting::Parity, line.parity);
}

bool HoldsDataSize(const LineSettings& line, const SerialSettings& wanted) {
    return line.dataSize == wanted.Or(SerialSetting::DataSize, line.dataSize);
}

bool HoldsStopBits(const LineSettings& line, const SerialSettings& wanted) {
    return line.stopBits == wanted.Or(SerialSetting::StopBits, line.stopBits);
}

bool HoldsFlow(const LineSettings& line, const SerialSettings& wanted) {
    return line.hardwareFlow == HasFlow(wanted);
}

bool HoldsAlways(const LineSettings&, const SerialSettings&) {
    return true;
}

constexpr const char* kNoDtrFlow = "no driver of this system holds data up by Data Terminal Ready or Data Set Ready";

struct SettingRow {
    SerialSetting setting;
    const char* name;
    bool (*apply)(QSerialPort& port, const SerialSettings& wanted, std::uint32_t value);
    bool (*holds)(const LineSettings& line, const SerialSettings& wanted);
    const char* impossible; ///< why it cannot be switched on; null when it can
};

constexpr SettingRow kSettings[] = {
    {SerialSetting::BaudRate, "baud rate", &ApplyBaudRate, &HoldsBaudRate, nullptr},
    {SerialSetting::Parity, "parity", &ApplyParity, &HoldsParity, nullptr},
    {SerialSetting::DataSize, "data size", &ApplyDataSize, &HoldsDataSize, nullptr},
    {SerialSetting::StopBits, "stop bits", &ApplyStopBits, &HoldsStopBits, nullptr},
    {SerialSetting::Break, "break", &ApplyBreak, &HoldsAlways, nullptr},
    {SerialSetting::Dtr, "DTR", &ApplyDtr, &HoldsAlways, nullptr},
    {SerialSetting::Rts, "RTS", &ApplyRts, &HoldsAlways, nullptr},
    {SerialSetting::DtrControl, "DTR control", &ApplyDtr, &HoldsAlways, nullptr},
    {SerialSetting::RtsControl, "RTS control", &ApplyRts, &HoldsAlways, nullptr},
    {SerialSetting::DtrHandshake, "DTR handshake", &ApplyNothing, &HoldsAlways, kNoDtrFlow},
    {SerialSetting::DsrOutFlow, "DSR flow control", &ApplyNothing, &HoldsAlways, kNoDtrFlow},
    {SerialSetting::RtsHandshake, "RTS handshake", &ApplyFlow, &HoldsFlow, nullptr},
    {SerialSetting::CtsOutFlow, "CTS flow control", &ApplyFlow, &HoldsFlow, nullptr},
};

constexpr bool SettingsInEnumOrder() {
    std::size_t index = 0;
    for (const auto& row : kSettings) {
        if (static_cast<std::size_t>(row.setting) != index++)
            return false;
    }
    return index == kSerialSettingCount;
}
static_assert(SettingsInEnumOrder(), "the table is indexed by the setting");

const SettingRow& RowOf(SerialSetting setting) {
    return kSettings[static_cast<std::size_t>(setting)];
}

} // namespace

const char* NameOf(SerialSetting setting) {
    return RowOf(setting).name;
}

const char* WhyImpossible(SerialSetting setting, std::uint32_t value) {
    return value == 0 ? nullptr : RowOf(setting).impossible;
}

bool ApplySetting(QSerialPort& port, const SerialSettings& wanted, SerialSetting setting) {
    return RowOf(setting).apply(port, wanted, wanted.Or(setting, 0));
}

bool IsInForce(const LineSettings& line, const SerialSettings& wanted, SerialSetting setting) {
    return RowOf(setting).holds(line, wanted);
}

} // namespace stagehost
