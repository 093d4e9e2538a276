#pragma once

#include <QSet>
#include <QString>

#include "MLockedList.h"
#include "ScriptRecords.h"
#include "ScriptScan.h"

class HostValues;
class IObjectNameTools;
class IVariableManager;
class LimitedRun;
struct HostServices;

/// What a scan asks of the device and its host. Which names are variables of the device is read once, however many the
/// scan asks for; the value is asked of the host each time, which may have replaced it since.   [the scan's thread]
class VariableLookup final : public IScanHost {
public:
    /// @param services, values borrowed for the scan. @param own the device's variables as the host has them.
    VariableLookup(const HostServices& services, const HostValues& values, MLockedList<MScriptVariable>& own);

    IData* FindHostVariable(const QString& name) override;
    IData* FindDeviceVariable(const QString& name) override;
    bool IsValidName(const QString& name) override;

private:
    IVariableManager* const m_manager;
    IObjectNameTools* const m_names;
    const HostValues& m_values;
    QSet<QString> m_own;
};

/// The same for a scan on a thread of its own: the host is asked on the thread that waits for it.
class LookupOnCallersThread final : public IScanHost {
public:
    LookupOnCallersThread(LimitedRun& run, IScanHost& host)
        : m_run(run)
        , m_host(host) {}

    IData* FindHostVariable(const QString& name) override;
    IData* FindDeviceVariable(const QString& name) override;
    bool IsValidName(const QString& name) override;

private:
    template <typename Answer, typename Question>
    Answer Ask(Question question);

    LimitedRun& m_run;
    IScanHost& m_host;
};
