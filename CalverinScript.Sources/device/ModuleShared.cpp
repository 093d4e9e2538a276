#include "ModuleShared.h"

#include <QStandardItemModel>

#include "RequestedStack.h"

namespace {

constexpr std::uint32_t kTickPeriodMs = 40;
constexpr std::uint32_t kTickResolutionMs = 1;

std::unique_ptr<ModuleShared>& Instance() {
    static std::unique_ptr<ModuleShared> shared;
    return shared;
}

} // namespace

ModuleShared::ModuleShared()
    : legacyModuleCommands(std::make_unique<MLockedList<MScriptCommand>>())
    , completionModel(std::make_unique<QStandardItemModel>())
    , tickTimer(kTickPeriodMs, kTickResolutionMs) {
    tickTimer.SetStackSize(kRequestedStackSize);
    tickTimer.Start(false);
}

ModuleShared::~ModuleShared() = default;

ModuleShared* ModuleShared::Get() {
    return Instance().get();
}

ModuleShared& ModuleShared::Acquire() {
    if (!Instance())
        Instance() = std::make_unique<ModuleShared>();
    return *Instance();
}

void ModuleShared::ReleaseLast() {
    Instance().reset();
}
