#include <atomic>
#include <chrono>
#include <clocale>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>

#include "FaceAnswer.h"
#include "IKXPDevicePanel.h"
#include "IKXPModule.h"
#include "IManagerRemote.h"
#include "IManagerRuntimeInfo.h"
#include "IObjectFactory.h"
#include "IObjectFactoryManager.h"

/// @file
/// A small module that keeps the contract, but for one fault of choice: KXP_FAULT in the environment is the name of the
/// validator's case that has to find it.

namespace {

bool Has(const char* fault) {
    static const char* const chosen = std::getenv("KXP_FAULT");
    return chosen != nullptr && std::strcmp(chosen, fault) == 0;
}

constexpr const char* kDefinition = "<Device><Commands><Command ID=\"1\" Name=\"Load From Text\"/><Command ID=\"3\" "
                                    "Name=\"Execute Function With Params\"/>"
                                    "</Commands></Device>";

char* Copy(const std::string& text) {
    auto* copy = static_cast<char*>(std::malloc(text.size() + 1));
    std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

/// A request to the host, which both may hold.
class Question final : public IExecContext2 {
public:
    bool IsBegun() const { return m_state != 0; }
    bool IsEnded() const { return m_state == 2; }
    std::string Text() {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_text;
    }

    KXPCode QueryInterface(const char* name, void** out) override {
        return AnswerFace(
            name, out,
            {{"IExecContext", static_cast<IExecContext*>(this)}, {"IExecContext2", static_cast<IExecContext2*>(this)}});
    }
    KXPCode Release() override {
        if (--m_references == 0)
            delete this;
        return KXP_OK;
    }
    KXPCode SetErrorCode(KXPCode) override { return KXP_OK; }
    KXPCode Begin() override {
        m_state = 1;
        return KXP_OK;
    }
    KXPCode End() override {
        m_state = 2;
        return KXP_OK;
    }
    KXPCode Reserved4(void*) override { return KXP_OK; }
    KXPCode Reserved5(void*) override { return KXP_OK; }
    KXPCode AddRef() override {
        ++m_references;
        return KXP_OK;
    }
    KXPCode Reserved7(void*) override { return KXP_OK; }
    KXPCode Reserved8(void*, void*, void*) override { return KXP_OK; }
    KXPCode SetResultText(const char* text) override {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_text = text != nullptr && !(Has("requests-answered") && IsBegun()) ? text : "";
        return KXP_OK;
    }
    std::uint32_t GetState() override { return m_state; }

private:
    ~Question() = default;

    std::mutex m_lock;
    std::string m_text; ///< behind the lock
    std::atomic<std::uint32_t> m_state{0};
    std::atomic<int> m_references{1};
};

std::string TextOf(IData& value) {
    char* text = value.GetValueAsString();
    const std::string copy = text != nullptr ? text : "";
    value.ReleaseString(&text);
    return copy;
}

/// A command that waits for the device's thread.
struct Request {
    std::string function;
    IData* result;
    std::string argument;
    IExecContext* context;
    IData* argumentValue; ///< for the fault alone
};

/// A panel that shows nothing.
class Panel final : public IKXPDevicePanel {
public:
    KXPCode QueryInterface(const char* name, void** out) override { return AnswerFace(name, out, {}); }
    KXPCode Release() override {
        delete this;
        return KXP_OK;
    }
    KXPWindow GetWindow() override { return 0; }
    std::uint32_t Reserved4(void*) override { return 0; }
    const char* GetName() override { return "panel"; }
    std::uint32_t Reserved6(void*) override { return 1; }
    bool GetBounds(IPanelRect*) override { return false; }
    std::uint32_t GetState() override { return m_state; }
    void SetState(std::uint32_t what, std::uint32_t value) override {
        if (what == KXP_PANEL_STATE || (Has("panels") && what == KXP_PANEL_VISIBLE && value == 0))
            m_state = value;
        if (Has("panels") && m_state == 0)
            std::abort();
    }

private:
    ~Panel() = default;

    std::uint32_t m_state = 1;
};

class Device final : public IKXPDevice {
public:
    Device(std::vector<Device*>& list, IMInterface* host)
        : m_list(list) {
        m_list.push_back(this);
        if (auto* manager = QueryFace<IManagerRemoteManager2>(host, "IManagerRemoteManager2"))
            m_link = manager->GetRemote(this);
        if (auto* manager = QueryFace<IManagerRemoteManager>(host, "IManagerRemoteManager"))
            m_olderLink = manager->GetRemote();
        m_info = QueryFace<IManagerRuntimeInfo>(host, "IManagerRuntimeInfo");
    }

    /// The module is gone.
    void Orphan(bool isTerminated) {
        Halt();
        m_isOrphan = true;
        m_startsAgain = isTerminated && Has("module-goes-first");
    }

    KXPCode QueryInterface(const char* name, void** out) override {
        if (m_isOrphan)
            return AnswerFace(name, out, {});
        if (Has("faces") && name != nullptr && std::strcmp(name, "INobodyHasThis") == 0)
            return KXP_OK;
        return AnswerFace(
            name, out,
            {{"IMInterface", static_cast<IMInterface*>(this)}, {"IKXPDevice", static_cast<IKXPDevice*>(this)}});
    }
    KXPCode Release() override {
        Halt();
        if (!m_isOrphan)
            Forget();
        delete this;
        return KXP_OK;
    }
    void SetDeviceVariables(IDeviceVariables* variables) override { m_variables = variables; }
    KXPCode QueryCapability(std::uint32_t code) override {
        return !m_isOrphan && (code == 1 || code == 2) ? KXP_OK : KXP_NO;
    }
    void SetName(const char* name) override {
        m_name = name != nullptr ? name : "";
        if (Has("huge-arguments") && m_name.size() > 1000)
            std::abort();
        for (char& letter : m_name)
            if (Has("latin-1-arguments"))
                letter = static_cast<char>(letter & 0x7F);
    }
    const char* GetName() override { return m_name.c_str(); }
    KXPCode ShowSetup(void*) override { return KXP_CANCELLED; }
    KXPCode IsRunning() override { return m_isRunning || m_isBelieved ? KXP_OK : KXP_NO; }
    KXPCode Start() override {
        if (m_isOrphan)
            return m_startsAgain ? KXP_OK : KXPCode{KXP_NOT_IMPLEMENTED};
        if (m_isRunning)
            return KXP_OK;
        if (Has("stops-and-starts") && ++m_starts > 30)
            return KXP_OK;
        m_level = m_variables != nullptr ? m_variables->GetVariable("Level") : nullptr;
        m_isRunning = true;
        m_thread = std::thread([this] { Serve(); });
        return KXP_OK;
    }
    KXPCode Stop() override { return m_isOrphan ? KXPCode{KXP_NOT_IMPLEMENTED} : Halt(); }
    KXPCode OnTimerailEvent(ITimeData*, std::int32_t action) override {
        if (m_isOrphan)
            return KXP_NOT_IMPLEMENTED;
        if (Has("wrong-orders") && action == 1)
            m_isBelieved = true;
        return Has("garbage-arguments") && action == -512 ? KXPCode{KXP_BAD_COMMAND} : KXPCode{KXP_OK};
    }
    KXPBitmap GetBitmap() override { return nullptr; }
    KXPCode GetSetup(char** out) override {
        if (out == nullptr)
            return KXP_NULL_ARGUMENT;
        if (m_isOrphan)
            return KXP_NOT_IMPLEMENTED;
        *out = Copy(m_setup);
        return KXP_OK;
    }
    KXPCode SetSetup(const char* setup) override {
        if (setup == nullptr || *setup == '\0')
            return KXP_NULL_ARGUMENT;
        if (m_isOrphan)
            return KXP_NOT_IMPLEMENTED;
        const std::string text = setup;
        if (Has("walks") && text == "<Other/>")
            return KXP_NULL_ARGUMENT;
        const bool isWhole = text.size() > 13 && text.compare(text.size() - 13, 13, "</DeviceData>") == 0;
        if (Has("broken-setups") && text.rfind("<DeviceData", 0) == 0)
            m_setup = text;
        if (text.rfind("<DeviceData", 0) != 0)
            return KXP_BAD_SETUP;
        if (!isWhole)
            return KXP_NULL_ARGUMENT;
        m_setup = text;
        if (Has("setup-round-trips") && text.find('\xE4') != std::string::npos)
            m_setup.insert(m_setup.find('\xE4'), 1, '\xE4');
        m_name = "desk";
        Replace();
        return KXP_OK;
    }
    KXPCode UpdateCommand(const char*, char** out) override {
        if (Has("null-arguments"))
            *out = nullptr;
        return KXP_NOT_IMPLEMENTED;
    }
    KXPCode Reserved14(void*) override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved15(void*) override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved16(void*) override { return KXP_NOT_IMPLEMENTED; }
    KXPCode ExecuteCommand(std::int32_t id, IObjectParams* params, IExecContext* context) override {
        if (params == nullptr || params->GetParamCount() == 0 || (id != 1 && id != 3))
            return KXP_BAD_COMMAND;
        if (id == 1)
            return KXP_OK;
        if (params->GetParamCount() < 10)
            return KXP_BAD_COMMAND;
        if (!m_isRunning && !Has("release-at-any-instant"))
            return KXP_SCRIPT_FAILED;
        const std::string function = TextOf(*params->GetParam(0));
        IData* argument = params->GetParam(2);
        char* text = argument->GetValueAsString();
        const std::string copy = text != nullptr ? text : "";
        if (!Has("texts-given-back"))
            argument->ReleaseString(&text);
        Take({function, params->GetParam(1), copy, context, argument});
        return KXP_OK;
    }
    KXPCode ReleaseString(char** text) override {
        if (text == nullptr || *text == nullptr)
            return KXP_NULL_ARGUMENT;
        std::free(*text);
        *text = nullptr;
        return KXP_OK;
    }
    const char* GetDefinition() override { return kDefinition; }
    KXPCode Reserved20() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode CreatePanel(std::uint32_t kind, IKXPDevicePanel** out) override {
        if (out == nullptr)
            return KXP_NULL_ARGUMENT;
        if (m_isOrphan || kind != 1)
            return KXP_NOT_IMPLEMENTED;
        *out = new Panel;
        return KXP_OK;
    }

private:
    ~Device() = default;

    void Forget() {
        if (Has("many-devices") && m_list.size() > 8)
            return;
        for (auto place = m_list.begin(); place != m_list.end(); ++place)
            if (*place == this) {
                m_list.erase(place);
                return;
            }
    }

    /// The values of before go: the new ones are asked for behind it.
    void Replace() {
        const std::lock_guard<std::recursive_mutex> guard(m_values);
        if (m_variables == nullptr)
            return;
        m_variables->SetDefinition(kDefinition);
        if (!Has("values-after-definition") || ++m_replaced < 25)
            m_level = m_isRunning ? m_variables->GetVariable("Level") : nullptr;
    }

    KXPCode Halt() {
        {
            const std::lock_guard<std::mutex> guard(m_lock);
            if (!m_isRunning.exchange(false))
                return KXP_OK;
        }
        m_changed.notify_all();
        m_thread.join();
        EndAll();
        return KXP_OK;
    }

    /// The host is never called with the lock held: it may come back. A command that the stop has overtaken ends at
    /// once.
    void Take(const Request& request) {
        std::unique_lock<std::mutex> guard(m_lock);
        const bool isLong = ++m_taken > 100;
        guard.unlock();
        if (request.context != nullptr && !(isLong && Has("contexts-end-once")))
            request.context->Begin();
        guard.lock();
        if (m_isRunning || Has("release-at-any-instant")) {
            m_requests.push_back(request);
            guard.unlock();
            m_changed.notify_all();
            return;
        }
        guard.unlock();
        if (request.context != nullptr)
            request.context->End();
    }

    void EndAll() {
        std::deque<Request> left;
        {
            const std::lock_guard<std::mutex> guard(m_lock);
            left.swap(m_requests);
        }
        for (const Request& request : left)
            if (request.context != nullptr)
                request.context->End();
    }

    void Serve() {
        int count = 0;
        while (m_isRunning) {
            Tick(++count);
            std::unique_lock<std::mutex> guard(m_lock);
            m_changed.wait_for(guard, std::chrono::milliseconds(1), [this] { return !m_requests.empty(); });
            if (m_requests.empty() || !m_isRunning)
                continue;
            const Request request = m_requests.front();
            m_requests.pop_front();
            guard.unlock();
            Work(request);
        }
        for (Question* question : m_later)
            question->Release();
        m_later.clear();
    }

    void Tick(int count) {
        for (auto place = m_later.begin(); place != m_later.end();)
            if ((*place)->IsEnded()) {
                Write("Got", (*place)->Text());
                (*place)->Release();
                place = m_later.erase(place);
            } else {
                ++place;
            }
        std::unique_lock<std::mutex> held(m_lock, std::defer_lock);
        if (Has("calls-from-inside"))
            held.lock();
        const std::lock_guard<std::recursive_mutex> guard(m_values);
        if (m_level != nullptr)
            m_level->SetIntValue(count, 0, 0);
    }

    void Work(const Request& request) {
        static std::mutex one;
        std::unique_lock<std::mutex> alone(one, std::defer_lock);
        if (Has("runaway-scripts"))
            alone.lock();
        if (Has("threads-as-promised"))
            m_info->GetMainWindow();
        if (request.function == "Run")
            RunAway();
        else if (request.function == "Ask" || request.function == "AskLater")
            Ask(request.function == "Ask");
        request.result->SetValueFromString(request.argument.c_str(), 0, 0);
        if (request.context != nullptr)
            request.context->End();
        if (Has("parameters-after-end") && request.argument.size() > 1000)
            request.argumentValue->GetIntValue();
    }

    /// As a script that never returns.
    void RunAway() {
        Write("Level", "77");
        while (m_isRunning)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

    /// @param waits for the answer; else a later tick writes it.
    void Ask(bool waits) {
        if (m_link == nullptr) {
            AskOlder();
            return;
        }
        auto* question = new Question;
        const KXPCode code = m_link->Perform("host", "", "", question, nullptr);
        if (!waits) {
            m_later.push_back(question);
            return;
        }
        while (code == KXP_PENDING && question->IsBegun() && !question->IsEnded() && m_isRunning)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        Write("Got", code == KXP_OK || code == KXP_PENDING ? question->Text() : "");
        question->Release();
    }

    void AskOlder() {
        char* text = nullptr;
        m_olderLink->Perform("host", "", "", &text);
        Write("Got", text);
        if (!Has("older-link"))
            m_olderLink->FreeText(&text);
    }

    void Write(const char* variable, const std::string& text) {
        const std::lock_guard<std::recursive_mutex> guard(m_values);
        if (IData* value = m_variables != nullptr ? m_variables->GetVariable(variable) : nullptr)
            value->SetValueFromString(text.c_str(), 0, 0);
    }

    std::vector<Device*>& m_list;
    IDeviceVariables* m_variables = nullptr;
    IManagerRemote2* m_link = nullptr;
    IManagerRemote* m_olderLink = nullptr;
    IManagerRuntimeInfo* m_info = nullptr;
    std::vector<Question*> m_later; ///< of the device's thread
    std::string m_name;
    std::string m_setup = "<DeviceData Version=\"1000\"></DeviceData>";
    std::atomic<bool> m_isRunning{false};
    bool m_isOrphan = false;
    bool m_isBelieved = false; ///< for a fault alone, as the next
    bool m_startsAgain = false;
    int m_starts = 0;
    int m_replaced = 0;
    int m_taken = 0;               ///< behind m_lock
    std::recursive_mutex m_values; ///< guards m_level and what it points to; the host may come back
    IData* m_level = nullptr;
    std::mutex m_lock; ///< guards m_requests
    std::condition_variable m_changed;
    std::deque<Request> m_requests;
    std::thread m_thread;
};

/// Makes nothing.
class Factory final : public IObjectFactory {
public:
    KXPCode QueryInterface(const char* name, void** out) override { return AnswerFace(name, out, {}); }
    KXPCode Release() override { return KXP_OK; }
    IMInterface* CreateObject(const char*) override { return nullptr; }
};

class Module final : public IKXPModule {
public:
    KXPCode QueryInterface(const char* name, void** out) override {
        return AnswerFace(name, out, {{"IKXPModule", static_cast<IKXPModule*>(this)}});
    }
    KXPCode Release() override {
        for (Device* device : m_devices)
            device->Orphan(m_isTerminated);
        m_devices.clear();
        return KXP_OK;
    }
    KXPCode Initialize(IMInterface* host, void*, void*) override {
        m_host = host;
        m_isTerminated = false;
        auto* factories = QueryFace<IObjectFactoryManager>(host, "IObjectFactoryManager");
        for (const char* name : {"IOneSelector", "IOtherSelector"})
            if (Has("loads") && factories != nullptr)
                factories->RegisterFactory(name, &m_factory);
        if (Has("process-left-alone"))
            std::setlocale(LC_ALL, "C.UTF-8");
        if (Has("nothing-left-behind"))
            open("/dev/null", O_RDONLY);
        return KXP_OK;
    }
    KXPCode Terminate(void*) override {
        m_isTerminated = true;
        return KXP_OK;
    }
    KXPCode SetDeviceHost(void* host) override {
        m_deviceHost = host;
        return KXP_OK;
    }
    const char* GetDefinition() override { return kDefinition; }
    KXPCode GetModuleVersion(std::uint32_t* out) override {
        if (out != nullptr)
            *out = 999;
        return KXP_OK;
    }
    KXPCode GetDeviceCount(std::uint32_t* out) override {
        if (out != nullptr)
            *out = static_cast<std::uint32_t>(m_devices.size());
        return KXP_OK;
    }
    KXPCode CreateDevice(void*, IKXPDevice** out) override {
        if (out == nullptr || *out != nullptr)
            return KXP_NULL_ARGUMENT;
        if (m_deviceHost == nullptr)
            return KXP_NO_DEVICE_HOST;
        *out = new Device(m_devices, m_host);
        return KXP_OK;
    }
    IKXPDevice* GetDevice(std::uint32_t index) override {
        return index < m_devices.size() ? m_devices[index] : nullptr;
    }
    KXPCode CheckCommand(void*, IKXPDevice*, std::int32_t, IObjectParams*) override { return KXP_OK; }

private:
    std::vector<Device*> m_devices;
    void* m_deviceHost = nullptr;
    IMInterface* m_host = nullptr;
    bool m_isTerminated = false;
    Factory m_factory;
};

} // namespace

extern "C" __attribute__((visibility("default"))) KXPCode GetKXPEntryPoint(IKXPModule** out) {
    static Module module;
    if (out == nullptr)
        return KXP_NULL_ARGUMENT;
    *out = &module;
    return KXP_OK;
}
