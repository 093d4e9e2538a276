#include "HostCalls.h"

// Tasks and user screens: the host's business, passed through.

namespace {

constexpr int kLastScreenPosition = 1;

} // namespace

unsigned int MScriptMngRemote::OpenUserScreen(const QString& sUSName, int iPosition, int iLeft, int iTop) {
    if (iPosition < 0 || iPosition > kLastScreenPosition)
        return KXP_NOT_IMPLEMENTED;
    return Forward(&IManagerRemote2::OpenUserScreen, &IManagerRemote::OpenUserScreen, ToHostText(sUSName).constData(),
                   iPosition, iLeft, iTop);
}

unsigned int MScriptMngRemote::CloseUserScreen(const QString& sUSName) {
    return Forward(&IManagerRemote2::CloseUserScreen, &IManagerRemote::CloseUserScreen,
                   ToHostText(sUSName).constData());
}

/// The newer link takes the page as decimal text, the older one as a number.
unsigned int MScriptMngRemote::GotoPage(const QString& sUSName, int iPageNumber) {
    const QByteArray name = ToHostText(sUSName);
    if (IsDeviceEnding())
        return KXP_NOT_IMPLEMENTED;
    if (m_remote2 == nullptr)
        return m_remote != nullptr ? m_remote->GotoPage(name.constData(), iPageNumber) : KXPCode{KXP_NOT_IMPLEMENTED};
    const QByteArray page = QByteArray::number(iPageNumber);
    return CallAndWait([&](IExecContext* context) {
        return m_remote2->GotoPage(name.constData(), page.constData(), context, nullptr);
    });
}

unsigned int MScriptMngRemote::StartTask(const QString& sTaskName) {
    return Forward(&IManagerRemote2::StartTask, &IManagerRemote::StartTask, ToHostText(sTaskName).constData());
}

unsigned int MScriptMngRemote::PauseTask(const QString& sTaskName) {
    return Forward(&IManagerRemote2::PauseTask, &IManagerRemote::PauseTask, ToHostText(sTaskName).constData());
}

unsigned int MScriptMngRemote::StopTask(const QString& sTaskName, int iMode) {
    return Forward(&IManagerRemote2::StopTask, &IManagerRemote::StopTask, ToHostText(sTaskName).constData(), iMode);
}

unsigned int MScriptMngRemote::GotoLabel(const QString& sTaskName, const QString& sLabel) {
    return Forward(&IManagerRemote2::GotoLabel, &IManagerRemote::GotoLabel, ToHostText(sTaskName).constData(),
                   ToHostText(sLabel).constData());
}

unsigned int MScriptMngRemote::GotoLine(const QString& sTaskName, int iLineNumber) {
    return Forward(&IManagerRemote2::GotoLine, &IManagerRemote::GotoLine, ToHostText(sTaskName).constData(),
                   iLineNumber);
}

unsigned int MScriptMngRemote::GotoTime(const QString& sTaskName, int iTime) {
    return Forward(&IManagerRemote2::GotoTime, &IManagerRemote::GotoTime, ToHostText(sTaskName).constData(), iTime);
}

unsigned int MScriptMngRemote::LoadShow(const QString& sShowName, int iTime) {
    return Forward(&IManagerRemote2::LoadShow, &IManagerRemote::LoadShow, ToHostText(sShowName).constData(), iTime);
}
