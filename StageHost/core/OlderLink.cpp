#include "OlderLink.h"

#include <optional>

#include "BorderText.h"
#include "FaceAnswer.h"
#include "HostCodes.h"
#include "WholeNumber.h"

namespace stagehost {

namespace {

using Kind = RequestKind;

constexpr std::chrono::milliseconds kLastMoment(200); // for a request that comes when the host is ending

} // namespace

OlderLink::OlderLink(RequestDesk& desk)
    : m_desk(desk) {}

void OlderLink::EndWaiting() {
    {
        const std::lock_guard<std::mutex> hold(m_waiting->lock);
        m_waiting->ending = true;
    }
    m_waiting->changed.notify_all();
    m_desk.EndWaiting(this);
}

Reply OlderLink::Ask(const char* object, Request request) {
    if (object == nullptr)
        return {KXP_NULL_ARGUMENT};
    request.object = object;
    request.link = this;
    const KXPCode code = m_desk.Check(request);
    if (code != KXP_OK)
        return {code};
    const auto reply = std::make_shared<std::optional<Reply>>();
    m_desk.Serve(std::move(request), [waiting = m_waiting, reply](const Reply& given) {
        const std::lock_guard<std::mutex> hold(waiting->lock);
        *reply = given;
        waiting->changed.notify_all();
    });
    std::unique_lock<std::mutex> hold(m_waiting->lock);
    m_waiting->changed.wait(hold, [&] { return m_waiting->ending || reply->has_value(); });
    m_waiting->changed.wait_for(hold, kLastMoment, [&] { return reply->has_value(); });
    return reply->value_or(Reply{kEnding});
}

KXPCode OlderLink::AskForText(const char* object, Request request, char** out) {
    if (out == nullptr)
        return KXP_NULL_ARGUMENT;
    *out = nullptr;
    const Reply reply = Ask(object, std::move(request));
    if (reply.code == KXP_OK)
        *out = CopyBorderText(reply.text.value_or(std::string()));
    return reply.code;
}

KXPCode OlderLink::QueryInterface(const char* name, void** out) {
    return AnswerFace(name, out, {{"IMInterface", this}, {"IManagerRemote", this}});
}

KXPCode OlderLink::Release() {
    return KXP_OK;
}

KXPCode OlderLink::OpenUserScreen(const char* name, std::int32_t position, std::int32_t left, std::int32_t top) {
    Request request{Kind::OpenUserScreen};
    request.number = position;
    request.left = left;
    request.top = top;
    return Ask(name, std::move(request)).code;
}

KXPCode OlderLink::CloseUserScreen(const char* name) {
    return Ask(name, Request{Kind::CloseUserScreen}).code;
}

KXPCode OlderLink::GotoPage(const char* name, std::int32_t page) {
    return Ask(name, NumberRequest(Kind::GotoPage, page)).code;
}

KXPCode OlderLink::StartTask(const char* task) {
    return Ask(task, Request{Kind::StartTask}).code;
}

KXPCode OlderLink::PauseTask(const char* task) {
    return Ask(task, Request{Kind::PauseTask}).code;
}

KXPCode OlderLink::StopTask(const char* task, std::int32_t mode) {
    return Ask(task, NumberRequest(Kind::StopTask, mode)).code;
}

KXPCode OlderLink::GotoLabel(const char* task, const char* label) {
    return Ask(task, TextRequest(Kind::GotoLabel, label)).code;
}

KXPCode OlderLink::GotoLine(const char* task, std::int32_t line) {
    return Ask(task, NumberRequest(Kind::GotoLine, line)).code;
}

KXPCode OlderLink::GotoTime(const char* task, std::int32_t time) {
    return Ask(task, NumberRequest(Kind::GotoTime, time)).code;
}

KXPCode OlderLink::LoadShow(const char* show, std::int32_t time) {
    return Ask(show, NumberRequest(Kind::LoadShow, time)).code;
}

KXPCode OlderLink::RegisterGroup(IManagerRemoteHandler*, const char* group) {
    return group == nullptr ? KXPCode{KXP_NULL_ARGUMENT} : m_desk.CheckGroup(group);
}

KXPCode OlderLink::UnregisterGroup() {
    return KXP_OK;
}

KXPCode OlderLink::GetObjectList(const char* parent, std::uint32_t type, char** out) {
    return AskForText(parent, NumberRequest(Kind::GetObjectList, static_cast<std::int32_t>(type)), out);
}

KXPCode OlderLink::Reserved14(void*) {
    return KXP_NOT_IMPLEMENTED;
}

KXPCode OlderLink::Reserved15(void*) {
    return KXP_NOT_IMPLEMENTED;
}

KXPCode OlderLink::SetProperty(const char* object, const char* property, const char* value) {
    return Ask(object, TextRequest(Kind::SetProperty, property, value)).code;
}

KXPCode OlderLink::SetPropertyAsInt(const char* object, const char* property, std::int32_t value) {
    Request request = TextRequest(Kind::SetPropertyAsInt, property);
    request.number = value;
    return Ask(object, std::move(request)).code;
}

KXPCode OlderLink::GetProperty(const char* object, const char* property, char** out) {
    return AskForText(object, TextRequest(Kind::GetProperty, property), out);
}

KXPCode OlderLink::GetPropertyAsInt(const char* object, const char* property, std::int32_t* out) {
    if (out == nullptr)
        return KXP_NULL_ARGUMENT;
    const Reply reply = Ask(object, TextRequest(Kind::GetPropertyAsInt, property));
    *out = reply.code == KXP_OK ? ParseWholeNumber(reply.text.value_or(std::string())).value_or(0) : 0;
    return reply.code;
}

KXPCode OlderLink::GetObject(const char* object, std::uint16_t depth, char** out) {
    return AskForText(object, NumberRequest(Kind::GetObject, depth), out);
}

KXPCode OlderLink::Perform(const char* object, const char* action, const char* parameters, char** out) {
    return AskForText(object, TextRequest(Kind::Perform, action, parameters), out);
}

void OlderLink::FreeText(char** text) {
    FreeBorderText(text);
}

} // namespace stagehost
