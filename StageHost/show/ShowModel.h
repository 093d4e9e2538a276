#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ActionObjects.h"
#include "ChangeFeed.h"
#include "PlainObject.h"
#include "ResourceObject.h"
#include "ShowTask.h"
#include "UserGroup.h"
#include "UserScreen.h"
#include "VariableManager.h"

namespace stagehost {

/// All objects of the show and how they are found. The show's own objects stand from the beginning to the end; devices
/// come and go.
class ShowModel {
public:
    /// @param variables, feed must outlive the model.
    ShowModel(VariableManager& variables, ChangeFeed& feed);
    ~ShowModel();
    ShowModel(const ShowModel&) = delete;
    ShowModel& operator=(const ShowModel&) = delete;

    /// Makes the show's own objects; once, before anything else.   [host main]
    void Fill(const ShowSpec& spec);

    /// Makes the resources of the host known; once, before anything else.   [host main]
    void AddResources(const std::vector<ShowObjectPtr>& resources);

    /// Ends the tasks and waits for lines that are being played; none starts any more.   [host main]
    void EndTasks();

    /// Makes a device known, or takes it out. Requests under way keep the object.   [host main]
    void AddDevice(ShowObjectPtr device);
    void RemoveDevice(const std::string& name);

    /// The object of that kind and full name, or null.   [any]
    ShowObjectPtr Find(ObjectKind kind, const std::string& name) const;

    /// The first object of that name in the order of ObjectKind, or null.   [any]
    ShowObjectPtr FindAny(const std::string& name) const;

    std::shared_ptr<ShowTask> FindTask(const std::string& name) const;
    std::shared_ptr<UserScreen> FindScreen(const std::string& name) const;
    std::shared_ptr<LoadableShow> FindShow(const std::string& name) const;
    std::shared_ptr<Cue> FindCue(const std::string& name) const;
    std::shared_ptr<ResourceObject> FindResource(const std::string& name) const;
    std::shared_ptr<UserGroup> FindGroup(const std::string& name) const;

    /// The objects of a kind that stand at the top, devices and variables
    /// by name, the others in the order of the show file.   [any]
    std::vector<ShowObjectPtr> Top(ObjectKind kind) const;

    /// The objects directly below an object, by what kind it is: members and groups of a group, variables of a device,
    /// objects of an object.   [any]
    std::vector<ShowObjectPtr> Below(const ShowObject& object) const;

    /// Whether a variable belongs to a group; all belong to the granted one.   [any]
    bool GroupHas(const std::string& group, const std::string& variable) const;

    /// Does what an action says. Commands of devices go on after the call.
    /// @param failed hears, in words, of each part that failed; at once
    /// or later, on any host thread; may be empty.   [any host thread]
    void Run(const ActionSpec& action, const std::function<void(const std::string&)>& failed);

    /// Makes a stored command known by its name, as the action that it stands for.   [any]
    void SetStoredCommand(const std::string& name, const ActionSpec& action);

    VariableManager& Variables() { return m_variables; }
    ChangeFeed& Feed() { return m_feed; }

private:
    void FillGroups(const std::shared_ptr<UserGroup>& group);
    void FillObjects(const std::shared_ptr<PlainObject>& object);
    KXPCode RunSet(const std::string& name, const std::string& value);
    void RunStored(const std::string& name, const std::function<void(const std::string&)>& failed);
    void RunCommand(const ActionSpec& action, const std::function<void(const std::string&)>& failed);

    VariableManager& m_variables;
    ChangeFeed& m_feed;
    std::vector<ShowObjectPtr> m_top;                                  ///< filled once, only read afterwards
    std::map<std::pair<ObjectKind, std::string>, ShowObjectPtr> m_own; ///< filled once, only read afterwards
    mutable std::mutex m_lock;                                         ///< guards the fields below
    std::map<std::string, ShowObjectPtr> m_devices;
    std::map<std::string, ActionSpec> m_stored;
};

} // namespace stagehost
