#pragma once

#include <atomic>

#include <QObject>
#include <QScriptable>
#include <QScriptValue>
#include <QString>

#include "IIOResource.h"
#include "MScriptResource.h"

/// What `QCalverin.GetResource` gives a script for a digital or analog channel of the host.
///
/// | event | values |
/// |-------|--------|
/// | "open", "close", of the channel's resource | none |
/// | "data" | int, the value |
///
/// A channel hears of its value whether its resource is open or not, and of the resource's state
/// between Open and Close.
class MScriptIOChannel : public QObject,
                         public QScriptable,
                         public MScriptResource,
                         public IIOResourceChannelHandler,
                         public IResourceHandler {
    Q_OBJECT

public:
    /// @param type DigitalIn to AnalogOut. @param channel the host's; without one the object does nothing. @param owner
    /// borrowed for the object's life, may be null.   [host main]
    MScriptIOChannel(ScriptObjectType type, IIOResourceChannel* channel, IScriptObjectOwner* owner);
    ~MScriptIOChannel() override;

    // What scripts call. Names of parameters and defaults are the script interface. All on the script thread. What is
    // called most comes first: at each call the engine looks at the names of all methods before it.

    /// Sets an output. @param bFlush whether all that was set since the last flush is put out now, on every channel
    /// that the script has taken.
    /// @return whether the host has taken the value.
    Q_INVOKABLE bool SetValue(int iValue, bool bFlush = true);
    Q_INVOKABLE int GetValue();
    /// @param svOpenListener the listener of "open" from now on; anything but a function is ignored.
    Q_INVOKABLE void Open(const QScriptValue& svOpenListener = QScriptValue(0));
    /// @param svCloseListener the listener of "close" from now on; anything but a function is ignored.
    Q_INVOKABLE void Close(const QScriptValue& svCloseListener = QScriptValue(0));
    /// Sets the function that hears of an event; it stays until another takes its place.
    Q_INVOKABLE void On(const QString& sEvent, const QScriptValue& svListener);

    // MScriptResource
    void Attach() override;
    bool LetGo() override;
    IIOResource* GetFlushed() const override { return m_resource; }

    // IIOResourceChannelHandler
    void OnValueChanged(IIOResourceChannel* channel, std::int32_t value, std::uint32_t reserved) override;
    KXPCode Reserved2(void* argument1, void* argument2, void* argument3, void* argument4) override;
    const char* GetOwnerName(IIOResourceChannel* channel) override;

    // IResourceHandler
    KXPCode QueryInterface(const char* name, void** out) override;
    void OnStateChanged() override { GetLink()->Look(); }
    const char* GetOwnerName() override { return OwnerName(); }
    KXPCode Reserved4(void* argument1, void* argument2, void* argument3, void* argument4) override;

private:
    IIOResourceChannel* const m_channel;
    IIOResource* const m_resource;        ///< the channel's, may be null
    std::atomic<bool> m_isHandler{false}; ///< of the resource: written by the script thread, read by whoever lets go
};
