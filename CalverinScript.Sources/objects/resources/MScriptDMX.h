#pragma once

#include <QObject>
#include <QScriptable>
#include <QScriptValue>
#include <QString>

#include "MScriptPort.h"

/// What `QCalverin.GetResource` gives a script for a DMX universe of the host, an input or an output. Channels count
/// from 0 to 511.
///
/// | event | values |
/// |-------|--------|
/// | "open", "close" | none |
/// | "data", of inputs alone | QByteArray of 512 levels, zeros behind the end of a short frame |
class MScriptDMX : public QObject, public QScriptable, public MScriptPort<IDMXResource> {
    Q_OBJECT

public:
    /// @param type DmxIn or DmxOut. @param universe the host's; without one the object does nothing. @param owner
    /// borrowed for the object's life, may be null.   [host main]
    MScriptDMX(ScriptObjectType type, IDMXResource* universe, IScriptObjectOwner* owner);
    ~MScriptDMX() override;

    // What scripts call. Names of parameters and defaults are the script interface. All on the script thread. What is
    // called most comes first: at each call the engine looks at the names of all methods before it.

    /// Sets levels of an output from the first bytes of a Buffer. Start and count are brought into 0 to 512, the count
    /// down to the bytes that there are.
    /// @return whether the host has taken them; false for an input and for anything but a Buffer.
    Q_INVOKABLE bool WriteBlock(const QScriptValue& svData, int iStartChannel = 0, int iChannelCount = 512);
    /// The levels that came in, or that go out, as a Buffer of iChannelCount bytes from iStartChannel on. Both are
    /// brought into 0 to 512; levels beyond the universe are 0.
    /// @return an invalid value when the host has none.
    Q_INVOKABLE QScriptValue ReadBlock(int iStartChannel = 0, int iChannelCount = 512);
    /// @param svOpenListener the listener of "open" from now on; anything but a function is ignored.
    Q_INVOKABLE void Open(const QScriptValue& svOpenListener = QScriptValue(0));
    /// @param svCloseListener the listener of "close" from now on; anything but a function is ignored.
    Q_INVOKABLE void Close(const QScriptValue& svCloseListener = QScriptValue(0));
    /// Sets the function that hears of an event; it stays until another takes its place.
    Q_INVOKABLE void On(const QString& sEvent, const QScriptValue& svListener);

    // IDMXResourceHandler
    void OnData(IDMXResource* resource, const std::uint8_t* data, std::int32_t length, std::uint32_t reserved) override;
};
