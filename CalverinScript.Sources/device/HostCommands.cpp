#include "HostCommands.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>

#include "CommandNumbers.h"
#include "CommandRoad.h"
#include "DeviceTexts.h"
#include "HostData.h"
#include "HostText.h"
#include "HostValues.h"
#include "IObjectParams.h"
#include "IProgramOwner.h"
#include "ScriptProgram.h"
#include "UserCommands.h"
#include "ValueConversion.h"

namespace {

constexpr std::uint32_t kParamsOfExecuteWithParams = 2 + kArgumentCount;

/// The text of a parameter. It is the request's own: once the request is posted its context may end, and with it the host's values.
class ParamText {
public:
    ParamText() = default;
    explicit ParamText(IObjectParam* param) {
        IData* data = EffectiveData(param);
        char* given = data != nullptr ? data->GetValueAsString() : nullptr;
        if (given == nullptr)
            return;
        const auto giveBack = [data](char* text) { data->ReleaseString(&text); };
        const std::unique_ptr<char, decltype(giveBack)> held(given, giveBack);
        m_text = given;
    }
    /// Null for a parameter without a text.
    const char* Get() const { return m_text ? m_text->c_str() : nullptr; }

private:
    std::optional<std::string> m_text;
};

QByteArray ArgumentText(const MScriptCommandParam& param, IData& data) {
    QString text;
    return ToHostText(ParamToText(param, data, text) ? text : TextOf(data));
}

} // namespace

KXPCode HostCommands::Take(std::int32_t id, IObjectParams* params, IExecContext* context) {
    if (params == nullptr || id == kScriptCallback)
        return KXP_BAD_COMMAND;
    if (!m_parts.road.HasThread()) {
        m_parts.reports.ReportError(QLatin1String(DeviceText::kNoCommandThread), false);
        return KXP_BAD_COMMAND;
    }
    if (id >= kLoadFromFile && id <= kExecuteFunctionWithParams)
        return PostBuiltIn(id, *params, context);
    return PostUsers(id, *params, context);
}

/// The host may have released the device when it was asked for the parameters.
KXPCode HostCommands::Post(const ScriptRequest& request, IExecContext* context) {
    return m_parts.road.Post(request, context) ? KXP_OK : KXP_BAD_COMMAND;
}

KXPCode HostCommands::PostBuiltIn(std::int32_t id, IObjectParams& params, IExecContext* context) {
    const std::uint32_t needed = id == kExecuteFunctionWithParams ? kParamsOfExecuteWithParams : 1;
    if (params.GetParamCount() < needed)
        return KXP_BAD_COMMAND;
    const ParamText first(params.GetParam(0));
    const char* text = first.Get();
    if (id == kLoadFromFile || id == kLoadFromText) {
        return Post(ScriptRequest::Load(static_cast<BuiltInCommand>(id), text), context);
    }
    if (!m_parts.program.HasFunction(text))
        return KXP_SCRIPT_FAILED;
    if (id == kExecuteFunctionWithParams)
        return PostWithParams(text, params, context);
    return Post(ScriptRequest::Function(text), context);
}

KXPCode HostCommands::PostWithParams(const char* function, IObjectParams& params, IExecContext* context) {
    std::array<ParamText, kArgumentCount> owned;
    std::array<const char*, kArgumentCount> texts{};
    for (std::size_t i = 0; i < texts.size(); ++i) {
        owned[i] = ParamText(params.GetParam(static_cast<std::uint32_t>(2 + i)));
        texts[i] = owned[i].Get();
    }
    IData* result = EffectiveData(params.GetParam(1));
    return Post(ScriptRequest::Function(function, result, texts.data()), context);
}

/// The first parameter takes the result, at most eight others reach the function as texts.
KXPCode HostCommands::PostUsers(std::int32_t id, IObjectParams& params, IExecContext* context) {
    MScriptCommand command;
    if (!m_parts.commands.Find(id, command)) {
        m_parts.values.SetText(DefaultVariable::Error, QLatin1String(DeviceText::kUnknownCommand));
        return KXP_BAD_COMMAND;
    }
    const QByteArray name = ToHostText(command.name);
    if (!m_parts.program.HasFunction(name.constData()))
        return KXP_SCRIPT_FAILED;
    std::array<QByteArray, kArgumentCount> owned;
    std::array<const char*, kArgumentCount> texts{};
    const int count = std::min(kArgumentCount, command.params.size() - 1);
    for (int i = 0; i < count; ++i) {
        IData* data = EffectiveData(params.GetParam(static_cast<std::uint32_t>(i + 1)));
        if (data == nullptr)
            break;
        const auto place = static_cast<std::size_t>(i);
        owned[place] = ArgumentText(command.params[i + 1], *data);
        texts[place] = owned[place].constData();
    }
    IData* result = m_parts.writesResults ? EffectiveData(params.GetParam(0)) : nullptr;
    return Post(ScriptRequest::Function(name.constData(), result, texts.data()), context);
}
