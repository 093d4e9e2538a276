#pragma once

#include "MarshalledCallTable.h"
#include "MCalverinScript_Device.h"
#include "RunWithinMemory.h"

/// @file
/// The one form that every slot on the script thread has. For the device's own sources.

/// Does the work under `mutex`, then tells that it is done. While the device is ending the script is not entered.
template <typename Row, typename Work>
bool MCalverinScript_Device::RunSlot(const Row& row, Work work) {
    bool result = false;
    if (!ending) {
        const ScriptEntrance::Entry entry(crossing.Entrance());
        if (!RunWithinMemory([&] { result = work(); }))
            TellWantOfMemory("the script");
    }
    if (row.finished != nullptr)
        Q_EMIT(this->*row.finished)();
    return result;
}
