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
#include "IKXPModule.h"
#include "IManagerRuntimeInfo.h"

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

/// A command that waits for the device's thread.
struct Request {
    IData* result;
    std::string argument;
    IExecContext* context;
    IData* argumentValue; ///< for the fault alone
};

class Device final : public IKXPDevice {
public:
    explicit Device(std::vector<Device*>& list)
        : m_list(list) {
        m_list.push_back(this);
    }

    /// The module is gone.
    void Orphan() {
        Halt();
        m_isOrphan = true;
    }

    KXPCode QueryInterface(const char* name, void** out) override {
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
    KXPCode QueryCapability(std::uint32_t code) override { return code == 1 || code == 2 ? KXP_OK : KXP_NO; }
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
    KXPCode IsRunning() override { return m_isRunning ? KXP_OK : KXP_NO; }
    KXPCode Start() override {
        if (m_isOrphan)
            return KXP_NOT_IMPLEMENTED;
        if (m_isRunning)
            return KXP_OK;
        if (Has("stops-and-starts") && ++m_starts > 30)
            return KXP_OK;
        m_level = m_variables != nullptr ? m_variables->GetVariable("Level") : nullptr;
        m_isRunning = true;
        m_thread = std::thread([this] { Serve(); });
        return KXP_OK;
    }
    KXPCode Stop() override {
        if (Has("walks"))
            return m_isRunning ? Halt() : KXPCode{KXP_NO};
        return Halt();
    }
    KXPCode OnTimerailEvent(ITimeData*, std::int32_t action) override {
        return Has("garbage-arguments") && action == -512 ? KXPCode{KXP_BAD_COMMAND} : KXPCode{KXP_OK};
    }
    KXPBitmap GetBitmap() override { return nullptr; }
    KXPCode GetSetup(char** out) override {
        if (out == nullptr)
            return KXP_NULL_ARGUMENT;
        *out = Copy(Has("setup-round-trips") ? m_setup + " " : m_setup);
        return KXP_OK;
    }
    KXPCode SetSetup(const char* setup) override {
        if (setup == nullptr || *setup == '\0')
            return KXP_NULL_ARGUMENT;
        const std::string text = setup;
        const bool isWhole = text.size() > 13 && text.compare(text.size() - 13, 13, "</DeviceData>") == 0;
        if (Has("broken-setups") && text.rfind("<DeviceData", 0) == 0)
            m_setup = text;
        if (text.rfind("<DeviceData", 0) != 0)
            return KXP_BAD_SETUP;
        if (!isWhole)
            return KXP_NULL_ARGUMENT;
        m_setup = text;
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
        IData* argument = params->GetParam(2);
        char* text = argument->GetValueAsString();
        const std::string copy = text != nullptr ? text : "";
        if (!Has("texts-given-back"))
            argument->ReleaseString(&text);
        Take({params->GetParam(1), copy, context, argument});
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
    KXPCode CreatePanel(std::uint32_t, IKXPDevicePanel** out) override {
        return out != nullptr ? KXP_NOT_IMPLEMENTED : KXPCode{KXP_NULL_ARGUMENT};
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
        const std::lock_guard<std::mutex> guard(m_values);
        if (m_variables == nullptr)
            return;
        m_variables->SetDefinition(kDefinition);
        if (!Has("values-after-definition") || ++m_replaced < 15)
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
    }

    void Tick(int count) {
        std::unique_lock<std::mutex> held(m_lock, std::defer_lock);
        if (Has("calls-from-inside"))
            held.lock();
        const std::lock_guard<std::mutex> guard(m_values);
        if (m_level != nullptr)
            m_level->SetIntValue(count, 0, 0);
    }

    static void Work(const Request& request) {
        request.result->SetValueFromString(request.argument.c_str(), 0, 0);
        if (request.context != nullptr)
            request.context->End();
        if (Has("parameters-after-end") && request.argument.size() > 1000)
            request.argumentValue->GetIntValue();
    }

    std::vector<Device*>& m_list;
    IDeviceVariables* m_variables = nullptr;
    std::string m_name;
    std::string m_setup = "<DeviceData Version=\"1000\"></DeviceData>";
    std::atomic<bool> m_isRunning{false};
    bool m_isOrphan = false;
    int m_starts = 0;
    int m_replaced = 0;
    int m_taken = 0;     ///< behind m_lock
    std::mutex m_values; ///< guards m_level and what it points to
    IData* m_level = nullptr;
    std::mutex m_lock; ///< guards m_requests
    std::condition_variable m_changed;
    std::deque<Request> m_requests;
    std::thread m_thread;
};

class Module final : public IKXPModule {
public:
    KXPCode QueryInterface(const char* name, void** out) override {
        return AnswerFace(name, out, {{"IKXPModule", static_cast<IKXPModule*>(this)}});
    }
    KXPCode Release() override {
        if (!Has("module-goes-first"))
            for (Device* device : m_devices)
                device->Orphan();
        m_devices.clear();
        return KXP_OK;
    }
    KXPCode Initialize(IMInterface*, void*, void*) override {
        if (Has("process-left-alone"))
            std::setlocale(LC_ALL, "C.UTF-8");
        if (Has("nothing-left-behind"))
            open("/dev/null", O_RDONLY);
        return KXP_OK;
    }
    KXPCode Terminate(void*) override { return KXP_OK; }
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
        *out = new Device(m_devices);
        return KXP_OK;
    }
    IKXPDevice* GetDevice(std::uint32_t index) override {
        return index < m_devices.size() ? m_devices[index] : nullptr;
    }
    KXPCode CheckCommand(void*, IKXPDevice*, std::int32_t, IObjectParams*) override { return KXP_OK; }

private:
    std::vector<Device*> m_devices;
    void* m_deviceHost = nullptr;
};

} // namespace

extern "C" __attribute__((visibility("default"))) KXPCode GetKXPEntryPoint(IKXPModule** out) {
    static Module module;
    if (out == nullptr)
        return KXP_NULL_ARGUMENT;
    *out = &module;
    return KXP_OK;
}
