#include "RequestDesk.h"

#include <algorithm>
#include <iterator>

#include "HostCodes.h"
#include "ObjectText.h"

namespace stagehost {

namespace {

using Serving = Reply (*)(ShowModel& model, const Request& request);

Reply TextReply(std::optional<std::string> text) {
    return text ? Reply{KXP_OK, std::move(text)} : Reply{kNoSuchObject};
}

/// Runs work on a screen, task, show or any object, which may have gone since it was checked.
template <typename Object, typename Work>
Reply On(const std::shared_ptr<Object>& object, Work work) {
    return {object ? work(*object) : KXPCode{kNoSuchObject}};
}

Reply OpenUserScreen(ShowModel& model, const Request& request) {
    return On(model.FindScreen(request.object),
              [&](UserScreen& screen) { return screen.Open(request.number, request.left, request.top); });
}

Reply CloseUserScreen(ShowModel& model, const Request& request) {
    return On(model.FindScreen(request.object), [](UserScreen& screen) { return screen.Close(); });
}

Reply GotoPage(ShowModel& model, const Request& request) {
    return On(model.FindScreen(request.object), [&](UserScreen& screen) { return screen.GotoPage(request.number); });
}

Reply StartTask(ShowModel& model, const Request& request) {
    return On(model.FindTask(request.object), [](ShowTask& task) { return task.Start(); });
}

Reply PauseTask(ShowModel& model, const Request& request) {
    return On(model.FindTask(request.object), [](ShowTask& task) { return task.Pause(); });
}

Reply StopTask(ShowModel& model, const Request& request) {
    return On(model.FindTask(request.object), [&](ShowTask& task) { return task.Stop(request.number); });
}

Reply GotoLabel(ShowModel& model, const Request& request) {
    return On(model.FindTask(request.object), [&](ShowTask& task) { return task.GotoLabel(request.text); });
}

Reply GotoLine(ShowModel& model, const Request& request) {
    return On(model.FindTask(request.object), [&](ShowTask& task) { return task.GotoLine(request.number); });
}

Reply GotoTime(ShowModel& model, const Request& request) {
    return On(model.FindTask(request.object), [&](ShowTask& task) { return task.GotoTime(request.number); });
}

Reply LoadShow(ShowModel& model, const Request& request) {
    return On(model.FindShow(request.object), [&](LoadableShow& show) { return show.Load(request.number); });
}

Reply GetObjectList(ShowModel& model, const Request& request) {
    return TextReply(ObjectListText(model, request.object, static_cast<std::uint32_t>(request.number)));
}

Reply GetObject(ShowModel& model, const Request& request) {
    return TextReply(ObjectDescription(model, request.object, static_cast<std::uint32_t>(request.number)));
}

Reply SetProperty(ShowModel& model, const Request& request) {
    return On(model.FindAny(request.object),
              [&](ShowObject& object) { return object.SetProperty(request.text, request.value); });
}

Reply SetPropertyAsInt(ShowModel& model, const Request& request) {
    return On(model.FindAny(request.object),
              [&](ShowObject& object) { return object.SetPropertyAsInt(request.text, request.number); });
}

Reply GetProperty(ShowModel& model, const Request& request) {
    const auto object = model.FindAny(request.object);
    if (!object)
        return {kNoSuchObject};
    auto text = object->Property(request.text);
    return text ? Reply{KXP_OK, std::move(text)} : Reply{kNoSuchProperty};
}

Reply GetPropertyAsInt(ShowModel& model, const Request& request) {
    const auto object = model.FindAny(request.object);
    if (!object)
        return {kNoSuchObject};
    const auto number = object->PropertyAsInt(request.text);
    return number ? Reply{KXP_OK, std::to_string(*number)} : Reply{kNoSuchProperty};
}

/// How a request is served, and among which objects its name is looked up: one kind, or all.
struct ServingRow {
    RequestKind kind;
    Serving serve; ///< null for Perform, whose answer may come later
    bool anyKind;
    ObjectKind objectKind;
};

constexpr ServingRow kServings[] = {
    {RequestKind::OpenUserScreen, &OpenUserScreen, false, ObjectKind::UserScreen},
    {RequestKind::CloseUserScreen, &CloseUserScreen, false, ObjectKind::UserScreen},
    {RequestKind::GotoPage, &GotoPage, false, ObjectKind::UserScreen},
    {RequestKind::StartTask, &StartTask, false, ObjectKind::Task},
    {RequestKind::PauseTask, &PauseTask, false, ObjectKind::Task},
    {RequestKind::StopTask, &StopTask, false, ObjectKind::Task},
    {RequestKind::GotoLabel, &GotoLabel, false, ObjectKind::Task},
    {RequestKind::GotoLine, &GotoLine, false, ObjectKind::Task},
    {RequestKind::GotoTime, &GotoTime, false, ObjectKind::Task},
    {RequestKind::LoadShow, &LoadShow, false, ObjectKind::Show},
    {RequestKind::GetObjectList, &GetObjectList, true, {}},
    {RequestKind::GetObject, &GetObject, true, {}},
    {RequestKind::SetProperty, &SetProperty, true, {}},
    {RequestKind::SetPropertyAsInt, &SetPropertyAsInt, true, {}},
    {RequestKind::GetProperty, &GetProperty, true, {}},
    {RequestKind::GetPropertyAsInt, &GetPropertyAsInt, true, {}},
    {RequestKind::Perform, nullptr, true, {}},
};

constexpr bool InEnumOrder() {
    int index = 0;
    for (const auto& row : kServings) {
        if (static_cast<int>(row.kind) != index++)
            return false;
    }
    return index == static_cast<int>(RequestKind::Perform) + 1;
}
static_assert(InEnumOrder(), "the table is indexed by the kind of request");

const ServingRow& RowOf(const Request& request) {
    return kServings[static_cast<int>(request.kind)];
}

ShowObjectPtr FindObject(const ShowModel& model, const Request& request) {
    const ServingRow& row = RowOf(request);
    return row.anyKind ? model.FindAny(request.object) : model.Find(row.objectKind, request.object);
}

/// Lists and descriptions may ask for the whole show, which is no object.
bool AsksForWholeShow(const Request& request) {
    const bool lists = request.kind == RequestKind::GetObjectList || request.kind == RequestKind::GetObject;
    return lists && (request.object.empty() || request.object == kGrantedGroup);
}

} // namespace

RequestDesk::RequestDesk(ShowModel& model, WorkerPool& pool)
    : m_model(model)
    , m_strand(pool) {}

RequestDesk::~RequestDesk() {
    for (const auto& entry : m_waiting)
        entry.second({kEnding});
}

KXPCode RequestDesk::Check(const Request& request) const {
    if (AsksForWholeShow(request))
        return KXP_OK;
    const auto object = FindObject(m_model, request);
    if (!object)
        return kNoSuchObject;
    return object->HowItTakesRequests() == Conduct::Refuses ? KXPCode{kRefused} : KXP_OK;
}

KXPCode RequestDesk::CheckGroup(const std::string& group) const {
    if (group == kGrantedGroup)
        return KXP_OK;
    const auto found = m_model.FindGroup(group);
    if (!found)
        return kNoSuchObject;
    return found->HowItTakesRequests() == Conduct::Refuses ? KXPCode{kRefused} : KXP_OK;
}

void RequestDesk::Serve(Request request, Answer answer) {
    const auto object = FindObject(m_model, request);
    if (object && object->HowItTakesRequests() == Conduct::NeverEnds) {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_waiting.emplace_back(request.link, std::move(answer));
        return;
    }
    m_strand.Post([this, request = std::move(request), answer = std::move(answer)] { Run(request, answer); });
}

void RequestDesk::EndWaiting(const void* link) {
    std::vector<Answer> ended;
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        const auto others = std::stable_partition(m_waiting.begin(), m_waiting.end(),
                                                  [&](const auto& entry) { return entry.first != link; });
        for (auto entry = others; entry != m_waiting.end(); ++entry)
            ended.push_back(std::move(entry->second));
        m_waiting.erase(others, m_waiting.end());
    }
    for (const auto& answer : ended)
        answer({kEnding});
}

void RequestDesk::Run(const Request& request, const Answer& answer) {
    if (const Serving serve = RowOf(request).serve)
        return answer(serve(m_model, request));
    const auto object = m_model.FindAny(request.object);
    const auto parameters = ReadParameters(request.value);
    if (!object)
        return answer({kNoSuchObject});
    if (!parameters)
        return answer({kBadParameters});
    object->Perform(request.text, *parameters, answer);
}

} // namespace stagehost
