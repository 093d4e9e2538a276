#include "FakeDevice.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include "FakeMood.h"

namespace {

constexpr std::uint32_t kFirstText = 2; // parameters 2 to 9 of command 3

char* Copy(const std::string& text) {
    char* copy = new char[text.size() + 1];
    std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

} // namespace

void FakeDevice::Gate::WaitForRelease() {
    std::unique_lock<std::mutex> hold(lock);
    changed.wait(hold, [this] { return released; });
}

void FakeDevice::Gate::Open() {
    const std::lock_guard<std::mutex> hold(lock);
    released = true;
    changed.notify_all();
}

FakeDevice::FakeDevice(const char* definition)
    : m_definition(definition) {}

KXPCode FakeDevice::QueryInterface(const char* name, void** out) {
    if (name == nullptr || out == nullptr)
        return KXP_BAD_INTERFACE_ARG;
    const bool offered = std::strcmp(name, "IMInterface") == 0 || std::strcmp(name, "IKXPDevice") == 0;
    *out = offered ? this : nullptr;
    return offered ? KXP_OK : KXP_NO_INTERFACE;
}

KXPCode FakeDevice::Release() {
    if (MoodIs("release-hangs"))
        m_gate->WaitForRelease();
    if (!MoodIs("start-hangs-for-good"))
        m_gate->Open();
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_running = false;
        m_queue.clear();
        m_changed.notify_all();
    }
    if (m_worker.joinable())
        m_worker.join();
    for (auto& helper : m_helpers)
        helper.join();
    {
        std::unique_lock<std::mutex> hold(m_lock);
        m_changed.wait(hold, [this] { return m_calls == 0; });
    }
    delete this;
    return KXP_OK;
}

void FakeDevice::SetDeviceVariables(IDeviceVariables* variables) {
    m_variables = variables;
}

KXPCode FakeDevice::QueryCapability(std::uint32_t) {
    return KXP_NO;
}

void FakeDevice::SetName(const char* name) {
    m_name = name;
}

const char* FakeDevice::GetName() {
    return m_name.c_str();
}

KXPCode FakeDevice::ShowSetup(void*) {
    return KXP_NOT_IMPLEMENTED;
}

KXPCode FakeDevice::IsRunning() {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_running ? KXP_OK : KXP_NO;
}

KXPCode FakeDevice::Start() {
    if (MoodIs("start-hangs") || MoodIs("start-hangs-for-good")) {
        const auto gate = m_gate;
        gate->WaitForRelease();
        return KXP_OK;
    }
    m_running = true;
    m_worker = std::thread([this] { Serve(); });
    return KXP_OK;
}

KXPCode FakeDevice::Stop() {
    std::unique_lock<std::mutex> hold(m_lock);
    ++m_calls;
    m_running = false;
    m_changed.notify_all();
    m_changed.wait(hold, [this] { return !m_busy; });
    --m_calls;
    m_changed.notify_all();
    return KXP_OK;
}

KXPCode FakeDevice::OnTimerailEvent(ITimeData*, std::int32_t) {
    return KXP_OK;
}

KXPBitmap FakeDevice::GetBitmap() {
    return nullptr;
}

KXPCode FakeDevice::GetSetup(char** out) {
    if (m_setup == "too large to give")
        return KXP_NOT_IMPLEMENTED;
    *out = Copy(m_setup.empty() ? "first setup" : m_setup);
    return KXP_OK;
}

KXPCode FakeDevice::SetSetup(const char* setup) {
    if (std::strcmp(setup, "bad") == 0)
        return KXP_BAD_SETUP;
    m_setup = setup;
    return m_variables->SetDefinition(m_definition.c_str()) == 1 ? KXP_OK : KXP_CANCELLED;
}

KXPCode FakeDevice::UpdateCommand(const char*, char**) {
    return KXP_NOT_IMPLEMENTED;
}

KXPCode FakeDevice::Reserved14(void*) {
    return KXP_OK;
}

KXPCode FakeDevice::Reserved15(void*) {
    return KXP_OK;
}

KXPCode FakeDevice::Reserved16(void*) {
    return KXP_OK;
}

KXPCode FakeDevice::ExecuteCommand(std::int32_t id, IObjectParams* params, IExecContext* context) {
    const std::string text = ParamText(params, 0);
    if (id == 0) {
        Post([this, text] {
            std::ifstream file(text, std::ios::binary);
            std::ostringstream content;
            content << file.rdbuf();
            Load(content.str(), file.good());
        });
        return KXP_OK;
    }
    if (id == 1) {
        Post([this, text] { Load(text, true); });
        return KXP_OK;
    }
    return id == 2 || id == 3 ? Execute(text, params, id == 3 ? context : nullptr) : KXP_BAD_COMMAND;
}

KXPCode FakeDevice::ReleaseString(char** text) {
    delete[] * text;
    *text = nullptr;
    return KXP_OK;
}

const char* FakeDevice::GetDefinition() {
    return MoodIs("no-definition") ? nullptr : m_definition.c_str();
}

KXPCode FakeDevice::Reserved20() {
    return KXP_OK;
}

KXPCode FakeDevice::CreatePanel(std::uint32_t, IKXPDevicePanel**) {
    return KXP_NOT_IMPLEMENTED;
}

void FakeDevice::Serve() {
    std::unique_lock<std::mutex> hold(m_lock);
    for (;;) {
        m_changed.wait(hold, [this] { return !m_running || !m_queue.empty(); });
        if (!m_running)
            return;
        const Work work = std::move(m_queue.front());
        m_queue.pop_front();
        m_busy = true;
        hold.unlock();
        work();
        hold.lock();
        m_busy = false;
        m_changed.notify_all();
    }
}

void FakeDevice::Post(Work work) {
    const std::lock_guard<std::mutex> hold(m_lock);
    m_queue.push_back(std::move(work));
    m_changed.notify_all();
}

void FakeDevice::Set(const char* variable, const std::string& text) {
    if (IData* data = m_variables->GetVariable(variable))
        data->SetValueFromString(text.c_str(), 0, 0);
}

void FakeDevice::SetStatus(std::int32_t index) {
    if (auto* status = QueryFace<IEnumData>(m_variables->GetVariable("Status"), "IEnumData"))
        status->SetCurrent(index, 0, 0);
}

void FakeDevice::Load(const std::string& text, bool readable) {
    Set("Error", "");
    SetStatus(1);
    const FakeScript script = FakeScript::Parse(text);
    if (script.hangs)
        m_gate->WaitForRelease();
    if (!readable)
        Set("Error", "This file cannot be loaded.");
    else if (!script.error.empty())
        Set("Error", script.error);
    else
        m_script = script;
    Set("ScriptFunctions", m_script.FunctionList());
    SetStatus(0);
}

KXPCode FakeDevice::Execute(const std::string& name, IObjectParams* params, IExecContext* context) {
    const auto function = m_script.functions.find(name);
    if (function == m_script.functions.end())
        return KXP_SCRIPT_FAILED;
    const std::string way = function->second;
    if (way.rfind("refuse ", 0) == 0)
        return static_cast<KXPCode>(std::atoi(way.c_str() + 7));
    if (way == "block") {
        const auto gate = m_gate;
        gate->WaitForRelease();
        return KXP_OK;
    }
    if (context != nullptr)
        context->Begin();
    if (way == "early" && context != nullptr) {
        SetResult(params, "early");
        context->End();
        return KXP_OK;
    }
    Post([this, way, params, context] { Behave(way, params, context); });
    return KXP_OK;
}

void FakeDevice::Behave(const std::string& way, IObjectParams* params, IExecContext* context) {
    const std::string verb = way.substr(0, way.find(' '));
    const std::string text = way.size() > verb.size() ? way.substr(verb.size() + 1) : std::string();
    Set("Error", "");
    SetStatus(2);
    if (verb == "hang")
        m_gate->WaitForRelease();
    if (verb == "fail" || verb == "held")
        Set("Error", text);
    if (verb == "say")
        SetResult(params, text);
    if (verb == "echo") {
        std::string joined = ParamText(params, kFirstText);
        for (std::uint32_t index = kFirstText + 1; index < params->GetParamCount(); ++index)
            joined += "|" + ParamText(params, index);
        SetResult(params, joined);
    }
    SetStatus(0);
    if (context == nullptr || verb == "held" || verb == "never" || verb == "hang")
        return;
    if (verb == "elsewhere") {
        m_helpers.emplace_back([params, context] {
            SetResult(params, "elsewhere");
            context->End();
        });
        return;
    }
    auto* counted = QueryFace<IExecContext2>(context, "IExecContext2");
    if (verb == "twice")
        counted->AddRef();
    context->End();
    if (verb != "twice")
        return;
    counted->End();
    counted->Release();
}

std::string FakeDevice::ParamText(IObjectParams* params, std::uint32_t index) {
    IObjectParam* param = params->GetParam(index);
    if (param == nullptr)
        return {};
    IData* data = param->GetValue(0) != nullptr ? param->GetValue(0) : param;
    char* text = data->GetValueAsString();
    std::string copy = text;
    data->ReleaseString(&text);
    return copy;
}

void FakeDevice::SetResult(IObjectParams* params, const std::string& text) {
    IObjectParam* param = params->GetParam(1);
    if (param == nullptr)
        return;
    IData* data = param->GetValue(0) != nullptr ? param->GetValue(0) : param;
    data->SetValueFromString(text.c_str(), 0, 0);
}
