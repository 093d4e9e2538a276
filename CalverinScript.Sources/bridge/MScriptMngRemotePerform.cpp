#include "HostCalls.h"
#include "PerformParameters.h"

QString MScriptMngRemote::Perform(const QString& sObject, const QString& sAction, const QString& sParamsType,
                                  const QString& sParam1, const QString& sParam2, const QString& sParam3,
                                  const QString& sParam4, const QString& sParam5, const QString& sParam6,
                                  const QString& sParam7, const QString& sParam8, const QString& sParam9,
                                  const QString& sParam10) {
    const std::string parameters = PerformParameters(
        sParamsType, {sParam1, sParam2, sParam3, sParam4, sParam5, sParam6, sParam7, sParam8, sParam9, sParam10});
    return ForwardForText(&IManagerRemote2::Perform, &IManagerRemote::Perform, ToHostText(sObject).constData(),
                          ToHostText(sAction).constData(), parameters.c_str());
}

unsigned int MScriptMngRemote::PerformAsync(const QScriptValue& expression, const QString& sObject,
                                            const QString& sAction, const QString& sParamsType, const QString& sParam1,
                                            const QString& sParam2, const QString& sParam3, const QString& sParam4,
                                            const QString& sParam5, const QString& sParam6, const QString& sParam7,
                                            const QString& sParam8, const QString& sParam9, const QString& sParam10) {
    if (m_remote2 == nullptr)
        return KXP_NO_ASYNC_LINK;
    if (IsDeviceEnding())
        return KXP_NOT_IMPLEMENTED;
    const std::string parameters = PerformParameters(
        sParamsType, {sParam1, sParam2, sParam3, sParam4, sParam5, sParam6, sParam7, sParam8, sParam9, sParam10});
    MyAsyncDeviceExecContext* context = m_device != nullptr ? m_device->MakeAsyncContext(expression) : nullptr;
    if (context == nullptr)
        return KXP_NOT_IMPLEMENTED;
    context->AddRef();
    const KXPCode code = m_remote2->Perform(ToHostText(sObject).constData(), ToHostText(sAction).constData(),
                                            parameters.c_str(), context, nullptr);
    if (code != KXP_OK && code != KXP_PENDING && context->ForgetHandler())
        DropRefused(context);
    return code;
}

/// A script that asks every second what the host refuses would otherwise collect functions and contexts for years.
void MScriptMngRemote::DropRefused(MyAsyncDeviceExecContext* context) {
    m_device->ForgetAsyncContext(context);
    SettleAsyncContext(context);
}
