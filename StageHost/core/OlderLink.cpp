#include "OlderLink.h"

#include <cstring>

#include "BorderText.h"
#include "HostCodes.h"

namespace stagehost {

namespace {

KXPCode Missing(const char* object) {
    return object == nullptr ? KXP_NULL_ARGUMENT : KXPCode{kNoSuchObject};
}

KXPCode MissingWithText(const char* object, char** out) {
    if (out == nullptr)
        return KXP_NULL_ARGUMENT;
    *out = nullptr;
    return Missing(object);
}

} // namespace

KXPCode OlderLink::QueryInterface(const char* name, void** out) {
    if (name == nullptr || out == nullptr)
        return KXP_BAD_INTERFACE_ARG;
    const bool offered = std::strcmp(name, "IMInterface") == 0 || std::strcmp(name, "IManagerRemote") == 0;
    *out = offered ? this : nullptr;
    return offered ? KXP_OK : KXP_NO_INTERFACE;
}

KXPCode OlderLink::Release() {
    return KXP_OK;
}

KXPCode OlderLink::OpenUserScreen(const char* name, std::int32_t, std::int32_t, std::int32_t) {
    return Missing(name);
}

KXPCode OlderLink::CloseUserScreen(const char* name) {
    return Missing(name);
}

KXPCode OlderLink::GotoPage(const char* name, std::int32_t) {
    return Missing(name);
}

KXPCode OlderLink::StartTask(const char* task) {
    return Missing(task);
}

KXPCode OlderLink::PauseTask(const char* task) {
    return Missing(task);
}

KXPCode OlderLink::StopTask(const char* task, std::int32_t) {
    return Missing(task);
}

KXPCode OlderLink::GotoLabel(const char* task, const char*) {
    return Missing(task);
}

KXPCode OlderLink::GotoLine(const char* task, std::int32_t) {
    return Missing(task);
}

KXPCode OlderLink::GotoTime(const char* task, std::int32_t) {
    return Missing(task);
}

KXPCode OlderLink::LoadShow(const char* show, std::int32_t) {
    return Missing(show);
}

KXPCode OlderLink::RegisterGroup(IManagerRemoteHandler*, const char* group) {
    return Missing(group);
}

KXPCode OlderLink::UnregisterGroup() {
    return KXP_OK;
}

KXPCode OlderLink::GetObjectList(const char* parent, std::uint32_t, char** out) {
    return MissingWithText(parent, out);
}

KXPCode OlderLink::Reserved14(void*) {
    return KXP_NOT_IMPLEMENTED;
}

KXPCode OlderLink::Reserved15(void*) {
    return KXP_NOT_IMPLEMENTED;
}

KXPCode OlderLink::SetProperty(const char* object, const char*, const char*) {
    return Missing(object);
}

KXPCode OlderLink::SetPropertyAsInt(const char* object, const char*, std::int32_t) {
    return Missing(object);
}

KXPCode OlderLink::GetProperty(const char* object, const char*, char** out) {
    return MissingWithText(object, out);
}

KXPCode OlderLink::GetPropertyAsInt(const char* object, const char*, std::int32_t* out) {
    return out == nullptr ? KXP_NULL_ARGUMENT : Missing(object);
}

KXPCode OlderLink::GetObject(const char* object, std::uint16_t, char** out) {
    return MissingWithText(object, out);
}

KXPCode OlderLink::Perform(const char* object, const char*, const char*, char** out) {
    return MissingWithText(object, out);
}

void OlderLink::FreeText(char** text) {
    FreeBorderText(text);
}

} // namespace stagehost
