#include "NewerLink.h"

#include <QXmlStreamReader>

#include "BorderText.h"
#include "FaceAnswer.h"
#include "HostCodes.h"
#include "LinkAnswer.h"
#include "WholeNumber.h"

namespace stagehost {

namespace {

using Kind = RequestKind;

/// Whether options ask for events: <Options><Option name="acceptevents" value="true"/></Options>; nothing for a text
/// that is no options.
std::optional<bool> AcceptsEvents(const char* options) {
    const QString text = FromBorderText(options);
    if (text.isEmpty())
        return false;
    bool accepts = false;
    QXmlStreamReader xml(text);
    if (!xml.readNextStartElement() || xml.name() != QLatin1String("Options"))
        return std::nullopt;
    while (xml.readNextStartElement()) {
        const auto attributes = xml.attributes();
        if (attributes.value(QLatin1String("name")) == QLatin1String("acceptevents"))
            accepts = attributes.value(QLatin1String("value")) == QLatin1String("true");
        xml.skipCurrentElement();
    }
    return xml.hasError() ? std::nullopt : std::optional(accepts);
}

} // namespace

NewerLink::NewerLink(RequestDesk& desk)
    : m_desk(desk)
    , m_registrations(desk.Model()) {}

void NewerLink::Close() {
    m_registrations.Close();
    m_desk.EndWaiting(this);
}

KXPCode NewerLink::Ask(const char* object, Request request, IExecContext* context) {
    if (object == nullptr)
        return KXP_NULL_ARGUMENT;
    request.object = object;
    request.link = this;
    const KXPCode code = m_desk.Check(request);
    if (code != KXP_OK)
        return code;
    if (context == nullptr)
        return KXP_NULL_ARGUMENT;
    m_desk.Serve(std::move(request), BeginContext(context));
    return KXP_PENDING;
}

KXPCode NewerLink::QueryInterface(const char* name, void** out) {
    return AnswerFace(name, out, {{"IMInterface", this}, {"IManagerRemote2", this}});
}

KXPCode NewerLink::Release() {
    return KXP_OK;
}

KXPCode NewerLink::SetHandler(IManagerRemoteHandler* handler) {
    m_registrations.SetHandler(handler);
    return KXP_OK;
}

KXPCode NewerLink::Reserved2(void*) {
    return KXP_NOT_IMPLEMENTED;
}

KXPCode NewerLink::RegisterGroup(const char* group, const char* options, IExecContext*, void*) {
    if (group == nullptr)
        return KXP_NULL_ARGUMENT;
    const KXPCode code = m_desk.CheckGroup(group);
    if (code != KXP_OK)
        return code;
    const auto events = AcceptsEvents(options);
    if (!events)
        return kBadParameters;
    m_registrations.Add(group, *events);
    return KXP_OK;
}

KXPCode NewerLink::UnregisterGroup(const char* group, IExecContext*, void*) {
    if (group != nullptr && *group == '\0')
        m_registrations.Clear();
    else
        m_registrations.Remove(group == nullptr ? kGrantedGroup : group);
    return KXP_OK;
}

KXPCode NewerLink::OpenUserScreen(const char* name, std::int32_t position, std::int32_t left, std::int32_t top,
                                  IExecContext* context, void*) {
    Request request{Kind::OpenUserScreen};
    request.number = position;
    request.left = left;
    request.top = top;
    return Ask(name, std::move(request), context);
}

KXPCode NewerLink::CloseUserScreen(const char* name, IExecContext* context, void*) {
    return Ask(name, Request{Kind::CloseUserScreen}, context);
}

KXPCode NewerLink::GotoPage(const char* name, const char* page, IExecContext* context, void*) {
    return Ask(name, NumberRequest(Kind::GotoPage, ParseWholeNumber(TextOrEmpty(page)).value_or(0)), context);
}

KXPCode NewerLink::StartTask(const char* task, IExecContext* context, void*) {
    return Ask(task, Request{Kind::StartTask}, context);
}

KXPCode NewerLink::PauseTask(const char* task, IExecContext* context, void*) {
    return Ask(task, Request{Kind::PauseTask}, context);
}

KXPCode NewerLink::StopTask(const char* task, std::int32_t mode, IExecContext* context, void*) {
    return Ask(task, NumberRequest(Kind::StopTask, mode), context);
}

KXPCode NewerLink::GotoLabel(const char* task, const char* label, IExecContext* context, void*) {
    return Ask(task, TextRequest(Kind::GotoLabel, label), context);
}

KXPCode NewerLink::GotoLine(const char* task, std::int32_t line, IExecContext* context, void*) {
    return Ask(task, NumberRequest(Kind::GotoLine, line), context);
}

KXPCode NewerLink::GotoTime(const char* task, std::int32_t time, IExecContext* context, void*) {
    return Ask(task, NumberRequest(Kind::GotoTime, time), context);
}

KXPCode NewerLink::LoadShow(const char* show, std::int32_t time, IExecContext* context, void*) {
    return Ask(show, NumberRequest(Kind::LoadShow, time), context);
}

KXPCode NewerLink::GetObjectList(const char* parent, std::uint32_t type, IExecContext* context, void*) {
    return Ask(parent, NumberRequest(Kind::GetObjectList, static_cast<std::int32_t>(type)), context);
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

KXPCode NewerLink::SetProperty(const char* object, const char* property, const char* value, IExecContext* context,
                               void*) {
    return Ask(object, TextRequest(Kind::SetProperty, property, value), context);
}

KXPCode NewerLink::SetPropertyAsInt(const char* object, const char* property, std::int32_t value, IExecContext* context,
                                    void*) {
    Request request = TextRequest(Kind::SetPropertyAsInt, property);
    request.number = value;
    return Ask(object, std::move(request), context);
}

KXPCode NewerLink::GetProperty(const char* object, const char* property, IExecContext* context, void*) {
    return Ask(object, TextRequest(Kind::GetProperty, property), context);
}

KXPCode NewerLink::GetObject(const char* object, std::uint16_t depth, IExecContext* context, void*) {
    return Ask(object, NumberRequest(Kind::GetObject, depth), context);
}

KXPCode NewerLink::Perform(const char* object, const char* action, const char* parameters, IExecContext* context,
                           void*) {
    return Ask(object, TextRequest(Kind::Perform, action, parameters), context);
}

} // namespace stagehost
