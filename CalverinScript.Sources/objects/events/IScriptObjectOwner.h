#pragma once

#include <string>
#include <utility>
#include <vector>

#include "MScriptParamList.h"

class MScriptCommonEvent;
class QString;
class ScriptWaits;

/// What an object that a script uses needs of the bridge, which owns it. An object that raises events keeps a pointer to it from
/// construction to destruction.
class IScriptObjectOwner {
public:
    /// Queues an event of an object for its listener and returns at once. Everything is copied; the object comes to the listener
    /// behind the values. The events of one thread arrive in their order, each once, and none after the object is gone.
    /// Nothing happens without values or object.   [any]
    virtual void PostScriptEvent(const QString& eventName, const MScriptParamList* params,
                                 MScriptCommonEvent* object) = 0;

    /// The same for several events of one name, in their order: one queueing and one wake-up for all.   [any]
    virtual void PostScriptEvents(const QString& eventName, std::vector<MScriptParamList> events,
                                  MScriptCommonEvent* object) {
        for (MScriptParamList& event : events) {
            const MScriptParamList params(std::move(event));
            PostScriptEvent(eventName, &params, object);
        }
    }

    /// Where a method that may wait says so, before it does. Null when nobody stops this script.   [script]
    virtual ScriptWaits* GetWaits() { return nullptr; }

    /// The device's name in the host's 8-bit text, empty without a device.   [any]
    virtual std::string GetDeviceName() const = 0;

    /// Writes to the module's log; for the types see IMScriptManagerRemoteLogger.   [any]
    virtual void TraceMessage(const QString& message, const QString& messageType) = 0;

    /// Puts out what was set on the channels of the host that the script has taken.   [script]
    virtual void FlushChannels() {}

protected:
    ~IScriptObjectOwner() = default;
};
