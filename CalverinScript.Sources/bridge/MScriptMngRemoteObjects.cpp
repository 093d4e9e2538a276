#include "HostCalls.h"
#include "ObjectRequest.h"

// The object tree, its properties and the groups of changes.

namespace {

constexpr uint kLastObjectType = 30;
constexpr uint kFurtherObjectTypes[] = {100, 1000};
constexpr const char* kAcceptEvents = "<Options><Option name=\"acceptevents\" value=\"true\" /></Options>";
constexpr const char* kRootGroup = "GrantedRootGroup";

bool IsObjectType(uint type) {
    return type <= kLastObjectType || type == kFurtherObjectTypes[0] || type == kFurtherObjectTypes[1];
}

} // namespace

QString MScriptMngRemote::GetObjectList(const QString& sParentObject, uint uiObjectType) {
    if (!IsObjectType(uiObjectType))
        return QStringLiteral("");
    return ForwardForText(&IManagerRemote2::GetObjectList, &IManagerRemote::GetObjectList,
                          ToHostText(sParentObject).constData(), uiObjectType);
}

QString MScriptMngRemote::GetObject(const QString& sObject, unsigned short unDepth) {
    return ForwardForText(&IManagerRemote2::GetObject, &IManagerRemote::GetObject, ToHostText(sObject).constData(),
                          unDepth);
}

void MScriptMngRemote::AskAboutObject(ObjectRequest& request) {
    const bool isEnding = IsDeviceEnding();
    request.Ask(isEnding ? nullptr : m_remote2, isEnding ? nullptr : m_remote);
}

unsigned int MScriptMngRemote::SetProperty(const QString& sObject, const QString& sProperty, const QString& sValue) {
    return Forward(&IManagerRemote2::SetProperty, &IManagerRemote::SetProperty, ToHostText(sObject).constData(),
                   ToHostText(sProperty).constData(), ToHostText(sValue).constData());
}

unsigned int MScriptMngRemote::SetPropertyAsInt(const QString& sObject, const QString& sProperty, int iValue) {
    return Forward(&IManagerRemote2::SetPropertyAsInt, &IManagerRemote::SetPropertyAsInt,
                   ToHostText(sObject).constData(), ToHostText(sProperty).constData(), iValue);
}

QString MScriptMngRemote::GetProperty(const QString& sObject, const QString& sProperty) {
    return ForwardForText(&IManagerRemote2::GetProperty, &IManagerRemote::GetProperty, ToHostText(sObject).constData(),
                          ToHostText(sProperty).constData());
}

/// The newer link gives the number as text.
int MScriptMngRemote::GetPropertyAsInt(const QString& sObject, const QString& sProperty) {
    if (m_remote2 != nullptr)
        return GetProperty(sObject, sProperty).toInt();
    std::int32_t value = 0;
    const bool known = m_remote != nullptr && !IsDeviceEnding() &&
                       m_remote->GetPropertyAsInt(ToHostText(sObject).constData(), ToHostText(sProperty).constData(),
                                                  &value) == KXP_OK;
    return known ? value : 0;
}

unsigned int MScriptMngRemote::RegisterGroup(const QString& sParentObject, bool bAcceptEvent) {
    return RegisterNamedGroup(ToHostText(sParentObject).constData(), bAcceptEvent ? kAcceptEvents : "");
}

unsigned int MScriptMngRemote::UnregisterGroup(const QString& sParentObject) {
    return UnregisterNamedGroup(ToHostText(sParentObject).constData());
}

KXPCode MScriptMngRemote::RegisterRootGroup() {
    return RegisterNamedGroup(kRootGroup, "");
}

KXPCode MScriptMngRemote::UnregisterRootGroup() {
    return UnregisterNamedGroup(nullptr);
}

KXPCode MScriptMngRemote::RegisterNamedGroup(const char* group, const char* options) {
    if (IsDeviceEnding())
        return KXP_NOT_IMPLEMENTED;
    if (m_remote2 == nullptr)
        return m_remote != nullptr ? m_remote->RegisterGroup(this, group) : KXPCode{KXP_NOT_IMPLEMENTED};
    m_remote2->SetHandler(this);
    return CallAndWait(
        [&](IExecContext* context) { return m_remote2->RegisterGroup(group, options, context, nullptr); });
}

KXPCode MScriptMngRemote::UnregisterNamedGroup(const char* group) {
    if (IsDeviceEnding())
        return KXP_NOT_IMPLEMENTED;
    if (m_remote2 != nullptr)
        return CallAndWait([&](IExecContext* context) { return m_remote2->UnregisterGroup(group, context, nullptr); });
    if (m_remote == nullptr)
        return KXP_NOT_IMPLEMENTED;
    m_remote->UnregisterGroup();
    return KXP_OK;
}
