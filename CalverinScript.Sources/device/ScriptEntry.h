#pragma once

#include "MCalverinScript_Device.h"

/// While it lives the device is inside the script: `mutex` is held, and on the engine's own thread nothing else that waits
/// there (tasks, timers) may start. What arrived meanwhile is taken up behind the outermost entry.
class MCalverinScript_Device::ScriptEntry {
public:
    explicit ScriptEntry(MCalverinScript_Device& owner);
    ~ScriptEntry();
    ScriptEntry(const ScriptEntry&) = delete;
    ScriptEntry& operator=(const ScriptEntry&) = delete;

private:
    MCalverinScript_Device& m_device;
    const bool m_onScriptThread;
};
