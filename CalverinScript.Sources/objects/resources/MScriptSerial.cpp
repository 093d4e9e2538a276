#include "MScriptSerial.h"

#include <algorithm>
#include <chrono>
#include <iterator>

#include "BufferConversion.h"
#include "HostText.h"
#include "IScriptObjectOwner.h"
#include "MScriptParamList.h"
#include "ScriptWaits.h"

namespace {

constexpr int kBaudRates[] = {300, 600, 1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200};
constexpr int kStopBits[] = {1, 2};
constexpr int kDataSizes[] = {7, 8};

struct ParityName {
    const char* name;
    KXPSerialParity value;
};
constexpr ParityName kParities[] = {{"None", KXP_PARITY_NONE}, {"Even", KXP_PARITY_EVEN}, {"Odd", KXP_PARITY_ODD}};

struct SerialEventName {
    std::int32_t type;
    const char* name;
};
constexpr SerialEventName kSerialEvents[] = {{KXP_SERIAL_TX_EMPTY, "tx_empty"},
                                             {KXP_SERIAL_BREAK, "break"},
                                             {KXP_SERIAL_CTS, "cts"},
                                             {KXP_SERIAL_DSR, "dsr"},
                                             {KXP_SERIAL_ERROR, "error"}};

template <std::size_t Count>
bool IsOneOf(const int (&known)[Count], int value) {
    return std::find(std::begin(known), std::end(known), value) != std::end(known);
}

} // namespace

MScriptSerial::MScriptSerial(ISerialResource* port, IScriptObjectOwner* owner)
    : MScriptPort(ScriptObjectType::Serial, port, owner) {}

MScriptSerial::~MScriptSerial() {
    MScriptSerial::LetGo();
}

bool MScriptSerial::LetGo() {
    m_break.End();
    return MScriptPort::LetGo();
}

void MScriptSerial::Write(const QScriptValue& svData) {
    const bool isBuffer = IsBuffer(svData);
    if (!isBuffer && !svData.isString())
        return;
    const QByteArray bytes = isBuffer ? BytesFromBuffer(svData) : ToHostText(svData.toString());
    const char breakCharacter = static_cast<char>(m_breakCharacter);
    if (m_breakCharacter != kNoBreakCharacter && bytes.contains(breakCharacter))
        WriteWithBreaks(bytes, breakCharacter);
    else
        Send(bytes, 0, bytes.size());
}

/// Between two breaks that follow each other an empty piece is written; before one at the very beginning there is none.
void MScriptSerial::WriteWithBreaks(const QByteArray& bytes, char breakCharacter) {
    int begin = 0;
    for (int at = bytes.indexOf(breakCharacter); at >= 0; at = bytes.indexOf(breakCharacter, begin)) {
        if (at > 0 && !Send(bytes, begin, at - begin))
            return;
        if (!SendBreak())
            return;
        begin = at + 1;
    }
    if (begin < bytes.size())
        Send(bytes, begin, bytes.size() - begin);
}

bool MScriptSerial::Send(const QByteArray& bytes, int begin, int length) {
    const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.constData()) + begin;
    return UsePort([&](ISerialResource& port) { port.Write(data, static_cast<std::uint32_t>(length), 0); });
}

/// @return false when the wait was broken off: the line is let go, but what follows would be a frame without its break.
bool MScriptSerial::SendBreak() {
    m_break.Begin();
    const ScriptWait wait(Owner() != nullptr ? Owner()->GetWaits() : nullptr, [this] { m_break.End(); });
    if (!wait.IsAllowed() || !UsePort([](ISerialResource& port) { port.SetBreak(true); }))
        return false;
    const bool inFull = m_break.Wait(std::chrono::milliseconds(m_breakTimeMs));
    return UsePort([](ISerialResource& port) { port.SetBreak(false); }) && inFull;
}

void MScriptSerial::Open(const QScriptValue& svOpenListener) {
    OpenPort(svOpenListener);
}

void MScriptSerial::Close(const QScriptValue& svCloseListener) {
    ClosePort(svCloseListener);
}

template <typename Value>
void MScriptSerial::Set(KXPCode (ISerialResource::*operation)(Value), Value value) {
    UsePort([&](ISerialResource& port) { (port.*operation)(value); });
}

void MScriptSerial::SetBaudRate(int iBaudRate) {
    if (IsOneOf(kBaudRates, iBaudRate))
        Set(&ISerialResource::SetBaudRate, static_cast<std::uint32_t>(iBaudRate));
}

void MScriptSerial::SetStopBits(int iStopBits) {
    if (IsOneOf(kStopBits, iStopBits))
        Set(&ISerialResource::SetStopBits, static_cast<std::uint32_t>(iStopBits));
}

void MScriptSerial::SetDataSize(int iDataSize) {
    if (IsOneOf(kDataSizes, iDataSize))
        Set(&ISerialResource::SetDataSize, static_cast<std::uint32_t>(iDataSize));
}

void MScriptSerial::SetParity(const QString& sParity) {
    for (const ParityName& parity : kParities)
        if (sParity == QLatin1String(parity.name))
            Set(&ISerialResource::SetParity, std::uint32_t{parity.value});
}

void MScriptSerial::SetBreak(bool bValue) {
    Set(&ISerialResource::SetBreak, bValue);
}

void MScriptSerial::SetDTR(bool bValue) {
    Set(&ISerialResource::SetDTR, bValue);
}

void MScriptSerial::SetRTS(bool bValue) {
    Set(&ISerialResource::SetRTS, bValue);
}

void MScriptSerial::SetDTRControl(bool bValue) {
    Set(&ISerialResource::SetDTRControl, bValue);
}

void MScriptSerial::SetRTSControl(bool bValue) {
    Set(&ISerialResource::SetRTSControl, bValue);
}

void MScriptSerial::SetDTRHandshake(bool bValue) {
    Set(&ISerialResource::SetDTRHandshake, bValue);
}

void MScriptSerial::SetDSROutFlow(bool bValue) {
    Set(&ISerialResource::SetDSROutFlow, bValue);
}

void MScriptSerial::SetRTSHandshake(bool bValue) {
    Set(&ISerialResource::SetRTSHandshake, bValue);
}

void MScriptSerial::SetCTSOutFlow(bool bValue) {
    Set(&ISerialResource::SetCTSOutFlow, bValue);
}

void MScriptSerial::SetBreakCharacter(int _iBreakCharacter) {
    if (!GetLink()->IsShut())
        m_breakCharacter = _iBreakCharacter < 0 ? 0 : _iBreakCharacter & 0xFF;
}

void MScriptSerial::SetBreakTime(int _iBreakTime) {
    if (!GetLink()->IsShut())
        m_breakTimeMs = std::max(_iBreakTime, 0);
}

void MScriptSerial::On(const QString& sEvent, const QScriptValue& svListener) {
    Listen(sEvent, svListener);
}

void MScriptSerial::OnData(ISerialResource* resource, const std::uint8_t* data, std::int32_t length,
                           std::uint32_t /*reserved*/) {
    if (!IsMine(resource) || data == nullptr || length < 1)
        return;
    MScriptParamList values;
    values.Add(QByteArray(reinterpret_cast<const char*>(data), length));
    Raise("data", values);
}

void MScriptSerial::OnEvent(ISerialResource* resource, std::int32_t eventType, std::int32_t state,
                            std::uint32_t /*reserved*/) {
    const auto* event = std::find_if(std::begin(kSerialEvents), std::end(kSerialEvents),
                                     [&](const SerialEventName& row) { return row.type == eventType; });
    if (!IsMine(resource) || event == std::end(kSerialEvents))
        return;
    MScriptParamList values;
    values.Add(int{state});
    Raise(event->name, values);
}
