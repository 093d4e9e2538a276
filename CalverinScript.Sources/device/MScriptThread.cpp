#include "MScriptThread.h"

#include "MCalverinScript_Device.h"

void MScriptThread::run() {
    if (device != nullptr)
        device->OnScriptThreadStarted(this);
    exec();
    if (device != nullptr)
        device->OnScriptThreadEnding();
    Q_EMIT terminated();
}
