#pragma once

#include <memory>

#include "MLockedList.h"
#include "MThreadTimer.h"
#include "ScriptRecords.h"

class QStandardItemModel;

/// What all devices of the module share. Made for the first device and gone with the last; its pointers are changed
/// on the host's main thread alone.
struct ModuleShared {
    MLockedList<MScriptCommand> moduleCommands;                        ///< ids that mean the same for all devices
    std::unique_ptr<MLockedList<MScriptCommand>> legacyModuleCommands; ///< of older setups; null once merged
    std::unique_ptr<QStandardItemModel> completionModel;               ///< the completion table
    MThreadTimer tickTimer;

    ModuleShared();
    ~ModuleShared();

    /// The shared state while there is a device, null otherwise.   [host main]
    static ModuleShared* Get();
    /// Makes it for the first device.   [host main]
    static ModuleShared& Acquire();
    /// Ends it with the last device.   [host main]
    static void ReleaseLast();
};
