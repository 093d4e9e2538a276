#include "FakeRemotes.h"

namespace {

std::string Shown(const char* text) {
    return text != nullptr ? text : "-";
}

} // namespace

KXPCode FakeRemote2::Note(const std::string& call, IExecContext* context) {
    calls.push_back(call);
    lastContext = context;
    if (onCall)
        onCall(QueryFace<IExecContext2>(context, "IExecContext2"));
    return code;
}

KXPCode FakeRemote2::SetHandler(IManagerRemoteHandler* newHandler) {
    handler = newHandler;
    calls.emplace_back("SetHandler");
    return KXP_OK;
}

KXPCode FakeRemote2::RegisterGroup(const char* group, const char* options, IExecContext* context, void* reserved) {
    return Note("RegisterGroup|" + Shown(group) + "|" + Shown(options) + (reserved != nullptr ? "|reserved" : ""),
                context);
}

KXPCode FakeRemote2::UnregisterGroup(const char* group, IExecContext* context, void* reserved) {
    return Note("UnregisterGroup|" + Shown(group) + (reserved != nullptr ? "|reserved" : ""), context);
}

KXPCode FakeRemote::RegisterGroup(IManagerRemoteHandler* newHandler, const char* group) {
    handler = newHandler;
    return Note("RegisterGroup|" + Shown(group));
}
