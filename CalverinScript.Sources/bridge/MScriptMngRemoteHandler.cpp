#include "MScriptMngRemote.h"

#include "HostText.h"
#include "IScriptDevice.h"
#include "Log.h"

namespace {

/// Level names of TraceMessage, their index being the level less one.
constexpr const char* kMessageTypes[] = {"NORMALPLUS", "INFO", "COMMENT", "ALARM", "ERROR", "FATAL", "DEBUG"};

/// Each type is also known by the one character whose code point is its level.
int LevelOf(const QString& messageType) {
    int level = 0;
    for (const char* name : kMessageTypes) {
        ++level;
        if (messageType == QLatin1String(name) || messageType == QString(QChar(level)))
            return level;
    }
    return 0;
}

} // namespace

KXPCode MScriptMngRemote::QueryInterface(const char* /*name*/, void** /*out*/) {
    return KXP_BAD_INTERFACE_ARG;
}

KXPCode MScriptMngRemote::Release() {
    return KXP_BAD_INTERFACE_ARG;
}

KXPCode MScriptMngRemote::OnPropertyChange(const char* object, const char* property, const char* value,
                                           std::uint32_t flag, std::uint32_t /*reserved*/) {
    if (m_device != nullptr && m_remote2 != nullptr)
        m_device->PostPropertyChange(object, property, value, flag != 0);
    return KXP_OK;
}

KXPCode MScriptMngRemote::Reserved2(void* /*argument1*/, void* /*argument2*/, void* /*argument3*/) {
    return KXP_OK;
}

void MScriptMngRemote::OnAsyncContextDone(MyAsyncDeviceExecContext* context) {
    if (m_device != nullptr)
        m_device->PostAsyncResult(context);
    else
        SettleAsyncContext(context);
}

void MScriptMngRemote::TraceMessage(const QString& message, const QString& messageType) {
    if (!IsLogOn(false))
        return;
    const std::string name = m_device != nullptr ? m_device->GetScriptDeviceName() : "Unknown";
    WriteLog(LogHandle(), LevelOf(messageType), "kxpCalverinScript [%s] %s", name.c_str(),
             ToHostText(message).constData());
}
