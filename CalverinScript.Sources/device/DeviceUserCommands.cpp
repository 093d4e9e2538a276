#include "MCalverinScript_Device.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <mutex>

#include "CommandNumbers.h"
#include "CommandRoad.h"
#include "DeviceTexts.h"
#include "DriverTables.h"
#include "HostData.h"
#include "HostText.h"
#include "ModuleShared.h"
#include "StoredCommand.h"
#include "ThreadPromise.h"
#include "ValueConversion.h"

namespace {

template <typename Condition>
bool FindIn(MLockedList<MScriptCommand>& list, Condition condition, MScriptCommand& found) {
    const std::lock_guard<MLockedList<MScriptCommand>> guard(list);
    const auto place = std::find_if(list.begin(), list.end(), condition);
    if (place == list.end())
        return false;
    found = *place;
    return true;
}

QByteArray ArgumentText(const MScriptCommandParam& param, IData& data) {
    QString text;
    return ToHostText(ParamToText(param, data, text) ? text : TextOf(data));
}

} // namespace

template <typename Condition>
bool MCalverinScript_Device::FindCommand(Condition condition, MScriptCommand& found) {
    return FindIn(storedSetup.Commands(), condition, found);
}

/// The first parameter takes the result, at most eight others reach the function as texts.
KXPCode MCalverinScript_Device::PostUserCommand(std::int32_t id, IObjectParams* params, IExecContext* context) {
    MScriptCommand command;
    if (!FindCommand([&](const MScriptCommand& candidate) { return candidate.id == id; }, command)) {
        values.SetText(DefaultVariable::Error, QLatin1String(DeviceText::kUnknownCommand));
        return KXP_BAD_COMMAND;
    }
    const QByteArray name = ToHostText(command.name);
    if (!HasFunction(name.constData()))
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

int MCalverinScript_Device::ValidateCommand(std::int32_t id, IObjectParams* params) {
    if (id < kFirstUserCommand)
        return 2;
    MScriptCommand command;
    if (params == nullptr)
        return FindCommand([&](const MScriptCommand& candidate) { return candidate.id == id; }, command) ? 1 : 0;
    const QString name = FromHostText(params->GetProperty(kCommandNameProperty));
    if (!FindCommand([&](const MScriptCommand& candidate) { return candidate.name == name; }, command))
        return 0;
    return MatchesStoredParams(command, *params) ? 2 : 1;
}

KXPCode MCalverinScript_Device::UpdateCommand(const char* commandXml, char** out) {
    ExpectThread(ThreadWord::HostMain, "IKXPDevice::UpdateCommand");
    if (gone)
        return KXP_NOT_IMPLEMENTED;
    StoredCommand stored;
    if (out == nullptr || !stored.Parse(commandXml))
        return KXP_NOT_IMPLEMENTED;
    const QString owner = stored.OwnerName();
    const QString name = stored.FunctionName();
    if ((!owner.isNull() && owner != FromHostText(CopyName().c_str())) || name.isEmpty())
        return KXP_NOT_IMPLEMENTED;
    const auto hasName = [&](const MScriptCommand& candidate) { return candidate.name == name; };
    MScriptCommand command;
    if (FindCommand(hasName, command)) {
        *out = strdup(stored.Rewrite(command).c_str());
        return KXP_OK;
    }
    ModuleShared* shared = ModuleShared::Get();
    if (shared != nullptr && shared->legacyModuleCommands != nullptr &&
        FindIn(shared->moduleCommands, hasName, command))
        shared->legacyModuleCommands->AddUnique(command);
    return KXP_NOT_IMPLEMENTED;
}
