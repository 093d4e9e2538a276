#pragma once

#include <atomic>
#include <string>

#include "DefaultVariables.h"
#include "IEndingRoom.h"
#include "VariableAccessor.h"

class IData;
class IDeviceVariables;

/// The host's values of one device's variables: the default ones, which the device writes, and those that
/// members of a running script stand for. The host drops them all whenever it takes a definition; nothing of
/// ours is inside one meanwhile.
class HostValues final : public IEndingRoom {
public:
    /// @param closed set once when the host must not be touched any more; must outlive this.
    explicit HostValues(const std::atomic<bool>& closed)
        : m_closed(closed)
        , m_accessors(closed) {}
    HostValues(const HostValues&) = delete;
    HostValues& operator=(const HostValues&) = delete;

    /// The host's object, borrowed for the device's life.   [host main, before all else]
    void SetVariables(IDeviceVariables* variables) { m_variables = variables; }
    /// The host's value of a variable of the device; null when there is none. The host may release the device when it is
    /// asked: it is asked for nothing then, and what it gives is not touched.   [host main; any, inside the gate]
    IData* Find(const char* name) const;
    IData* Find(const QString& name) const;

    /// Offers a definition to the host. Members of a running script stand for the new values afterwards. The default
    /// variables stay unbound, and what is written to them is kept, until BindDefaults.
    /// @return whether the host has taken it.   [host main]
    bool Offer(const std::string& definition);
    /// Looks the default variables up, or lets go of them.   [host main]
    void BindDefaults(bool areThere);
    /// The same where they were never found, and no definition is on its way.   [any host thread]
    void BindDefaultsUnlessBound(bool areThere);

    /// Texts and status for the default variables.   [any]
    void SetText(DefaultVariable variable, const QString& text) { m_defaults.SetText(variable, text); }
    void SetStatus(DeviceStatus status) { m_defaults.SetStatus(status); }
    // IEndingRoom
    /// The default variables are never written again.
    void End() override { m_defaults.Forget(); }

    /// What the script's members stand for.   [script]
    AccessorPool& Accessors() { return m_accessors; }
    /// Entered around each use of a value.   [any]
    VisitGate& Gate() { return m_accessors.GetGate(); }

private:
    DefaultVariables::Find DefaultsThatAre(bool there) const;

    const std::atomic<bool>& m_closed;
    IDeviceVariables* m_variables = nullptr;
    DefaultVariables m_defaults;
    AccessorPool m_accessors;
};
