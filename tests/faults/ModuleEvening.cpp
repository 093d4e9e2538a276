/// @file
/// An evening of the module alone, in a plain host: made, started, loaded, worked, its setup stored and given back,
/// stopped and started again, released. Whatever a call answers, the module and its host have to come to the end of it.
///
///     module_evening PORT FILE [N]
///
/// PORT has a server for lines and pages, FILE is where a page is kept; the host refuses the N-th call that the module
/// makes of it.
/// @return 0 when all went well, 1 when something
/// was refused or went otherwise, which is told, 2 when the contract was broken.

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include <dlfcn.h>

#include "FakeRemotes.h"
#include "IKXPModule.h"
#include "PlainHost.h"

namespace {

using namespace plain;

constexpr int kPatienceMs = 30000; ///< a command that failed is held for ten seconds

constexpr KXPCode kRefused = 72;

/// Counts what the module asks of the host, on any thread, and refuses the one of a number.
class Patience {
public:
    explicit Patience(int refused)
        : m_refused(refused) {}
    bool IsOver() { return ++m_calls == m_refused; }
    int Calls() const { return m_calls; }

private:
    const int m_refused; ///< from 1; 0 refuses none
    std::atomic<int> m_calls{0};
};

/// The host itself: a service that it refuses is not there.
class ImpatientHost : public Host {
public:
    explicit ImpatientHost(Patience& patience)
        : m_patience(patience) {}
    virtual ~ImpatientHost() = default;

    KXPCode QueryInterface(const char* name, void** out) override {
        if (!m_patience.IsOver())
            return Host::QueryInterface(name, out);
        *out = nullptr;
        return KXP_NO_INTERFACE;
    }
    std::uint32_t GetRuntimeInfo(KXPRuntimeInfo* out) override {
        return m_patience.IsOver() ? 0 : Host::GetRuntimeInfo(out);
    }
    const char* GetFolder(std::uint32_t folderId) override {
        return m_patience.IsOver() ? nullptr : Host::GetFolder(folderId);
    }
    KXPCode RegisterFactory(const char* name, IObjectFactory* factory) override {
        return m_patience.IsOver() ? KXPCode{kRefused} : Host::RegisterFactory(name, factory);
    }

private:
    Patience& m_patience;
};

/// The device's variables: a definition that is refused leaves the one before, a value that is refused is not there.
class ImpatientVariables : public Variables {
public:
    explicit ImpatientVariables(Patience& patience)
        : m_patience(patience) {}
    virtual ~ImpatientVariables() = default;
    IData* GetVariable(const char* name) override {
        return m_patience.IsOver() ? nullptr : Variables::GetVariable(name);
    }
    std::uint32_t SetDefinition(const char* xml) override {
        return m_patience.IsOver() ? 0 : Variables::SetDefinition(xml);
    }

private:
    Patience& m_patience;
};

/// The show's variables: the port, and a note.
class Shelf : public IVariableManager {
public:
    Shelf(const std::string& port, Patience& patience)
        : m_patience(patience)
        , m_port("Port", KXP_INTEGER_DATA, port) {}
    virtual ~Shelf() = default;
    KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
    KXPCode Release() override { return KXP_OK; }
    KXPCode Reserved1(void*) override { return KXP_OK; }
    IData* FindVariable(const char* name) override {
        if (m_patience.IsOver())
            return nullptr;
        return std::string(name) == "Port" ? &m_port : &m_note;
    }

private:
    Patience& m_patience;
    Value m_port;
    Value m_note{"Note"};
};

class Evening {
public:
    Evening(const std::string& port, std::string file, int refused)
        : m_file(std::move(file))
        , m_patience(refused)
        , m_shelf(port, m_patience) {
        m_remote.text = "an answer";
        m_remote.onCall = [this](IExecContext2* context) {
            m_remote.code = m_patience.IsOver() ? kRefused : KXPCode{KXP_OK};
            if (context != nullptr && m_remote.code == KXP_OK)
                context->End();
        };
        m_host.variableManager = &m_shelf;
        m_host.offerRemoteManager2 = true;
        m_host.remote2 = &m_remote;
    }

    int Play() {
        if (LoadModule() && MakeDevice()) {
            Work();
            StoreTheSetup();
            m_device->Stop();
            m_device->Start();
            Work();
            m_device->Stop();
            m_device->Release();
        }
        if (m_module != nullptr) {
            m_module->Terminate(nullptr);
            m_module->Release();
        }
        if (Value::OutstandingTexts() != 0)
            Tell(2, "texts were not given back: " + std::to_string(Value::OutstandingTexts()));
        std::printf("the module has asked %d times\n", m_patience.Calls());
        return m_code;
    }

private:
    void Tell(int code, const std::string& what) {
        std::printf("%s\n", what.c_str());
        std::fflush(stdout);
        m_code = std::max(m_code, code);
    }

    bool LoadModule() {
        void* file = dlopen(MODULE_FILE, RTLD_NOW | RTLD_LOCAL);
        if (file == nullptr) {
            Tell(1, std::string("no module: ") + dlerror());
            return false;
        }
        const auto entry = reinterpret_cast<KXPEntryPoint>(dlsym(file, KXP_ENTRY_POINT_NAME));
        const KXPCode code = entry(&m_module);
        if (code != KXP_OK) {
            Tell(1, "no module: " + std::to_string(code));
            return false;
        }
        m_module->Initialize(m_host.Root(), nullptr, nullptr);
        m_module->SetDeviceHost(this);
        return true;
    }

    bool MakeDevice() {
        const KXPCode code = m_module->CreateDevice(nullptr, &m_device);
        if (code != KXP_OK) {
            Tell(1, "no device: " + std::to_string(code));
            return false;
        }
        m_device->SetDeviceVariables(&m_variables);
        m_device->SetName("desk");
        if (m_device->GetDefinition() == nullptr)
            Tell(1, "no definition");
        m_device->Start();
        return true;
    }

    void Work() {
        std::ifstream file(EVENING "/desk.js");
        std::stringstream script;
        script << file.rdbuf();
        Params load({script.str()});
        m_variables.functions.SetValueFromString("", 0, 0);
        constexpr std::int32_t kLoadFromText = 1;
        if (m_device->ExecuteCommand(kLoadFromText, &load, nullptr) != KXP_OK)
            Tell(1, "the script is refused");
        if (!WaitForFunctions())
            return Tell(1, "the script does not load: " + m_variables.error.Text());
        for (const char* function : {"Tick", "Datagram", "Line", "Page", "Keep", "Bytes", "Neighbour", "Later", "Show"})
            Call(function);
    }

    /// The list of functions, or a text that tells why there is none.
    bool WaitForFunctions() {
        for (int i = 0; i < 200 && m_variables.functions.Text().empty() && m_variables.error.Text().empty(); ++i)
            m_variables.functions.WaitForHistory(m_variables.functions.History().size() + 1, 100);
        return !m_variables.functions.Text().empty();
    }

    void Call(const char* function) {
        const auto params = Params::ForFunction(function, {m_file});
        Context context;
        const KXPCode code = m_device->ExecuteCommand(3, params.get(), &context);
        if (code != KXP_OK)
            return Tell(1, std::string(function) + " is refused: " + std::to_string(code));
        const bool ended = context.WaitForEnd(kPatienceMs);
        if (!ended || context.Begun() != 1 || context.Ended() != 1) {
            Tell(2, std::string(function) + " has begun " + std::to_string(context.Begun()) + " times and ended " +
                        std::to_string(context.Ended()) + " times");
            std::_Exit(m_code); // the request is still out, and its context is here
        }
        const std::string result = params->At(1).Text();
        const std::string error = m_variables.error.Text();
        if (result.empty() || result.rfind("error: ", 0) == 0 || !error.empty())
            Tell(1, std::string(function) + ": " + result + " " + error);
    }

    void StoreTheSetup() {
        char* setup = nullptr;
        const KXPCode code = m_device->GetSetup(&setup);
        if (code != KXP_OK || setup == nullptr)
            return Tell(1, "no setup: " + std::to_string(code));
        if (std::string(setup).find("</DeviceData>") == std::string::npos)
            Tell(2, "the setup is torn");
        const KXPCode applied = m_device->SetSetup(setup);
        if (applied != KXP_OK)
            Tell(1, "the setup is refused: " + std::to_string(applied));
        m_device->ReleaseString(&setup);
    }

    const std::string m_file;
    int m_code = 0;
    Patience m_patience;
    ImpatientHost m_host{m_patience};
    Shelf m_shelf;
    FakeRemote2 m_remote;
    ImpatientVariables m_variables{m_patience};
    IKXPModule* m_module = nullptr;
    IKXPDevice* m_device = nullptr;
};

} // namespace

int main(int argc, char** argv) {
    if (argc < 3 || argc > 4)
        return 2;
    return Evening(argv[1], argv[2], argc == 4 ? std::atoi(argv[3]) : 0).Play();
}
