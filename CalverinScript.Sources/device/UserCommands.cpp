#include "UserCommands.h"

#include <algorithm>
#include <cstring>
#include <mutex>

#include "CommandIds.h"
#include "CommandNumbers.h"
#include "DriverTables.h"
#include "HostText.h"
#include "IObjectParams.h"
#include "ModuleShared.h"
#include "ScriptSet.h"
#include "StoredCommand.h"

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

auto HasName(const QString& name) {
    return [name](const MScriptCommand& candidate) { return candidate.name == name; };
}

bool IsSameCommand(const MScriptCommand& left, const MScriptCommand& right) {
    return left == right && HaveSameParams(left, right);
}

} // namespace

void UserCommands::Set(const ScriptCommands& commands) {
    ReplaceAll(m_commands, commands);
}

bool UserCommands::Find(std::int32_t id, MScriptCommand& found) {
    return FindIn(
        m_commands, [id](const MScriptCommand& candidate) { return candidate.id == id; }, found);
}

bool UserCommands::FindNamed(const QString& name, MScriptCommand& found) {
    return FindIn(m_commands, HasName(name), found);
}

void UserCommands::AssignIds(MLockedList<MScriptCommand>& functions, bool keepOld) {
    ScriptCommands fresh = functions.Snapshot();
    AssignCommandIds(OfModule(), fresh, keepOld);
    ReplaceAll(functions, fresh);
}

void UserCommands::Commit(MLockedList<MScriptCommand>& functions) {
    MLockedList<MScriptCommand>& shared = ModuleShared::Acquire().moduleCommands;
    ScriptCommands fresh = functions.Snapshot();
    ScriptCommands moduleCommands = shared.Snapshot();
    Set(CommitCommands(fresh, moduleCommands));
    ReplaceAll(functions, fresh);
    ReplaceAll(shared, moduleCommands);
}

bool UserCommands::DifferFrom(const ScriptCommands& functions) const {
    const ScriptCommands own = Get();
    return !std::equal(own.begin(), own.end(), functions.begin(), functions.end(), &IsSameCommand);
}

int UserCommands::Validate(std::int32_t id, IObjectParams* params) {
    if (id < kFirstUserCommand)
        return 2;
    MScriptCommand command;
    if (params == nullptr)
        return Find(id, command) ? 1 : 0;
    if (!FindNamed(FromHostText(params->GetProperty(kCommandNameProperty)), command))
        return 0;
    return MatchesStoredParams(command, *params) ? 2 : 1;
}

char* UserCommands::Update(const char* commandXml, const std::string& deviceName) {
    StoredCommand stored;
    if (!stored.Parse(commandXml))
        return nullptr;
    const QString owner = stored.OwnerName();
    const QString name = stored.FunctionName();
    if ((!owner.isNull() && owner != FromHostText(deviceName.c_str())) || name.isEmpty())
        return nullptr;
    MScriptCommand command;
    if (FindNamed(name, command))
        return strdup(stored.Rewrite(command).c_str());
    ModuleShared* shared = ModuleShared::Get();
    if (shared != nullptr && shared->legacyModuleCommands && FindIn(shared->moduleCommands, HasName(name), command))
        shared->legacyModuleCommands->AddUnique(command);
    return nullptr;
}

ScriptCommands UserCommands::OfModule() {
    return ModuleShared::Acquire().moduleCommands.Snapshot();
}

void UserCommands::AddToModule(const ScriptCommands& commands) {
    for (const MScriptCommand& command : commands)
        ModuleShared::Acquire().moduleCommands.AddUnique(command);
}

bool UserCommands::HasLegacy() {
    return static_cast<bool>(ModuleShared::Acquire().legacyModuleCommands);
}

void UserCommands::MergeLegacy(const ScriptCommands& inUse) {
    ModuleShared& shared = ModuleShared::Acquire();
    ScriptCommands moduleCommands = shared.moduleCommands.Snapshot();
    MergeLegacyCommands(inUse, shared.legacyModuleCommands->Snapshot(), moduleCommands);
    ReplaceAll(shared.moduleCommands, moduleCommands);
    shared.legacyModuleCommands.reset();
}
