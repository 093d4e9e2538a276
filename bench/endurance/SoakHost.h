#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>

#include "Errands.h"
#include "Faults.h"
#include "Ledger.h"
#include "PlainHost.h"
#include "SoakLink.h"

/// The host of a long run: a variable, a link for each device, and a thread of its own for what scripts ask of each
/// other.
class SoakHost : public plain::Host, public IVariableManager, public IManagerRemoteManager2 {
public:
    SoakHost();
    ~SoakHost() override = default;

    Faults faults;
    Ledger ledger;
    Errands errands;

    /// The module, loaded once, with this host behind it; null when it cannot be loaded.   [host main]
    IKXPModule* Module();

    /// Whom the name means from now on; null for nobody. Returns when no call to the one before is under way.   [host
    /// main]
    void SetDevice(const std::string& name, IKXPDevice* device);
    /// Has the link of a device call it no more: nobody may once it is released.   [host main]
    void CloseLink(IKXPDevice* device);
    /// Forgets the link of a device that has been released.   [host main]
    void DropLink(IKXPDevice* device);
    /// Sends a request to the device of that name; where there is none, it counts as refused and is gone.   [any host
    /// thread]
    void SendTo(const std::string& name, Request* request);
    /// Tells every device of a change.   [any host thread]
    void TellAll(const std::string& value);

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override { return KXP_OK; }
    KXPCode Reserved1(void*) override { return KXP_OK; }
    IData* FindVariable(const char* name) override;
    IManagerRemote2* GetRemote(IKXPDevice* device) override;

private:
    plain::Value m_variable{"Level", KXP_INTEGER_DATA, "0"};
    std::shared_mutex
        m_devicesLock; ///< held for the length of a call, so that nobody calls a device that is being released
    std::map<std::string, IKXPDevice*> m_devices; ///< under its lock; not owned
    std::mutex m_linksLock;
    std::map<IKXPDevice*, std::shared_ptr<SoakLink>> m_links; ///< under its lock
};
