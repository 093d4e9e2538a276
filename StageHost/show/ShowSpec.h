#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace stagehost {

/// @file
/// What the show's own objects are before they live, as a show file tells it. All texts are Latin-1.

/// How an object takes requests; other than Normal it serves to try what a script does with a host that does not help.
enum class Conduct {
    Normal,
    Refuses,  ///< every request is answered with 72 at once
    NeverEnds ///< every request is taken on and never ends
};

/// Names of the conducts in show files, in the order of the enumeration.
inline constexpr const char* kConductNames[] = {"normal", "refused", "neverEnd"};

/// What can be done to a task without further words, with its name in show files and on the command line.
enum class TaskAction { Start, Pause, Stop };

inline constexpr const char* kTaskActionNames[] = {"start", "pause", "stop"};

/// A parameter of a command.
struct ActionParameter {
    std::string name;        ///< its name, or its number from 0
    std::string text;        ///< the value, or the name of the variable
    bool isVariable = false; ///< a variable of the show takes the parameter's place
};

/// A channel that moves to a value.
struct RampSpec {
    std::string channel; ///< its full name
    std::int32_t to = 0;
    std::int32_t time = 0; ///< ms
};

/// Something that the show does by itself: all that is named happens, in this order.
struct ActionSpec {
    std::vector<std::pair<std::string, std::string>> sets; ///< variables and resources with their new values
    std::vector<RampSpec> ramps;
    std::string device;  ///< empty: no command
    std::string command; ///< name or id
    std::vector<ActionParameter> parameters;
    std::string stored; ///< a stored command by its name; empty: none
    std::string task;   ///< empty: no task
    TaskAction taskAction = TaskAction::Start;
    std::string cue; ///< empty: no cue
};

struct TaskLineSpec {
    std::int32_t at = 0; ///< ms from the beginning of the task
    std::string label;
    ActionSpec action;
};

struct TaskSpec {
    std::string name;
    std::vector<TaskLineSpec> lines; ///< in the order of their times
    Conduct conduct = Conduct::Normal;
};

struct CueSpec {
    std::string name;
    ActionSpec action;
    Conduct conduct = Conduct::Normal;
};

struct UserScreenSpec {
    std::string name;
    std::vector<std::string> pages; ///< names of the pages, at least one
    Conduct conduct = Conduct::Normal;
};

struct UserGroupSpec {
    std::string name;
    std::vector<std::string> members; ///< names of objects of any kind but groups
    std::vector<UserGroupSpec> groups;
    Conduct conduct = Conduct::Normal;
};

struct ObjectSpec {
    std::string name; ///< without that of the object that holds it
    std::vector<std::pair<std::string, std::string>> properties;
    std::vector<ObjectSpec> objects;
    Conduct conduct = Conduct::Normal;
};

struct LoadableShowSpec {
    std::string name;
    ActionSpec action; ///< what loading it does
    Conduct conduct = Conduct::Normal;
};

/// All of them.
struct ShowSpec {
    std::vector<TaskSpec> tasks;
    std::vector<CueSpec> cues;
    std::vector<UserScreenSpec> screens;
    std::vector<UserGroupSpec> groups;
    std::vector<ObjectSpec> objects;
    std::vector<LoadableShowSpec> shows;
};

} // namespace stagehost
