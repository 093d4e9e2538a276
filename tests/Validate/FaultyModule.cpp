#include <algorithm>
#include <atomic>
#include <chrono>
#include <clocale>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "FaceAnswer.h"
#include "FaultyParts.h"
#include "IKXPDevicePanel.h"
#include "IKXPModule.h"
#include "IManagerRemote.h"
#include "IManagerRuntimeInfo.h"
#include "IObjectFactory.h"
#include "IObjectFactoryManager.h"

/// @file
/// A small module that keeps the contract, but for one fault of choice: KXP_FAULT in the environment is the name of the
/// validator's case that has to find it, with ":" and a word behind it where the case finds several. What begins with
/// "allowed:" is no fault, and nothing may be found.

namespace {

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
        if (m_isOrphan && !Has("allowed:faces-of-orphans"))
            return Refusal(AnswerFace(name, out, {}));
        if (Has("faces") && name != nullptr && std::strcmp(name, "INobodyHasThis") == 0)
            return KXP_OK;
        return AnswerFace(
            FaceNamed(name), out,
            {{"IMInterface", static_cast<IMInterface*>(this)}, {"IKXPDevice", static_cast<IKXPDevice*>(this)}});
    }
    KXPCode Release() override {
        if (Has("stated-answers:slow-release") || (Has("release-at-any-instant:slow-release") && m_hasForeigners))
            std::this_thread::sleep_for(std::chrono::milliseconds(2100));
        Halt();
        if (Has("host-objects-kept:variables") && m_name == "desk" && m_variables != nullptr)
            m_variables->Release();
        if (!m_isOrphan)
            Forget();
        m_isReleased = true;
        if (m_inside == 0)
            Go();
        return KXP_OK;
    }
    void SetDeviceVariables(IDeviceVariables* variables) override { m_variables = variables; }
    KXPCode QueryCapability(std::uint32_t code) override {
        if (m_isOrphan)
            return Refusal(KXP_NO);
        return code == 1 || code == 2 || (code == 3 && Has("stated-answers:capability")) ? KXP_OK : KXP_NO;
    }
    void SetName(const char* name) override {
        m_name = name != nullptr ? name : "";
        if (Has("stated-answers:short-name") && m_name.find_first_not_of('n') == std::string::npos)
            m_name.resize(std::min<std::size_t>(m_name.size(), 20));
        if (Has("huge-arguments") && m_name.size() > 1000)
            std::abort();
        for (char& letter : m_name)
            if (Has("latin-1-arguments"))
                letter = static_cast<char>(letter & 0x7F);
    }
    const char* GetName() override { return m_name.c_str(); }
    KXPCode ShowSetup(void*) override { return m_isOrphan ? Refusal(KXP_CANCELLED) : KXPCode{KXP_CANCELLED}; }
    KXPCode IsRunning() override {
        if (m_isOrphan && !m_isBelieved)
            return Refusal(KXP_NO);
        return m_isRunning || m_isBelieved ? KXP_OK : KXP_NO;
    }
    KXPCode Start() override {
        if (m_isOrphan)
            return m_startsAgain ? KXP_OK : KXPCode{KXP_NOT_IMPLEMENTED};
        if (m_isRunning)
            return KXP_OK;
        if (Has("stated-answers:exception") && m_name == "stated")
            throw Stumble();
        const Inside inside(*this);
        if (Has("given-back:start") && ++m_starts > 1)
            Leak(400);
        if (Has("stops-and-starts") && ++m_starts > 30)
            return KXP_OK;
        m_level = m_variables != nullptr ? m_variables->GetVariable("Level") : nullptr;
        if (!Has("allowed:no-script"))
            Write("ScriptFunctions", Functions());
        if (m_isReleased)
            return KXP_NOT_IMPLEMENTED;
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
        const Inside inside(*this);
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
        if (!Has("walks:name") || !m_isRunning)
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
        if (Has("allowed:no-script") || (!m_isRunning && !Has("release-at-any-instant")))
            return KXP_SCRIPT_FAILED;
        const Inside inside(*this);
        if (std::this_thread::get_id() != m_maker)
            m_hasForeigners = true;
        const std::string function = TextOf(*params->GetParam(0));
        IData* argument = params->GetParam(2);
        char* text = argument->GetValueAsString();
        const std::string copy = text != nullptr ? text : "";
        if (Has("texts-given-back:overrun") && copy == "x" && ++m_asked > 250 && !m_hasForeigners)
            text[copy.size() + 1] = 'x';
        if (!Has("texts-given-back"))
            argument->ReleaseString(&text);
        if (Has("texts-given-back:refused") && copy == "x" && ++m_asked > 250 && !m_hasForeigners)
            return KXP_SCRIPT_FAILED;
        if (Has("parameters-after-end:refused") && copy == std::string(100000, 'x'))
            return KXP_SCRIPT_FAILED;
        if (auto* counted = QueryFace<IExecContext2>(context, "IExecContext2")) {
            counted->AddRef();
            Take({function, params->GetParam(1), copy, counted, argument, counted});
            return KXP_OK;
        }
        Take({function, params->GetParam(1), copy, context, argument, nullptr});
        return KXP_OK;
    }
    KXPCode ReleaseString(char** text) override {
        if (text == nullptr || *text == nullptr)
            return KXP_NULL_ARGUMENT;
        if (!Has("given-back:text"))
            std::free(*text);
        if (!Has("stated-answers:not-cleared") || m_name != "stated")
            *text = nullptr;
        return KXP_OK;
    }
    const char* GetDefinition() override { return Definition(); }
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
    /// The host may release the device from what it is asked inside of it.
    struct Inside {
        explicit Inside(Device& entered)
            : device(entered) {
            ++device.m_inside;
        }
        ~Inside() {
            if (--device.m_inside == 0 && device.m_isReleased)
                device.Go();
        }
        Inside(const Inside&) = delete;
        Inside& operator=(const Inside&) = delete;
        Device& device;
    };

    ~Device() = default;

    void Go() {
        if (Has("given-back:device"))
            this->~Device();
        else
            delete this;
    }

    /// Of the script, which nobody runs: some are known by their names.
    std::string Functions() const {
        std::string names;
        for (const char* name : {"Work", "Ask", "AskLater", "Run"})
            if (m_setup.find(std::string(" ") + name + ": function") != std::string::npos)
                names += std::string(name) + "\n";
        return names;
    }

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
        if (m_variables == nullptr)
            return;
        const bool forgets = !Has("values-after-definition") || ++m_replaced < 25;
        if (forgets)
            SetLevel(nullptr);
        ++m_replacing;
        m_variables->SetDefinition(kDefinition);
        --m_replacing;
        if (m_isReleased && !Has("released-when-asked"))
            return;
        IData* const level = m_isRunning || Has("released-when-asked") ? m_variables->GetVariable("Level") : nullptr;
        if (forgets && m_replacing == 0)
            SetLevel(level);
    }

    /// Nobody is inside the one of before when it returns.
    void SetLevel(IData* level) {
        const std::lock_guard<std::recursive_mutex> guard(m_values);
        m_level = level;
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
        request.End();
    }

    void EndAll() {
        std::deque<Request> left;
        {
            const std::lock_guard<std::mutex> guard(m_lock);
            left.swap(m_requests);
        }
        for (const Request& request : left)
            request.End();
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
        request.End();
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
        if (Has("requests-answered:heap"))
            Overwrite();
        if (Has("requests-answered:double-free"))
            FreeTwice();
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

    void Overwrite() {
        auto* const block = static_cast<volatile char*>(std::malloc(m_bytes));
        for (std::size_t place = 0; place <= m_bytes; ++place)
            block[place] = 'x';
        std::free(const_cast<char*>(block));
    }

    void FreeTwice() {
        void* volatile block = std::malloc(m_bytes);
        void* volatile again = block;
        std::free(block);
        std::free(again);
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
        IData* const value = m_variables != nullptr && !m_isReleased ? m_variables->GetVariable(variable) : nullptr;
        if (value != nullptr && !m_isReleased)
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
    std::atomic<bool> m_isReleased{false};
    std::atomic<int> m_inside{0}; ///< operations that may ask the host
    bool m_isBelieved = false;    ///< for a fault alone, as the next
    bool m_startsAgain = false;
    std::atomic<bool> m_hasForeigners{false}; ///< commands came on other threads than the one that made the device
    const std::thread::id m_maker = std::this_thread::get_id();
    volatile std::size_t m_bytes = 24;
    int m_asked = 0;
    int m_starts = 0;
    int m_replaced = 0;
    int m_replacing = 0;           ///< definitions that the host is just taking, one inside the other
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
        for (Device* device : std::vector<Device*>(m_devices))
            if (Has("module-goes-first:deletes-devices") && m_isTerminated && device->IsRunning() == KXP_OK)
                device->Release();
            else
                device->Orphan(m_isTerminated);
        m_devices.clear();
        if (Has("module-goes-first:deletes-itself"))
            Replace();
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
        if (Has("process-left-alone:output"))
            std::puts("{\"case\":\"faces\",\"result\":\"passed\"}");
        if (Has("process-left-alone:closed-output"))
            close(STDOUT_FILENO);
        if (Has("nothing-left-behind"))
            open("/dev/null", O_RDONLY);
        if (Has("nothing-left-behind:memory"))
            Leak(5000);
        return KXP_OK;
    }
    KXPCode Terminate(void*) override {
        if (Has("host-objects-kept") && m_host != nullptr)
            m_host->Release();
        m_isTerminated = true;
        return KXP_OK;
    }
    KXPCode SetDeviceHost(void* host) override {
        m_hasMet = true;
        m_deviceHost = host;
        return KXP_OK;
    }
    const char* GetDefinition() override { return Definition(); }
    KXPCode GetModuleVersion(std::uint32_t* out) override {
        if (out != nullptr)
            *out = Has("stated-answers:version") ? 998 : 999;
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
        if (m_deviceHost == nullptr && !(Has("stated-answers:no-device-host") && !m_hasMet))
            return KXP_NO_DEVICE_HOST;
        *out = new Device(m_devices, m_host);
        return KXP_OK;
    }
    IKXPDevice* GetDevice(std::uint32_t index) override {
        return index < m_devices.size() ? m_devices[index] : nullptr;
    }
    KXPCode CheckCommand(void*, IKXPDevice* device, std::int32_t id, IObjectParams*) override {
        const bool isOurs = std::find(m_devices.begin(), m_devices.end(), device) != m_devices.end();
        const bool isKnown = (id == 1 || id == 3) && !Has("stated-answers:all-commands-gone");
        return isOurs && !isKnown && !Has("stated-answers:no-command-gone") ? KXP_COMMANDS_CHANGED : KXP_OK;
    }

    /// The one module of the process.
    static Module*& Instance() {
        static Module* instance = new Module;
        return instance;
    }

private:
    ~Module() = default;

    void Replace() {
        Instance() = new Module;
        delete this;
    }

    std::vector<Device*> m_devices;
    void* m_deviceHost = nullptr;
    bool m_hasMet = false; ///< for a fault alone: SetDeviceHost was called
    IMInterface* m_host = nullptr;
    bool m_isTerminated = false;
    Factory m_factory;
};

} // namespace

extern "C" __attribute__((visibility("default"))) KXPCode GetKXPEntryPoint(IKXPModule** out) {
    static Module* const other = new Module;
    static int calls = 0;
    if (out == nullptr)
        return KXP_NULL_ARGUMENT;
    *out = Has("stated-answers:entry-point") && calls++ > 0 ? other : Module::Instance();
    return KXP_OK;
}
