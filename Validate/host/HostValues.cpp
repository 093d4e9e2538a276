#include "HostValues.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "FaceAnswer.h"

std::atomic<int> HostValue::s_textsOut{0};
std::atomic<int> HostContext::s_referencesOut{0};

HostValue::HostValue(const char* kind, std::string name, std::string text, const Hearing& hearing)
    : m_name(std::move(name))
    , m_text(std::move(text))
    , m_hearing(hearing) {
    GuardedName(this, kind);
}

void HostValue::Hear(const char* call) const {
    if (m_hearing)
        m_hearing(call);
}

std::string HostValue::Text() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_text;
}

std::size_t HostValue::Changes() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_changes;
}

KXPCode HostValue::QueryInterface(const char* name, void** out) {
    return AnswerFace(name, out,
                      {{"IMInterface", static_cast<IMInterface*>(this)},
                       {"IData", static_cast<IData*>(this)},
                       {"IObjectParam", static_cast<IObjectParam*>(this)}});
}

KXPCode HostValue::SetProperty(const char* name, const char* value, std::uint32_t, std::uint32_t) {
    if (name == nullptr)
        return KXP_NULL_ARGUMENT;
    const std::lock_guard<std::mutex> guard(m_lock);
    m_properties[name] = value != nullptr ? value : "";
    return KXP_OK;
}

const char* HostValue::GetProperty(const char* name) {
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto found = m_properties.find(name != nullptr ? name : "");
    return found != m_properties.end() ? found->second.c_str() : nullptr;
}

void HostValue::ReleaseString(char** text) {
    if (text == nullptr || *text == nullptr)
        return;
    GuardedFree(std::exchange(*text, nullptr));
    --s_textsOut;
}

std::int32_t HostValue::GetIntValue() {
    Hear("GetIntValue");
    return static_cast<std::int32_t>(std::strtol(Text().c_str(), nullptr, 10));
}

void HostValue::SetIntValue(std::int32_t value, std::uint32_t, std::uint32_t) {
    SetValueFromString(std::to_string(value).c_str(), 0, 0);
}

double HostValue::GetRealValue() {
    Hear("GetRealValue");
    return std::strtod(Text().c_str(), nullptr);
}

void HostValue::SetRealValue(double value, std::uint32_t, std::uint32_t) {
    SetValueFromString(std::to_string(value).c_str(), 0, 0);
}

/// The text stands in guarded memory as well.
char* HostValue::GetValueAsString() {
    Hear("GetValueAsString");
    if (!m_hasText)
        return nullptr;
    const std::string text = Text();
    char* const given = GuardedCopy(text.c_str(), text.size());
    GuardedName(given, "the text of a value");
    ++s_textsOut;
    return given;
}

void HostValue::SetValueFromString(const char* text, std::uint32_t, std::uint32_t) {
    Hear("SetValue");
    const std::lock_guard<std::mutex> guard(m_lock);
    m_text = text != nullptr ? text : "";
    ++m_changes;
}

std::string HostVariables::Text(const std::string& name) {
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto found = m_values.find(name);
    return found != m_values.end() ? found->second->Text() : std::string();
}

std::size_t HostVariables::Changes(const std::string& name) {
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto found = m_values.find(name);
    return found != m_values.end() ? found->second->Changes() : 0;
}

void HostVariables::Drop() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_values.clear();
}

KXPCode HostVariables::QueryInterface(const char* name, void** out) {
    return AnswerFace(
        name, out,
        {{"IMInterface", static_cast<IMInterface*>(this)}, {"IDeviceVariables", static_cast<IDeviceVariables*>(this)}});
}

IData* HostVariables::GetVariable(const char* name) {
    if (m_hearing)
        m_hearing("GetVariable");
    if (name == nullptr)
        return nullptr;
    const std::lock_guard<std::mutex> guard(m_lock);
    auto& value = m_values[name];
    if (!value)
        value = std::make_unique<HostValue>("a variable of the device", std::string("device.") + name, "", m_hearing);
    return value.get();
}

std::uint32_t HostVariables::SetDefinition(const char*) {
    if (m_hearing)
        m_hearing("SetDefinition");
    Drop();
    return 1;
}

HostParams::HostParams(const std::vector<std::string>& texts, const Hearing& hearing) {
    GuardedName(this, "the parameters of a command whose context has ended");
    for (const std::string& text : texts)
        m_values.push_back(
            std::make_unique<HostValue>("a parameter of a command whose context has ended", "param", text, hearing));
}

void HostParams::LoseTexts() {
    for (const auto& value : m_values)
        value->LoseText();
}

KXPCode HostParams::QueryInterface(const char* name, void** out) {
    return AnswerFace(
        name, out,
        {{"IMInterface", static_cast<IMInterface*>(this)}, {"IObjectParams", static_cast<IObjectParams*>(this)}});
}

KXPCode HostParams::SetProperty(const char* name, const char*, std::uint32_t, std::uint32_t) {
    return name != nullptr ? KXP_OK : KXPCode{KXP_NULL_ARGUMENT};
}

IObjectParam* HostParams::GetParam(std::uint32_t index) {
    return index < m_values.size() ? m_values[index].get() : nullptr;
}

bool ContextTally::WaitUntilEnded(std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> guard(lock);
    return changed.wait_for(guard, limit, [this] { return ended >= begun; });
}

HostContext::HostContext(ContextTally& tally, std::unique_ptr<HostParams> params, const Hearing& hearing)
    : m_tally(tally)
    , m_params(std::move(params))
    , m_hearing(hearing) {
    GuardedName(this, "a context that has ended");
}

KXPCode HostContext::QueryInterface(const char* name, void** out) {
    return AnswerFace(name, out,
                      {{"IMInterface", static_cast<IMInterface*>(this)},
                       {"IExecContext", static_cast<IExecContext*>(this)},
                       {"IExecContext2", static_cast<IExecContext2*>(this)}});
}

KXPCode HostContext::AddRef() {
    ++m_references;
    ++s_referencesOut;
    return KXP_OK;
}

KXPCode HostContext::Release() {
    --s_referencesOut;
    Drop();
    return KXP_OK;
}

void HostContext::Drop() {
    if (--m_references == 0)
        delete this;
}

void HostContext::Abandon() {
    m_params.reset();
    Drop();
}

KXPCode HostContext::Begin() {
    if (m_hearing)
        m_hearing("Begin");
    const std::lock_guard<std::mutex> guard(m_tally.lock);
    ++m_tally.begun;
    if (m_isBegun->exchange(true))
        ++m_tally.wrong;
    return KXP_OK;
}

KXPCode HostContext::End() {
    if (m_hearing)
        m_hearing("End");
    ContextTally& tally = m_tally;
    const bool isRight = *m_isBegun && !m_isEnded.exchange(true);
    if (isRight)
        Abandon();
    const std::lock_guard<std::mutex> guard(tally.lock);
    ++tally.ended;
    if (!isRight)
        ++tally.wrong;
    tally.changed.notify_all();
    return KXP_OK;
}
