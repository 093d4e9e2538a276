#include "HostCalls.h"

// The host's variables.

IData* MScriptMngRemote::FindVariable(const QString& name) const {
    const bool reachable = variableManager != nullptr && !IsDeviceEnding();
    return reachable ? variableManager->FindVariable(ToHostText(name).constData()) : nullptr;
}

unsigned int MScriptMngRemote::SetValue(const QString& sVariable, const QString& sValue) {
    if (variableManager == nullptr)
        return KXP_NOT_IMPLEMENTED;
    IData* variable = FindVariable(sVariable);
    if (variable == nullptr)
        return KXP_VARIABLE_NOT_FOUND;
    variable->SetValueFromString(ToHostText(sValue).constData(), 0, 0);
    return KXP_OK;
}

unsigned int MScriptMngRemote::SetValueAsInteger(const QString& sVariable, const QString& sValue) {
    if (variableManager == nullptr)
        return KXP_NOT_IMPLEMENTED;
    IData* variable = FindVariable(sVariable);
    if (variable == nullptr)
        return KXP_VARIABLE_NOT_FOUND;
    variable->SetIntValue(sValue.toInt(), 0, 0);
    return KXP_OK;
}

int MScriptMngRemote::GetValueAsInteger(const QString& sVariable) {
    IData* variable = FindVariable(sVariable);
    return variable != nullptr ? variable->GetIntValue() : 0;
}

double MScriptMngRemote::GetValueAsReal(const QString& sVariable) {
    IData* variable = FindVariable(sVariable);
    return variable != nullptr ? variable->GetRealValue() : 0.0;
}

QString MScriptMngRemote::GetValueAsString(const QString& sVariable) {
    lastValueText = QStringLiteral("");
    IData* variable = FindVariable(sVariable);
    char* text = variable != nullptr ? variable->GetValueAsString() : nullptr;
    if (text != nullptr) {
        lastValueText = FromHostText(text);
        variable->ReleaseString(&text);
    }
    return lastValueText;
}

unsigned int MScriptMngRemote::OnVariableChange(const QScriptValue& expression) {
    if (device == nullptr || remote2 == nullptr)
        return KXP_NOT_IMPLEMENTED;
    return device->SetPropertyChangeCallback(expression);
}
