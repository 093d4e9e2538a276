#include "VariableLookup.h"

#include <mutex>

#include "HostServices.h"
#include "HostText.h"
#include "HostValues.h"
#include "IHostServices.h"
#include "LimitedRun.h"

VariableLookup::VariableLookup(const HostServices& services, const HostValues& values,
                               MLockedList<MScriptVariable>& own)
    : m_manager(services.variables)
    , m_names(services.names)
    , m_values(values) {
    const std::lock_guard<MLockedList<MScriptVariable>> guard(own);
    for (const MScriptVariable& variable : own)
        if (variable.data != nullptr)
            m_own.insert(variable.name);
}

IData* VariableLookup::FindHostVariable(const QString& name) {
    return m_manager != nullptr ? m_manager->FindVariable(ToHostText(name).constData()) : nullptr;
}

IData* VariableLookup::FindDeviceVariable(const QString& name) {
    return m_own.contains(name) ? m_values.Find(name) : nullptr;
}

bool VariableLookup::IsValidName(const QString& name) {
    return m_names == nullptr || m_names->IsValidName(ToHostText(name).constData()) != 0;
}

template <typename Answer, typename Question>
Answer LookupOnCallersThread::Ask(Question question) {
    Answer answer{};
    m_run.OnCallersThread([&] { answer = question(); });
    return answer;
}

IData* LookupOnCallersThread::FindHostVariable(const QString& name) {
    return Ask<IData*>([&] { return m_host.FindHostVariable(name); });
}

IData* LookupOnCallersThread::FindDeviceVariable(const QString& name) {
    return Ask<IData*>([&] { return m_host.FindDeviceVariable(name); });
}

bool LookupOnCallersThread::IsValidName(const QString& name) {
    return Ask<bool>([&] { return m_host.IsValidName(name); });
}
