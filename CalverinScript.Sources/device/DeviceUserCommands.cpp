#include "MCalverinScript_Device.h"

#include <algorithm>
#include <array>

#include "CommandNumbers.h"
#include "CommandRoad.h"
#include "DeviceTexts.h"
#include "HostData.h"
#include "HostText.h"
#include "ScriptProgram.h"
#include "ValueConversion.h"

namespace {

QByteArray ArgumentText(const MScriptCommandParam& param, IData& data) {
    QString text;
    return ToHostText(ParamToText(param, data, text) ? text : TextOf(data));
}

} // namespace

/// The first parameter takes the result, at most eight others reach the function as texts.
KXPCode MCalverinScript_Device::PostUserCommand(std::int32_t id, IObjectParams* params, IExecContext* context) {
    MScriptCommand command;
    if (!commands.Find(id, command)) {
        values.SetText(DefaultVariable::Error, QLatin1String(DeviceText::kUnknownCommand));
        return KXP_BAD_COMMAND;
    }
    const QByteArray name = ToHostText(command.name);
    if (!program->HasFunction(name.constData()))
        return KXP_SCRIPT_FAILED;
    std::array<QByteArray, kArgumentCount> owned;
    std::array<const char*, kArgumentCount> texts{};
    const int count = std::min(kArgumentCount, command.params.size() - 1);
    for (int i = 0; i < count; ++i) {
        IData* data = EffectiveData(params->GetParam(static_cast<std::uint32_t>(i + 1)));
        if (data == nullptr)
            break;
        const auto place = static_cast<std::size_t>(i);
        owned[place] = ArgumentText(command.params[i + 1], *data);
        texts[place] = owned[place].constData();
    }
    IData* result = services.newerLink != nullptr ? EffectiveData(params->GetParam(0)) : nullptr;
    road->Post(ScriptRequest::Function(name.constData(), result, texts.data()), context);
    return KXP_OK;
}
