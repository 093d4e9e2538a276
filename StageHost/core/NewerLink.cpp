#include "NewerLink.h"

#include <cstring>

#include "HostCodes.h"

namespace stagehost {

namespace {

KXPCode Missing(const char* object) {
    return object == nullptr ? KXP_NULL_ARGUMENT : KXPCode{kNoSuchObject};
}

} // namespace

KXPCode NewerLink::QueryInterface(const char* name, void** out) {
    if (name == nullptr || out == nullptr)
        return KXP_BAD_INTERFACE_ARG;
    const bool offered = std::strcmp(name, "IMInterface") == 0 || std::strcmp(name, "IManagerRemote2") == 0;
    *out = offered ? this : nullptr;
    return offered ? KXP_OK : KXP_NO_INTERFACE;
}

KXPCode NewerLink::Release() {
    return KXP_OK;
}

KXPCode NewerLink::SetHandler(IManagerRemoteHandler* handler) {
    handler_ = handler;
    return KXP_OK;
}

KXPCode NewerLink::Reserved2(void*) {
    return KXP_NOT_IMPLEMENTED;
}

KXPCode NewerLink::RegisterGroup(const char* group, const char*, IExecContext*, void*) {
    return Missing(group);
}

KXPCode NewerLink::UnregisterGroup(const char* group, IExecContext*, void*) {
    return Missing(group);
}

KXPCode NewerLink::OpenUserScreen(const char* name, std::int32_t, std::int32_t, std::int32_t, IExecContext*, void*) {
    return Missing(name);
}

KXPCode NewerLink::CloseUserScreen(const char* name, IExecContext*, void*) {
    return Missing(name);
}

KXPCode NewerLink::GotoPage(const char* name, const char*, IExecContext*, void*) {
    return Missing(name);
}

KXPCode NewerLink::StartTask(const char* task, IExecContext*, void*) {
    return Missing(task);
}

KXPCode NewerLink::PauseTask(const char* task, IExecContext*, void*) {
    return Missing(task);
}

KXPCode NewerLink::StopTask(const char* task, std::int32_t, IExecContext*, void*) {
    return Missing(task);
}

KXPCode NewerLink::GotoLabel(const char* task, const char*, IExecContext*, void*) {
    return Missing(task);
}

KXPCode NewerLink::GotoLine(const char* task, std::int32_t, IExecContext*, void*) {
    return Missing(task);
}

KXPCode NewerLink::GotoTime(const char* task, std::int32_t, IExecContext*, void*) {
    return Missing(task);
}

KXPCode NewerLink::LoadShow(const char* show, std::int32_t, IExecContext*, void*) {
    return Missing(show);
}

KXPCode NewerLink::GetObjectList(const char* parent, std::uint32_t, IExecContext*, void*) {
    return Missing(parent);
}

KXPCode NewerLink::Reserved16(void*) {
    return KXP_NOT_IMPLEMENTED;
}

KXPCode NewerLink::Reserved17(void*) {
    return KXP_NOT_IMPLEMENTED;
}

KXPCode NewerLink::Reserved18(void*) {
    return KXP_NOT_IMPLEMENTED;
}

KXPCode NewerLink::SetProperty(const char* object, const char*, const char*, IExecContext*, void*) {
    return Missing(object);
}

KXPCode NewerLink::SetPropertyAsInt(const char* object, const char*, std::int32_t, IExecContext*, void*) {
    return Missing(object);
}

KXPCode NewerLink::GetProperty(const char* object, const char*, IExecContext*, void*) {
    return Missing(object);
}

KXPCode NewerLink::GetObject(const char* object, std::uint16_t, IExecContext*, void*) {
    return Missing(object);
}

KXPCode NewerLink::Perform(const char* object, const char*, const char*, IExecContext*, void*) {
    return Missing(object);
}

} // namespace stagehost
