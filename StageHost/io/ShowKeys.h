#pragma once

#include <cstddef>

/// @file
/// What a show file is made of: the keys of each object in it. The reader refuses every other key, and the schema of
/// show files is made from these rows. Pure data, without threads.

namespace stagehost {

/// One key of an object.
///
/// The form of its value is one of text, number, truth, scalar (any of these), whole, whole(LOWEST) and
/// whole(LOWEST,HIGHEST), texts in double quotes of which it is one, the name of an object of kShowObjects, [FORM] for
/// a list and {FORM} for an object with names of its own; several forms stand with " | " between them.
struct ShowKey {
    const char* name;
    const char* form;
    bool needed;
    const char* meaning;
};

// clang-format off: one row a line, however long
inline constexpr ShowKey kShowKeys[] = {
    {"name", "text", false, "shown to the user; the file's name if not given"},
    {"host", "host", false, "what the host tells the module of itself"},
    {"folders", "folders", false, "the host's folders"},
    {"resources", "[resource]", false, "serial ports, universes and channels"},
    {"variables", "[variable]", false, "variables of the host"},
    {"peers", "[peer]", false, "programs that stand for the other end of a line, and run as long as the show"},
    {"devices", "[device]", false, "devices with their scripts"},
    {"commands", "[storedCommand]", false, "stored commands, as \"stagehost store\" writes them"},
    {"tasks", "[task]", false, "tasks with their lines"},
    {"cues", "[cue]", false, "cues"},
    {"screens", "[screen]", false, "user screens"},
    {"groups", "[group]", false, "user groups"},
    {"objects", "[object]", false, "objects of your own"},
    {"shows", "[loadableShow]", false, "what scripts may load by name"},
    {"test", "truth | test", false, "\"stagehost test\" plays the show as one of the tests of its folder"},
    {"steps", "[step]", false, "what \"stagehost run\" plays, in order"},
};

inline constexpr ShowKey kTestKeys[] = {
    {"within", "whole(1)", false, "ms of the computer that the test may take; 60000 if not given"},
    {"speed", "whole(1,3600)", false, "how many times as fast the time of the show runs"},
    {"clock", "text", false, "the time at which the show begins, as \"19:30\" or \"2026-12-24 19:30\""},
};

inline constexpr ShowKey kHostKeys[] = {
    {"name", "text", false, "at most 27 characters; one that begins with \"hostq\" stands for a run-time host"},
    {"version", "text", false, "at most 27 characters"},
    {"userMode", "whole(0)", false, "the user mode that control panels are told; 2 if not given"},
    {"theme", "\"none\" \"dark\" \"light\"", false,
     "colours that the host offers to the module's windows; none if not given"},
};

inline constexpr ShowKey kFoldersKeys[] = {
    {"programData", "text", false, "the host's folder 1"},
    {"commonData", "text", false, "the host's folder 4"},
    {"projectUserData", "text", false, "the host's folder 20; the show's own if not given"},
    {"scripts", "text", false, "the host's folder 33"},
};

inline constexpr ShowKey kResourceKeys[] = {
    {"id", "whole", true, "the number that settings store"},
    {"name", "text", true, "its name"},
    {"serial", "serial", false, "a serial port"},
    {"dmxOut", "dmxOut", false, "a universe that goes out"},
    {"dmxIn", "dmxIn", false, "a universe that comes in"},
    {"channels", "channels", false, "channels that exist in the host alone"},
};

inline constexpr ShowKey kSerialKeys[] = {
    {"port", "text | peerAddress", true,
     "the system's name of the port, or one that begins with \"./\" for a port in the show's folder"},
    {"baudRate", "whole(50,4000000)", false, "until a script sets another one"},
    {"parity", "\"none\" \"odd\" \"even\"", false, "until a script sets another one"},
    {"dataSize", "whole(5,8)", false, "bits; until a script sets another one"},
    {"stopBits", "whole(1,2)", false, "until a script sets another one"},
};

inline constexpr ShowKey kDmxOutKeys[] = {
    {"protocol", "\"sacn\" \"artnet\"", false, "sacn if not given"},
    {"universe", "whole(0,63999)", false, "1 to 63999 for sACN; for Art-Net the Port-Address, 0 to 32767"},
    {"to", "text", false, "an IPv4 address, for sACN also \"multicast\"; 127.0.0.1 if not given"},
    {"interface", "text", false, "for \"multicast\", such as \"eth0\""},
    {"port", "whole(1,65535)", false, "the protocol's own if not given"},
    {"priority", "whole(0,200)", false, "of sACN; 100 if not given"},
    {"source", "text", false, "the name that others see"},
    {"rate", "whole(1)", false, "frames a second at most; 44 if not given"},
    {"continuous", "truth", false, "whether frames leave when nothing changes as well"},
};

inline constexpr ShowKey kDmxInKeys[] = {
    {"protocol", "\"sacn\" \"artnet\"", false, "sacn if not given"},
    {"universe", "whole(0,63999)", false, "1 to 63999 for sACN; for Art-Net the Port-Address, 0 to 32767"},
    {"at", "text", false, "the address of this computer where it is heard, or \"multicast\"; 127.0.0.1 if not given"},
    {"interface", "text", false, "for \"multicast\", such as \"eth0\""},
    {"port", "whole(1,65535)", false, "the protocol's own if not given"},
};

inline constexpr ShowKey kChannelsKeys[] = {
    {"digitalOut", "[text | channel]", false, "switches"},
    {"digitalIn", "[text | channel]", false, "contacts; a channel's number is its place in the list"},
    {"analogOut", "[text | channel]", false, "values that go out"},
    {"analogIn", "[text | channel]", false, "values that come in"},
};

inline constexpr ShowKey kChannelKeys[] = {
    {"name", "text", true, "its full name has the resource's in front, with a point between"},
    {"value", "whole", false, "at first"},
    {"min", "whole", false, "0 if not given"},
    {"max", "whole", false, "of an analog channel; 65535 if not given"},
};

inline constexpr ShowKey kVariableKeys[] = {
    {"name", "text", true, "its name"},
    {"type", "\"Integer\" \"Real\" \"String\" \"Time\" \"Date\" \"Enum\" \"Private\"", false, "String if not given"},
    {"value", "scalar", false, "at first, in the text form of its type"},
    {"min", "number", false, "of a number"},
    {"max", "number", false, "of a number"},
    {"maxLength", "whole(0)", false, "of a text"},
    {"precision", "whole(0,15)", false, "decimals of the text of a real"},
    {"timeCodeType", "whole(0,5)", false, "24, 25, 30, 30 drop, 100 and 1000 units a second; 4 if not given"},
    {"items", "[text]", false, "of an enumeration"},
};

inline constexpr ShowKey kPeerKeys[] = {
    {"name", "text", true, "its name in what is told of it"},
    {"script", "text", false, "a script that plays the device, see docs/counterparts.md"},
    {"replay", "text", false, "a file of what was said on a line, that is said again"},
    {"run", "[scalar]", false, "a program and its words; a program with a \"/\" is relative to the show"},
    {"options", "{scalar}", false, "of a script: values by the names that it asks for"},
    {"seed", "whole(0)", false, "of a script: the same chance in each run"},
    {"fast", "truth", false, "of a replay: true to answer at once, not after the time that it took then"},
    {"ordered", "truth", false, "of a replay: true to expect the requests in their order, not in any"},
};

inline constexpr ShowKey kPeerAddressKeys[] = {
    {"peer", "text", true, "the peer that is reached there"},
    {"endpoint", "text", false, "which of its endpoints, where it has several"},
    {"of", "\"host\" \"port\" \"path\" \"address\" \"url\"", false,
     "what of it; what fits the setting's name if not given"},
};

inline constexpr ShowKey kDeviceKeys[] = {
    {"name", "text", true, "its name"},
    {"driver", "text", false, "a script file of which the setup is made"},
    {"script", "text", false, "a script file that is loaded after the start"},
    {"scriptText", "text", false, "a script that is loaded after the start"},
    {"setup", "text", false, "the device's own setup text, as it gave it"},
    {"settings", "{scalar | peerAddress}", false, "values that stand over the setup"},
    {"requests", "\"normal\" \"refused\" \"neverEnd\"", false, "how the device takes what scripts ask of it"},
};

inline constexpr ShowKey kStoredCommandKeys[] = {
    {"name", "text", true, "its name"},
    {"xml", "text", true, "the command with its values"},
};

inline constexpr ShowKey kTaskKeys[] = {
    {"name", "text", true, "its name"},
    {"lines", "[line]", false, "in the order of their times"},
    {"requests", "\"normal\" \"refused\" \"neverEnd\"", false, "how the task takes what scripts ask of it"},
};

inline constexpr ShowKey kLineKeys[] = {
    {"at", "whole(0)", false, "ms from the task's beginning; the time of the line above if not given"},
    {"label", "text", false, "for scripts that go there"},
    {"set", "{scalar}", false, "variables, channels and universes that come in get values"},
    {"ramp", "{ramp}", false, "channels move to a value"},
    {"device", "text", false, "a command is sent to this device; nobody waits for its end"},
    {"command", "scalar", false, "the name or the number of the command"},
    {"params", "{scalar | variableParameter}", false, "values by the names of the parameters"},
    {"stored", "text", false, "a stored command is sent; nobody waits for its end"},
    {"task", "text", false, "a task is worked"},
    {"action", "\"start\" \"pause\" \"stop\"", false, "start if not given"},
    {"cue", "text", false, "a cue is run"},
};

inline constexpr ShowKey kCueKeys[] = {
    {"name", "text", true, "its name"},
    {"set", "{scalar}", false, "variables, channels and universes that come in get values"},
    {"ramp", "{ramp}", false, "channels move to a value"},
    {"device", "text", false, "a command is sent to this device; nobody waits for its end"},
    {"command", "scalar", false, "the name or the number of the command"},
    {"params", "{scalar | variableParameter}", false, "values by the names of the parameters"},
    {"stored", "text", false, "a stored command is sent; nobody waits for its end"},
    {"task", "text", false, "a task is worked"},
    {"action", "\"start\" \"pause\" \"stop\"", false, "start if not given"},
    {"requests", "\"normal\" \"refused\" \"neverEnd\"", false, "how the cue takes what scripts ask of it"},
};

inline constexpr ShowKey kScreenKeys[] = {
    {"name", "text", true, "its name"},
    {"pages", "[text]", false, "their names; one page if not given"},
    {"requests", "\"normal\" \"refused\" \"neverEnd\"", false, "how the screen takes what scripts ask of it"},
};

inline constexpr ShowKey kLoadableShowKeys[] = {
    {"name", "text", true, "its name"},
    {"set", "{scalar}", false, "variables, channels and universes that come in get values"},
    {"ramp", "{ramp}", false, "channels move to a value"},
    {"device", "text", false, "a command is sent to this device; nobody waits for its end"},
    {"command", "scalar", false, "the name or the number of the command"},
    {"params", "{scalar | variableParameter}", false, "values by the names of the parameters"},
    {"stored", "text", false, "a stored command is sent; nobody waits for its end"},
    {"task", "text", false, "a task is worked"},
    {"action", "\"start\" \"pause\" \"stop\"", false, "start if not given"},
    {"cue", "text", false, "a cue is run"},
    {"requests", "\"normal\" \"refused\" \"neverEnd\"", false, "how the show takes what scripts ask of it"},
};

inline constexpr ShowKey kGroupKeys[] = {
    {"name", "text", true, "its name"},
    {"members", "[text]", false, "names of objects; a device stands for its variables too"},
    {"groups", "[group]", false, "groups in it"},
    {"requests", "\"normal\" \"refused\" \"neverEnd\"", false, "how the group takes what scripts ask of it"},
};

inline constexpr ShowKey kObjectKeys[] = {
    {"name", "text", true, "its name; the full name has those of the objects above it in front"},
    {"properties", "{scalar}", false, "by name"},
    {"objects", "[object]", false, "objects in it"},
    {"requests", "\"normal\" \"refused\" \"neverEnd\"", false, "how the object takes what scripts ask of it"},
};

inline constexpr ShowKey kRampKeys[] = {
    {"to", "whole", true, "the value at the end"},
    {"time", "whole(0)", false, "ms"},
};

inline constexpr ShowKey kStepKeys[] = {
    {"say", "text", false, "shown to the user"},
    {"device", "text", false, "a command is sent to this device, and its end waited for"},
    {"command", "scalar", false, "the name or the number of the command"},
    {"params", "{scalar | stepParameter}", false, "values by the names of the parameters"},
    {"expect", "expectation", false, "how the command has to end"},
    {"stored", "text", false, "a stored command is sent, and its end waited for"},
    {"set", "{scalar}", false, "variables, channels and universes that come in get values"},
    {"ramp", "{ramp}", false, "channels move to a value"},
    {"task", "text", false, "a task is worked"},
    {"action", "\"start\" \"pause\" \"stop\"", false, "start if not given"},
    {"cue", "text", false, "a cue is run"},
    {"wait", "wait", false, "something is waited for"},
    {"pause", "whole(1)", false, "ms in which nothing is done"},
    {"peer", "text", false, "a peer of the show does something"},
    {"do", "\"leave\" \"return\" \"stall\" \"resume\" \"lie\" \"obey\"", false,
     "it is gone, comes back, neither reads nor speaks, goes on, misbehaves, behaves again"},
    {"with", "\"late\" \"cut\" \"repeat\" \"reset\" \"silence\" \"nonsense\"", false, "how it misbehaves"},
    {"call", "text", false, "in the place of \"do\": a function of its script"},
    {"args", "[scalar]", false, "what that is called with"},
};

inline constexpr ShowKey kWaitKeys[] = {
    {"until", "text", false, "what has to be so: NAME=VALUE, or with !=, <, <=, >, >= or ~ (a pattern)"},
    {"variable", "text", false, "in its place a variable, a channel or another resource"},
    {"value", "scalar", false, "and its value in the text form, or the state of a resource"},
    {"peer", "text", false, "in the place of all that a peer of the show"},
    {"received", "text", false, "has received this frame, behind the one that was waited for before"},
    {"matches", "text", false, "or one that this pattern finds something in"},
    {"within", "whole(1)", false, "ms; the limit for answers if not given"},
};

inline constexpr ShowKey kExpectKeys[] = {
    {"result", "scalar", false, "the text that has to come back"},
    {"error", "text", false, "the failure text that the step has to end in"},
};

inline constexpr ShowKey kVariableParameterKeys[] = {
    {"variable", "text", true, "the variable that stands for the parameter"},
};

inline constexpr ShowKey kStepParameterKeys[] = {
    {"file", "text", false, "the content of this text file"},
    {"path", "text", false, "the full path of this file"},
    {"variable", "text", false, "the variable that stands for the parameter"},
};
// clang-format on

/// An object of a show file by the name that the forms above give it.
struct ShowObjectKeys {
    const char* name;
    const ShowKey* keys;
    std::size_t count;
};

template <std::size_t Count>
constexpr ShowObjectKeys Keys(const char* name, const ShowKey (&keys)[Count]) {
    return {name, keys, Count};
}

/// All of them; the first is the whole file.
inline constexpr ShowObjectKeys kShowObjects[] = {
    Keys("show", kShowKeys),
    Keys("test", kTestKeys),
    Keys("host", kHostKeys),
    Keys("folders", kFoldersKeys),
    Keys("resource", kResourceKeys),
    Keys("serial", kSerialKeys),
    Keys("dmxOut", kDmxOutKeys),
    Keys("dmxIn", kDmxInKeys),
    Keys("channels", kChannelsKeys),
    Keys("channel", kChannelKeys),
    Keys("variable", kVariableKeys),
    Keys("peer", kPeerKeys),
    Keys("peerAddress", kPeerAddressKeys),
    Keys("device", kDeviceKeys),
    Keys("storedCommand", kStoredCommandKeys),
    Keys("task", kTaskKeys),
    Keys("line", kLineKeys),
    Keys("cue", kCueKeys),
    Keys("screen", kScreenKeys),
    Keys("loadableShow", kLoadableShowKeys),
    Keys("group", kGroupKeys),
    Keys("object", kObjectKeys),
    Keys("ramp", kRampKeys),
    Keys("step", kStepKeys),
    Keys("wait", kWaitKeys),
    Keys("expectation", kExpectKeys),
    Keys("variableParameter", kVariableParameterKeys),
    Keys("stepParameter", kStepParameterKeys),
};

} // namespace stagehost
