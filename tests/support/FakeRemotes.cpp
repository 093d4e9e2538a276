#include "FakeRemotes.h"

#include <cstring>

std::string ShownArgument(const char* text) {
    return text != nullptr ? text : "-";
}

KXPCode FakeRemote2::Note(const std::string& call, IExecContext* context, const void* reserved) {
    calls.push_back(call + (reserved != nullptr ? "|reserved" : ""));
    lastContext = context;
    if (onCall)
        onCall(QueryFace<IExecContext2>(context, "IExecContext2"));
    return code;
}

KXPCode FakeRemote2::NoteText(const std::string& call, IExecContext* context, const void* reserved) {
    if (text != nullptr)
        QueryFace<IExecContext2>(context, "IExecContext2")->SetResultText(text);
    return Note(call, context, reserved);
}

KXPCode FakeRemote2::SetHandler(IManagerRemoteHandler* newHandler) {
    handler = newHandler;
    calls.emplace_back("SetHandler");
    return KXP_OK;
}

KXPCode FakeRemote::RegisterGroup(IManagerRemoteHandler* newHandler, const char* group) {
    handler = newHandler;
    return Note(CallText("RegisterGroup", group));
}

KXPCode FakeRemote::GetPropertyAsInt(const char* object, const char* property, std::int32_t* out) {
    *out = number;
    return Note(CallText("GetPropertyAsInt", object, property));
}

KXPCode FakeRemote::NoteText(const std::string& call, char** out) {
    if (code == KXP_OK && text != nullptr) {
        const std::size_t size = std::strlen(text) + 1;
        *out = new char[size];
        std::memcpy(*out, text, size);
        ++textsOut;
    }
    return Note(call);
}

void FakeRemote::FreeText(char** given) {
    calls.emplace_back("FreeText");
    if (given == nullptr || *given == nullptr)
        return;
    delete[] * given;
    *given = nullptr;
    --textsOut;
}
