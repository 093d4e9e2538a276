#pragma once

#include "MCalverinScript_Device.h"
#include "ScriptEntry.h"

/// @file
/// The one form that every slot on the script thread has. For the device's own sources.

/// Does the work under `mutex`, then leaves the result in its field and tells the completion. Once the device is ending the
/// script is not entered any more.
template <typename Work>
bool MCalverinScript_Device::RunSlot(MarshalledCall call, Work work) {
    bool result = false;
    if (!ending) {
        const ScriptEntry entry(*this);
        result = work();
    }
    Finish(call, result);
    return result;
}
