#include "MScriptThread.h"

#include "MCalverinScript_Device.h"

void MScriptThread::run() {
    if (m_device != nullptr)
        m_device->OnScriptThreadStarted(this);
    exec();
    if (m_device != nullptr)
        m_device->OnScriptThreadEnding();
    Q_EMIT terminated();
}
