#include "ShowModel.h"

#include <algorithm>

#include "HostCodes.h"
#include "VariableObject.h"

namespace stagehost {

namespace {

using Failed = std::function<void(const std::string&)>;

void Report(const Failed& failed, const std::string& what, KXPCode code) {
    if (code == KXP_OK || !failed)
        return;
    const char* text = FindHostCodeText(code);
    failed(what + ": " + (text == nullptr ? "code " + std::to_string(code) : std::string(text)));
}

template <typename Object>
std::shared_ptr<Object> As(const ShowObjectPtr& object) {
    return std::static_pointer_cast<Object>(object);
}

} // namespace

ShowModel::ShowModel(VariableManager& variables, ChangeFeed& feed)
    : m_variables(variables)
    , m_feed(feed) {}

ShowModel::~ShowModel() {
    EndTasks();
}

void ShowModel::Fill(const ShowSpec& spec) {
    const auto player = [this](const ActionSpec& action, const Failed& failed) { Run(action, failed); };
    for (const auto& task : spec.tasks)
        m_top.push_back(std::make_shared<ShowTask>(task, m_feed, player));
    for (const auto& cue : spec.cues)
        m_top.push_back(std::make_shared<Cue>(cue, m_feed, player));
    for (const auto& screen : spec.screens)
        m_top.push_back(std::make_shared<UserScreen>(screen, m_feed));
    for (const auto& show : spec.shows)
        m_top.push_back(std::make_shared<LoadableShow>(show, m_feed, player));
    for (const auto& object : m_top)
        m_own.emplace(std::pair(object->Kind(), object->Name()), object);
    for (const auto& group : spec.groups) {
        m_top.push_back(std::make_shared<UserGroup>(group));
        FillGroups(As<UserGroup>(m_top.back()));
    }
    for (const auto& object : spec.objects) {
        m_top.push_back(std::make_shared<PlainObject>(object, std::string(), m_feed));
        FillObjects(As<PlainObject>(m_top.back()));
    }
}

void ShowModel::FillGroups(const std::shared_ptr<UserGroup>& group) {
    m_own.emplace(std::pair(ObjectKind::UserGroup, group->Name()), group);
    for (const auto& below : group->Groups())
        FillGroups(below);
}

void ShowModel::FillObjects(const std::shared_ptr<PlainObject>& object) {
    m_own.emplace(std::pair(ObjectKind::Object, object->Name()), object);
    for (const auto& below : object->Objects())
        FillObjects(below);
}

void ShowModel::AddResources(const std::vector<ShowObjectPtr>& resources) {
    for (const auto& resource : resources) {
        m_top.push_back(resource);
        m_own.emplace(std::pair(resource->Kind(), resource->Name()), resource);
    }
}

void ShowModel::EndTasks() {
    for (const auto& object : m_top) {
        if (object->Kind() == ObjectKind::Task)
            As<ShowTask>(object)->End();
    }
}

void ShowModel::AddDevice(ShowObjectPtr device) {
    const std::lock_guard<std::mutex> hold(m_lock);
    const std::string name = device->Name();
    m_devices[name] = std::move(device);
}

void ShowModel::RemoveDevice(const std::string& name) {
    ShowObjectPtr last; // goes behind the lock
    const std::lock_guard<std::mutex> hold(m_lock);
    const auto found = m_devices.find(name);
    if (found == m_devices.end())
        return;
    last = std::move(found->second);
    m_devices.erase(found);
}

ShowObjectPtr ShowModel::Find(ObjectKind kind, const std::string& name) const {
    if (kind == ObjectKind::Variable) {
        auto variable = m_variables.Find(name);
        return variable ? std::make_shared<VariableObject>(std::move(variable)) : nullptr;
    }
    if (kind == ObjectKind::Device) {
        const std::lock_guard<std::mutex> hold(m_lock);
        const auto found = m_devices.find(name);
        return found == m_devices.end() ? nullptr : found->second;
    }
    const auto found = m_own.find(std::pair(kind, name));
    return found == m_own.end() ? nullptr : found->second;
}

ShowObjectPtr ShowModel::FindAny(const std::string& name) const {
    for (const auto& row : kObjectKinds) {
        if (auto object = Find(row.kind, name))
            return object;
    }
    return nullptr;
}

std::shared_ptr<ShowTask> ShowModel::FindTask(const std::string& name) const {
    return As<ShowTask>(Find(ObjectKind::Task, name));
}

std::shared_ptr<UserScreen> ShowModel::FindScreen(const std::string& name) const {
    return As<UserScreen>(Find(ObjectKind::UserScreen, name));
}

std::shared_ptr<LoadableShow> ShowModel::FindShow(const std::string& name) const {
    return As<LoadableShow>(Find(ObjectKind::Show, name));
}

std::shared_ptr<Cue> ShowModel::FindCue(const std::string& name) const {
    return As<Cue>(Find(ObjectKind::Cue, name));
}

std::shared_ptr<ResourceObject> ShowModel::FindResource(const std::string& name) const {
    return As<ResourceObject>(Find(ObjectKind::Resource, name));
}

std::shared_ptr<UserGroup> ShowModel::FindGroup(const std::string& name) const {
    return As<UserGroup>(Find(ObjectKind::UserGroup, name));
}

std::vector<ShowObjectPtr> ShowModel::Top(ObjectKind kind) const {
    std::vector<ShowObjectPtr> objects;
    if (kind == ObjectKind::Variable) {
        for (auto& variable : m_variables.All())
            objects.push_back(std::make_shared<VariableObject>(std::move(variable)));
        return objects;
    }
    if (kind == ObjectKind::Device) {
        const std::lock_guard<std::mutex> hold(m_lock);
        for (const auto& entry : m_devices)
            objects.push_back(entry.second);
        return objects;
    }
    std::copy_if(m_top.begin(), m_top.end(), std::back_inserter(objects),
                 [&](const auto& object) { return object->Kind() == kind; });
    return objects;
}

std::vector<ShowObjectPtr> ShowModel::Below(const ShowObject& object) const {
    std::vector<ShowObjectPtr> below;
    if (object.Kind() == ObjectKind::UserGroup) {
        const auto& group = static_cast<const UserGroup&>(object);
        for (const auto& member : group.Members()) {
            if (auto found = FindAny(member))
                below.push_back(std::move(found));
        }
        below.insert(below.end(), group.Groups().begin(), group.Groups().end());
    }
    if (object.Kind() == ObjectKind::Object) {
        const auto& objects = static_cast<const PlainObject&>(object).Objects();
        below.insert(below.end(), objects.begin(), objects.end());
    }
    if (object.Kind() == ObjectKind::Device) {
        for (auto& variable : Top(ObjectKind::Variable)) {
            if (variable->Name().rfind(object.Name() + ".", 0) == 0)
                below.push_back(std::move(variable));
        }
    }
    return below;
}

bool ShowModel::GroupHas(const std::string& group, const std::string& variable) const {
    if (group == kGrantedGroup)
        return true;
    const auto found = FindGroup(group);
    return found && found->HasVariable(variable);
}

void ShowModel::Run(const ActionSpec& action, const Failed& failed) {
    for (const auto& [name, value] : action.sets)
        Report(failed, name, RunSet(name, value));
    for (const auto& ramp : action.ramps) {
        const auto channel = FindResource(ramp.channel);
        const KXPCode code =
            channel ? channel->Ramp(ramp.to, std::chrono::milliseconds(ramp.time)) : KXPCode{kNoSuchObject};
        Report(failed, ramp.channel, code);
    }
    if (!action.device.empty())
        RunCommand(action, failed);
    if (!action.stored.empty())
        RunStored(action.stored, failed);
    if (!action.task.empty()) {
        const auto task = FindTask(action.task);
        Report(failed, action.task, task ? task->Do(action.taskAction) : KXPCode{kNoSuchObject});
    }
    if (action.cue.empty())
        return;
    const auto cue = FindCue(action.cue);
    Report(failed, action.cue, cue ? KXP_OK : KXPCode{kNoSuchObject});
    if (cue)
        cue->Go();
}

KXPCode ShowModel::RunSet(const std::string& name, const std::string& value) {
    if (const auto variable = m_variables.Find(name))
        return variable->SetText(value) ? KXPCode{KXP_OK} : KXPCode{kBadValue};
    const auto resource = FindResource(name);
    return resource ? resource->SetValue(value) : KXPCode{kNoSuchObject};
}

void ShowModel::SetStoredCommand(const std::string& name, const ActionSpec& action) {
    const std::lock_guard<std::mutex> hold(m_lock);
    m_stored[name] = action;
}

void ShowModel::RunStored(const std::string& name, const Failed& failed) {
    ActionSpec action;
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        const auto found = m_stored.find(name);
        if (found != m_stored.end())
            action = found->second;
    }
    if (action.device.empty())
        return Report(failed, name, kNoSuchObject);
    RunCommand(action, failed);
}

void ShowModel::RunCommand(const ActionSpec& action, const Failed& failed) {
    const auto device = Find(ObjectKind::Device, action.device);
    const std::string what = action.device + ", " + action.command;
    if (!device)
        return Report(failed, what, kNoSuchObject);
    device->Perform(action.command, Parameters(action.parameters), [failed, what](const Reply& reply) {
        if (!reply.problem.empty() && failed)
            failed(what + ": " + reply.problem);
        else
            Report(failed, what, reply.code);
    });
}

} // namespace stagehost
