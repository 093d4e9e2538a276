#include "PromisedThreads.h"

#include <cstring>
#include <mutex>
#include <set>
#include <thread>

#include "BusyScript.h"
#include "Cases.h"

const std::vector<PromisedThread>& AllPromisedThreads() {
    static const std::vector<PromisedThread> threads = {
        {"IManagerRuntimeInfo", "GetLogSettings", "host main"},
        {"IManagerRuntimeInfo", "GetMainWindow", "host main"},
        {"IManagerRuntimeInfo", "GetRuntimeInfo", "host main"},
        {"IObjectFactoryManager", "RegisterFactory", "host main"},
        {"IObjectFactoryManager", "UnregisterFactory", "host main"},
        {"IManagerRemoteManager2", "GetRemote", "host main"},
        {"IResourceProvider", "GetResource", "host main"},
        {"IDeviceVariables", "SetDefinition", "host main"},
        {"IManagerRemote2", "SetHandler", "script"},
        {"IManagerRemote2", "RegisterGroup", "script"},
        {"IManagerRemote2", "OpenUserScreen", "script"},
        {"IManagerRemote2", "StartTask", "script"},
        {"IManagerRemote2", "SetProperty", "script"},
        {"IManagerRemote2", "GetProperty", "script"},
        {"IManagerRemote2", "Perform", "script"},
    };
    return threads;
}

namespace {

/// Hears on which threads the module calls.
class ThreadWatch {
public:
    void Hear(const char* call) {
        for (const PromisedThread& one : AllPromisedThreads())
            if (std::strcmp(one.name, call) == 0)
                Look(one);
    }
    /// Throws a finding when a call came on a thread that it was not promised.
    void Judge() {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (!m_wrong.empty())
            throw Finding(m_wrong);
    }

private:
    void Look(const PromisedThread& one) {
        const bool isMain = std::this_thread::get_id() == m_main;
        const std::lock_guard<std::mutex> guard(m_lock);
        m_heard.insert(one.name);
        if (isMain != (std::strcmp(one.word, "host main") == 0))
            m_wrong = std::string(one.face) + "::" + one.name + " came on " +
                      (isMain ? "the main thread" : "a thread that is not the main one") + "; promised: [" + one.word +
                      "]";
    }

    const std::thread::id m_main = std::this_thread::get_id();
    std::mutex m_lock;
    std::set<std::string> m_heard; ///< behind the lock
    std::string m_wrong;           ///< behind the lock
};

} // namespace

void KeepsToThreads(Trial& trial) {
    for (int round = trial.Times(1000, 3); round > 0; --round) {
        ThreadWatch watch;
        ModuleHost host;
        host.hearing = [&](const char* call) { watch.Hear(call); };
        trial.Step("Initialize, a device at work, its end");
        LoadOrFail(host, trial);
        ContextTally tally;
        HostedDevice device(host);
        StartScript(device, TalkingSetup());
        CallScript(device, CallOfWork("x"), tally);
        Trial::Expect(tally.WaitUntilEnded(kTrialWait), "the context of a command does not end", "it ends");
        device->SetSetup(TalkingSetup().c_str());
        device.End();
        host.Unload();
        watch.Judge();
    }
}
