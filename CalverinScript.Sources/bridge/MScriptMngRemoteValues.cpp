#include "Clock.h"
#include "HostCalls.h"
#include "ValueFit.h"
#include "VisitGate.h"

// The host's variables.

IData* MScriptMngRemote::FindVariable(const QString& name) const {
    const bool reachable = m_variableManager != nullptr && !IsDeviceEnding();
    return reachable ? m_variableManager->FindVariable(ToHostText(name).constData()) : nullptr;
}

/// Does something with a variable of the host that may be the device's own, which the host may be about to replace.
/// @return false when it is not there.
template <typename Use>
bool MScriptMngRemote::UseVariable(const QString& name, Use use) {
    const VisitGate::Visit visit(m_device != nullptr ? m_device->GetValueGate() : nullptr);
    IData* variable = visit.IsAllowed() ? FindVariable(name) : nullptr;
    if (variable != nullptr)
        use(*variable);
    return variable != nullptr;
}

unsigned int MScriptMngRemote::SetValue(const QString& sVariable, const QString& sValue) {
    if (m_variableManager == nullptr)
        return KXP_NOT_IMPLEMENTED;
    const QByteArray text = ToHostText(sValue);
    bool mayMisfit = false;
    const auto set = [&](IData& variable) {
        mayMisfit = CanMisfit(static_cast<KXPDataType>(variable.GetDataType()));
        variable.SetValueFromString(text.constData(), 0, 0);
    };
    if (!UseVariable(sVariable, set))
        return KXP_VARIABLE_NOT_FOUND;
    // Looked up anew: while the host took the value it may have replaced the variable.
    QString why;
    if (mayMisfit)
        UseVariable(sVariable, [&](IData& variable) { why = WhyMisfit(variable, sValue); });
    if (!why.isEmpty())
        TellMisfit(sVariable, sValue, why);
    return KXP_OK;
}

void MScriptMngRemote::TellMisfit(const QString& variable, const QString& text, const QString& why,
                                  const QStringList& items) {
    const QString line = m_misfits.Line(variable, text, why, items, MillisecondClock());
    if (!line.isEmpty())
        TraceMessage(line, QStringLiteral("ALARM"));
}

unsigned int MScriptMngRemote::SetValueAsInteger(const QString& sVariable, const QString& sValue) {
    if (m_variableManager == nullptr)
        return KXP_NOT_IMPLEMENTED;
    bool isNumber = false;
    const int number = sValue.toInt(&isNumber);
    const auto set = [&](IData& variable) { variable.SetIntValue(number, 0, 0); };
    if (!UseVariable(sVariable, set))
        return KXP_VARIABLE_NOT_FOUND;
    if (!isNumber)
        TellMisfit(sVariable, sValue, QStringLiteral("is no whole number, so it gets 0"));
    return KXP_OK;
}

int MScriptMngRemote::GetValueAsInteger(const QString& sVariable) {
    int value = 0;
    UseVariable(sVariable, [&](IData& variable) { value = variable.GetIntValue(); });
    return value;
}

double MScriptMngRemote::GetValueAsReal(const QString& sVariable) {
    double value = 0.0;
    UseVariable(sVariable, [&](IData& variable) { value = variable.GetRealValue(); });
    return value;
}

QString MScriptMngRemote::GetValueAsString(const QString& sVariable) {
    m_lastValueText = QStringLiteral("");
    UseVariable(sVariable, [&](IData& variable) {
        char* text = variable.GetValueAsString();
        if (text == nullptr)
            return;
        m_lastValueText = FromHostText(text);
        variable.ReleaseString(&text);
    });
    return m_lastValueText;
}

unsigned int MScriptMngRemote::OnVariableChange(const QScriptValue& expression) {
    if (m_device == nullptr || m_remote2 == nullptr)
        return KXP_NOT_IMPLEMENTED;
    return m_device->SetPropertyChangeCallback(expression);
}
