#include "HostLink.h"

#include "FaceAnswer.h"

KXPCode HostLink::Answer(const char* call, IExecContext* context) const {
    if (m_hearing)
        m_hearing(call);
    auto* request = QueryFace<IExecContext2>(context, "IExecContext2");
    if (request == nullptr)
        return KXP_NULL_ARGUMENT;
    if (m_answering)
        return m_answering(call, *request);
    request->SetResultText(call);
    return KXP_OK;
}

KXPCode HostLink::QueryInterface(const char* name, void** out) {
    return AnswerFace(
        name, out,
        {{"IMInterface", static_cast<IMInterface*>(this)}, {"IManagerRemote2", static_cast<IManagerRemote2*>(this)}});
}

KXPCode HostLink::SetHandler(IManagerRemoteHandler* handler) {
    if (m_hearing)
        m_hearing("SetHandler");
    m_handler = handler;
    return KXP_OK;
}

KXPCode HostLink::RegisterGroup(const char*, const char*, IExecContext* context, void*) {
    return Answer("RegisterGroup", context);
}

KXPCode HostLink::UnregisterGroup(const char*, IExecContext* context, void*) {
    return Answer("UnregisterGroup", context);
}

KXPCode HostLink::OpenUserScreen(const char*, std::int32_t, std::int32_t, std::int32_t, IExecContext* context, void*) {
    return Answer("OpenUserScreen", context);
}

KXPCode HostLink::CloseUserScreen(const char*, IExecContext* context, void*) {
    return Answer("CloseUserScreen", context);
}

KXPCode HostLink::GotoPage(const char*, const char*, IExecContext* context, void*) {
    return Answer("GotoPage", context);
}

KXPCode HostLink::StartTask(const char*, IExecContext* context, void*) {
    return Answer("StartTask", context);
}

KXPCode HostLink::PauseTask(const char*, IExecContext* context, void*) {
    return Answer("PauseTask", context);
}

KXPCode HostLink::StopTask(const char*, std::int32_t, IExecContext* context, void*) {
    return Answer("StopTask", context);
}

KXPCode HostLink::GotoLabel(const char*, const char*, IExecContext* context, void*) {
    return Answer("GotoLabel", context);
}

KXPCode HostLink::GotoLine(const char*, std::int32_t, IExecContext* context, void*) {
    return Answer("GotoLine", context);
}

KXPCode HostLink::GotoTime(const char*, std::int32_t, IExecContext* context, void*) {
    return Answer("GotoTime", context);
}

KXPCode HostLink::LoadShow(const char*, std::int32_t, IExecContext* context, void*) {
    return Answer("LoadShow", context);
}

KXPCode HostLink::GetObjectList(const char*, std::uint32_t, IExecContext* context, void*) {
    return Answer("GetObjectList", context);
}

KXPCode HostLink::SetProperty(const char*, const char*, const char*, IExecContext* context, void*) {
    return Answer("SetProperty", context);
}

KXPCode HostLink::SetPropertyAsInt(const char*, const char*, std::int32_t, IExecContext* context, void*) {
    return Answer("SetPropertyAsInt", context);
}

KXPCode HostLink::GetProperty(const char*, const char*, IExecContext* context, void*) {
    return Answer("GetProperty", context);
}

KXPCode HostLink::GetObject(const char*, std::uint16_t, IExecContext* context, void*) {
    return Answer("GetObject", context);
}

KXPCode HostLink::Perform(const char*, const char*, const char*, IExecContext* context, void*) {
    return Answer("Perform", context);
}
