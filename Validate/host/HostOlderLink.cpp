#include "HostOlderLink.h"

#include <cstring>
#include <utility>

#include "FaceAnswer.h"

KXPCode HostOlderLink::QueryInterface(const char* name, void** out) {
    return AnswerFace(
        name, out,
        {{"IMInterface", static_cast<IMInterface*>(this)}, {"IManagerRemote", static_cast<IManagerRemote*>(this)}});
}

KXPCode HostOlderLink::Do(const char* call) const {
    if (m_hearing)
        m_hearing(call);
    return KXP_OK;
}

KXPCode HostOlderLink::Tell(const char* call, char** out) {
    if (out == nullptr)
        return KXP_NULL_ARGUMENT;
    *out = GuardedCopy(call, std::strlen(call));
    GuardedName(*out, "a text of the older link");
    ++m_textsOut;
    return Do(call);
}

KXPCode HostOlderLink::GetPropertyAsInt(const char*, const char*, std::int32_t* out) {
    if (out == nullptr)
        return KXP_NULL_ARGUMENT;
    *out = 1;
    return Do("GetPropertyAsInt");
}

void HostOlderLink::FreeText(char** text) {
    if (text == nullptr || *text == nullptr)
        return;
    GuardedFree(std::exchange(*text, nullptr));
    --m_textsOut;
}
