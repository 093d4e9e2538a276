#include "MCalverinScript_Device.h"

#include <array>

#include "CommandNumbers.h"
#include "CommandRoad.h"
#include "DeviceTexts.h"
#include "HostData.h"
#include "HostText.h"
#include "ScriptProgram.h"
#include "ThreadPromise.h"

namespace {

constexpr std::uint32_t kParamsOfExecuteWithParams = 2 + kArgumentCount;

/// The text of a parameter for the time of a post; given back to its value at the end.
class ParamText {
public:
    ParamText() = default;
    ~ParamText() {
        if (m_text != nullptr)
            m_data->ReleaseString(&m_text);
    }
    ParamText(const ParamText&) = delete;
    ParamText& operator=(const ParamText&) = delete;
    /// Called once. @return the text, null for a parameter without one.
    const char* Read(IObjectParam* param) {
        m_data = EffectiveData(param);
        m_text = m_data != nullptr ? m_data->GetValueAsString() : nullptr;
        return m_text;
    }

private:
    IData* m_data = nullptr;
    char* m_text = nullptr;
};

} // namespace

KXPCode MCalverinScript_Device::ExecuteCommand(std::int32_t id, IObjectParams* params, IExecContext* context) {
    ExpectThread(ThreadWord::AnyHostThread, "IKXPDevice::ExecuteCommand");
    if (!MayPost() || params == nullptr || id == kScriptCallback)
        return KXP_BAD_COMMAND;
    if (!road->HasThread()) {
        ReportError(QLatin1String(DeviceText::kNoCommandThread), false);
        return KXP_BAD_COMMAND;
    }
    if (id >= kLoadFromFile && id <= kExecuteFunctionWithParams)
        return PostBuiltIn(id, params, context);
    return PostUserCommand(id, params, context);
}

KXPCode MCalverinScript_Device::PostBuiltIn(std::int32_t id, IObjectParams* params, IExecContext* context) {
    const std::uint32_t needed = id == kExecuteFunctionWithParams ? kParamsOfExecuteWithParams : 1;
    if (params->GetParamCount() < needed)
        return KXP_BAD_COMMAND;
    ParamText first;
    const char* text = first.Read(params->GetParam(0));
    if (id == kLoadFromFile || id == kLoadFromText) {
        road->Post(ScriptRequest::Load(static_cast<BuiltInCommand>(id), text), context);
        return KXP_OK;
    }
    if (!program->HasFunction(text))
        return KXP_SCRIPT_FAILED;
    if (id == kExecuteFunction) {
        road->Post(ScriptRequest::Function(text), context);
        return KXP_OK;
    }
    std::array<ParamText, kArgumentCount> owned;
    std::array<const char*, kArgumentCount> texts{};
    for (std::size_t i = 0; i < texts.size(); ++i)
        texts[i] = owned[i].Read(params->GetParam(static_cast<std::uint32_t>(2 + i)));
    IData* result = EffectiveData(params->GetParam(1));
    road->Post(ScriptRequest::Function(text, result, texts.data()), context);
    return KXP_OK;
}

bool MCalverinScript_Device::MayPost() const {
    return !IsTracking() && !ending;
}

void MCalverinScript_Device::OnCommandCreated(void* context) {
    if (context != nullptr)
        static_cast<IExecContext*>(context)->Begin();
}

void MCalverinScript_Device::OnCommandDestroyed(void* context) {
    if (context != nullptr)
        static_cast<IExecContext*>(context)->End();
}

void MCalverinScript_Device::WriteCommandResult(MCommandObject* command, const QString& text) {
    if (command == nullptr || command->GetId() != kExecuteFunctionWithParams || ending)
        return;
    auto* result = static_cast<IData*>(command->GetVoidParam(kResultParam, nullptr));
    if (result != nullptr)
        result->SetValueFromString(ToHostText(text).constData(), 0, 0);
}
