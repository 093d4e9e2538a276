#include "PlainHost.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>

namespace plain {

std::atomic<int> Value::s_outstanding{0};

namespace {

template <typename Condition>
bool WaitUntil(std::mutex& lock, std::condition_variable& changed, int deadlineMs, Condition condition) {
    std::unique_lock<std::mutex> guard(lock);
    return changed.wait_for(guard, std::chrono::milliseconds(deadlineMs), condition);
}

KXPCode Answer(const char* name, void** out, const char* face, void* pointer) {
    if (name == nullptr || out == nullptr)
        return KXP_BAD_INTERFACE_ARG;
    const bool match = std::strcmp(name, face) == 0;
    *out = match ? pointer : nullptr;
    return match ? KXP_OK : KXPCode{KXP_NO_INTERFACE};
}

} // namespace

Value::Value(std::string name, std::uint32_t type, std::string text)
    : m_name(std::move(name))
    , m_type(type)
    , m_text(std::move(text)) {}

std::string Value::Text() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_text;
}

std::vector<std::string> Value::History() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_history;
}

bool Value::WaitFor(const std::string& text, int deadlineMs) const {
    return WaitUntil(m_lock, m_changed, deadlineMs, [&] { return m_text == text; });
}

bool Value::WaitForHistory(std::size_t count, int deadlineMs) const {
    return WaitUntil(m_lock, m_changed, deadlineMs, [&] { return m_history.size() >= count; });
}

KXPCode Value::QueryInterface(const char* name, void** out) {
    return Answer(name, out, "IStringData", nullptr);
}

KXPCode Value::SetProperty(const char* name, const char* value, std::uint32_t, std::uint32_t) {
    m_properties[name] = value;
    return KXP_OK;
}

const char* Value::GetProperty(const char* name) {
    const auto found = m_properties.find(name);
    return found != m_properties.end() ? found->second.c_str() : nullptr;
}

void Value::ReleaseString(char** text) {
    if (text == nullptr || *text == nullptr)
        return;
    std::free(*text);
    *text = nullptr;
    --s_outstanding;
}

std::int32_t Value::GetIntValue() {
    return std::atoi(Text().c_str());
}

void Value::SetIntValue(std::int32_t value, std::uint32_t, std::uint32_t) {
    SetValueFromString(std::to_string(value).c_str(), 0, 0);
}

double Value::GetRealValue() {
    return std::atof(Text().c_str());
}

void Value::SetRealValue(double value, std::uint32_t, std::uint32_t) {
    SetValueFromString(std::to_string(value).c_str(), 0, 0);
}

char* Value::GetValueAsString() {
    if (m_givesNullText)
        return nullptr;
    const std::string text = Text();
    auto* copy = static_cast<char*>(std::malloc(text.size() + 1));
    std::memcpy(copy, text.c_str(), text.size() + 1);
    ++s_outstanding;
    return copy;
}

void Value::SetValueFromString(const char* text, std::uint32_t, std::uint32_t) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_text = text;
    if (m_keepsHistory)
        m_history.push_back(m_text);
    m_changed.notify_all();
}

KXPCode EnumValue::QueryInterface(const char* name, void** out) {
    return Answer(name, out, "IEnumData", static_cast<IEnumData*>(this));
}

Variables::Variables() = default;

KXPCode Variables::QueryInterface(const char* name, void** out) {
    return Answer(name, out, "IDeviceVariables", this);
}

IData* Variables::GetVariable(const char* name) {
    if (std::strcmp(name, "Status") == 0)
        return &status;
    for (Value* value : {&error, &fileName, &scriptText, &functions})
        if (std::strcmp(name, value->GetName()) == 0)
            return value;
    return nullptr;
}

std::uint32_t Variables::SetDefinition(const char* xml) {
    definition = xml != nullptr ? xml : "";
    return definition.empty() ? 0 : 1;
}

Params::Params(const std::vector<std::string>& texts, std::size_t count) {
    for (const std::string& text : texts)
        m_params.push_back(std::make_unique<Value>("Param", KXP_STRING_DATA, text));
    while (m_params.size() < count)
        m_params.push_back(std::make_unique<Value>("Param"));
}

std::unique_ptr<Params> Params::ForFunction(const std::string& function, const std::vector<std::string>& arguments) {
    std::vector<std::string> texts{function, ""};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    auto params = std::make_unique<Params>(texts, 10);
    for (std::size_t i = texts.size(); i < 10; ++i)
        params->At(i).m_givesNullText = true;
    return params;
}

KXPCode Params::QueryInterface(const char* name, void** out) {
    return Answer(name, out, "IObjectParams", this);
}

KXPCode Params::SetProperty(const char* name, const char* value, std::uint32_t, std::uint32_t) {
    m_properties[name] = value;
    return KXP_OK;
}

const char* Params::GetProperty(const char* name) {
    const auto found = m_properties.find(name);
    return found != m_properties.end() ? found->second.c_str() : nullptr;
}

IObjectParam* Params::GetParam(std::uint32_t index) {
    return index < m_params.size() ? m_params[index].get() : nullptr;
}

bool Context::WaitForEnd(int deadlineMs) const {
    return WaitUntil(m_lock, m_changed, deadlineMs, [&] { return m_ended > 0; });
}

int Context::Begun() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_begun;
}

int Context::Ended() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_ended;
}

KXPCode Context::QueryInterface(const char* name, void** out) {
    return Answer(name, out, "IExecContext", this);
}

KXPCode Context::Begin() {
    const std::lock_guard<std::mutex> guard(m_lock);
    ++m_begun;
    return KXP_OK;
}

KXPCode Context::End() {
    const std::lock_guard<std::mutex> guard(m_lock);
    ++m_ended;
    m_changed.notify_all();
    return KXP_OK;
}

KXPCode Host::QueryInterface(const char* name, void** out) {
    if (name == nullptr || out == nullptr)
        return KXP_BAD_INTERFACE_ARG;
    asked.emplace_back(name);
    *out = nullptr;
    if (nullFaces.count(name) > 0)
        return KXP_OK;
    *out = FaceOf(name);
    return *out != nullptr ? KXP_OK : KXPCode{KXP_NO_INTERFACE};
}

void* Host::FaceOf(const std::string& name) {
    if (name == "IManagerRuntimeInfo" && offerRuntimeInfo)
        return static_cast<IManagerRuntimeInfo*>(this);
    if (name == "IFolderManager" && offerFolders)
        return static_cast<IFolderManager*>(this);
    if (name == "IObjectFactoryManager" && offerFactories)
        return static_cast<IObjectFactoryManager*>(this);
    if (name == "IManagerRemoteManager" && offerRemoteManager)
        return static_cast<IManagerRemoteManager*>(&m_remoteManager);
    if (name == "IManagerRemoteManager2" && offerRemoteManager2)
        return static_cast<IManagerRemoteManager2*>(&m_remoteManager2);
    if (name == "IVariableManager")
        return variableManager;
    if (name == "IObjectNameTools")
        return nameTools;
    if (name == "IResourceProvider")
        return resourceProvider;
    if (name == "IDialogManager2")
        return dialogs;
    return nullptr;
}

std::uint32_t Host::GetLogSettings(std::uint32_t* enabled, std::uint32_t* writerId, char* path,
                                   std::uint32_t* levelBits, std::uint32_t* option) {
    if (!givesLog)
        return 0xFFFFFFFFu;
    *enabled = logEnabled;
    *writerId = logWriter;
    *levelBits = logLevelBits;
    *option = logOption;
    // A path that fills the buffer has no end: a module must cope with that.
    std::memcpy(path, logPath.c_str(), std::min<std::size_t>(logPath.size() + 1, KXP_LOG_PATH_SIZE));
    return 0;
}

std::uint32_t Host::GetRuntimeInfo(KXPRuntimeInfo* out) {
    if (runtimeInfoResult == 0 || out->size != sizeof(KXPRuntimeInfo))
        return 0;
    // A text that fills its field has no end: a module must cope with that.
    std::memcpy(out->appName, appName.c_str(), std::min(appName.size() + 1, sizeof(out->appName)));
    std::memcpy(out->version, version.c_str(), std::min(version.size() + 1, sizeof(out->version)));
    return runtimeInfoResult;
}

const char* Host::GetFolder(std::uint32_t folderId) {
    const auto found = folders.find(folderId);
    return found != folders.end() ? found->second.c_str() : nullptr;
}

KXPCode Host::RegisterFactory(const char* name, IObjectFactory* factory) {
    if (name == nullptr || factory == nullptr)
        return KXP_NULL_ARGUMENT;
    factories[name] = factory;
    return KXP_OK;
}

KXPCode Host::UnregisterFactory(const char* name) {
    if (name == nullptr)
        return KXP_NULL_ARGUMENT;
    return factories.erase(name) > 0 ? KXP_OK : KXPCode{KXP_NOT_IMPLEMENTED};
}

} // namespace plain
