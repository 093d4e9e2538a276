#pragma once

#include <QByteArray>
#include <QObject>
#include <QScriptable>
#include <QScriptValue>
#include <QString>

#include "MScriptPort.h"
#include "Pause.h"

/// What `QCalverin.GetResource` gives a script for a serial port of the host.
///
/// | event | values |
/// |-------|--------|
/// | "open", "close" | none |
/// | "data" | QByteArray |
/// | "tx_empty", "break", "cts", "dsr", "error" | int, the state |
///
/// The settings stay with the port, over runs of the script and over setups. Values that a setting does not know change
/// nothing. Texts become Latin-1.
class MScriptSerial : public QObject, public QScriptable, public MScriptPort<ISerialResource> {
    Q_OBJECT

public:
    /// @param port the host's; without one the object does nothing. @param owner borrowed for the object's life, may be
    /// null. [host main]
    MScriptSerial(ISerialResource* port, IScriptObjectOwner* owner);
    ~MScriptSerial() override;

    bool LetGo() override;

    // What scripts call. Names of parameters and defaults are the script interface. All on the script thread. What is
    // called most comes first: at each call the engine looks at the names of all methods before it.

    /// Sends a text or a Buffer; anything else does nothing. With a break character each of them in the data becomes a
    /// break of the line, which waits for the break time. When the device stops meanwhile, the break ends and the rest
    /// is not sent.
    Q_INVOKABLE void Write(const QScriptValue& svData);
    /// @param svOpenListener the listener of "open" from now on; anything but a function is ignored.
    Q_INVOKABLE void Open(const QScriptValue& svOpenListener = QScriptValue(0));
    /// @param svCloseListener the listener of "close" from now on; anything but a function is ignored.
    Q_INVOKABLE void Close(const QScriptValue& svCloseListener = QScriptValue(0));
    /// @param iBaudRate 300, 600, 1200, 2400, 4800, 9600, 19200, 38400, 57600 or 115200.
    Q_INVOKABLE void SetBaudRate(int iBaudRate = 19200);
    /// @param iStopBits 1 or 2.
    Q_INVOKABLE void SetStopBits(int iStopBits = 1);
    /// @param iDataSize 7 or 8.
    Q_INVOKABLE void SetDataSize(int iDataSize = 8);
    /// @param sParity "None", "Even" or "Odd".
    Q_INVOKABLE void SetParity(const QString& sParity = QStringLiteral("None"));
    Q_INVOKABLE void SetBreak(bool bValue);
    Q_INVOKABLE void SetDTR(bool bValue);
    Q_INVOKABLE void SetRTS(bool bValue);
    Q_INVOKABLE void SetDTRControl(bool bValue);
    Q_INVOKABLE void SetRTSControl(bool bValue);
    Q_INVOKABLE void SetDTRHandshake(bool bValue);
    Q_INVOKABLE void SetDSROutFlow(bool bValue);
    Q_INVOKABLE void SetRTSHandshake(bool bValue);
    Q_INVOKABLE void SetCTSOutFlow(bool bValue);
    /// @param _iBreakCharacter its low 8 bits count, a negative value counts as 0. There is no way back to none.
    Q_INVOKABLE void SetBreakCharacter(int _iBreakCharacter);
    /// @param _iBreakTime milliseconds, a negative value counts as 0.
    Q_INVOKABLE void SetBreakTime(int _iBreakTime = 2);
    /// Sets the function that hears of an event; it stays until another takes its place.
    Q_INVOKABLE void On(const QString& sEvent, const QScriptValue& svListener);

    // ISerialResourceHandler
    void OnData(ISerialResource* resource, const std::uint8_t* data, std::int32_t length,
                std::uint32_t reserved) override;
    void OnEvent(ISerialResource* resource, std::int32_t eventType, std::int32_t state,
                 std::uint32_t reserved) override;

private:
    template <typename Value>
    void Set(KXPCode (ISerialResource::*operation)(Value), Value value);
    bool Send(const QByteArray& bytes, int begin, int length);
    bool SendBreak();
    void WriteWithBreaks(const QByteArray& bytes, char breakCharacter);

    static constexpr int kNoBreakCharacter = 256;

    // Script thread.
    int m_breakCharacter = kNoBreakCharacter;
    int m_breakTimeMs = 2;
    Pause m_break; ///< ended by other threads too
};
