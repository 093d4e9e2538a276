#pragma once

#include <cstddef>

#include "KXPTypes.h"

namespace stagehost {

/// Codes of this host beside those of the contract. They reach scripts unchanged.
enum HostCode : KXPCode {
    kNoSuchObject = 64,   ///< the show has no object of that name and kind
    kUnknownFactory = 65, ///< UnregisterFactory: no factory of that name
    kNoSuchProperty = 66, ///< the object has no property of that name
    kReadOnly = 67,       ///< the property cannot be set
    kBadValue = 68,       ///< a value that is not taken
    kNoSuchPlace = 69,    ///< the task has no such label, line or time; the user screen has no such page
    kNoSuchAction = 70,   ///< the object has no such action, the device no such command
    kBadParameters = 71,  ///< the parameter text is no parameter list, or names what the action does not have
    kRefused = 72,        ///< the show file says that this object refuses every request
    kActionFailed = 73,   ///< the device took the command and reported an error, or refused it
    kNotRunning = 74,     ///< the device is not started, the task does not run, the user screen is not open
    kEnding = 75,         ///< the device or the host ends before the request is over
    kNoRoom = 76          ///< the system has no thread left
};

/// Every code of the host with its meaning, for people.
struct HostCodeText {
    HostCode code;
    const char* text;
};

inline constexpr HostCodeText kHostCodeTexts[] = {
    {kNoSuchObject, "there is no such object"},
    {kUnknownFactory, "no selector is known by that name"},
    {kNoSuchProperty, "the object has no such property"},
    {kReadOnly, "the property cannot be set"},
    {kBadValue, "the value is not taken"},
    {kNoSuchPlace, "there is no such label, line, time or page"},
    {kNoSuchAction, "the object has no such action or command"},
    {kBadParameters, "the parameters are no list or do not fit the action"},
    {kRefused, "the object refuses every request"},
    {kActionFailed, "the device reported an error or refused the command"},
    {kNotRunning, "the device, task or user screen does not run"},
    {kEnding, "the device or the host is ending"},
    {kNoRoom, "the system has no thread left"},
};
static_assert(sizeof(kHostCodeTexts) / sizeof(kHostCodeTexts[0]) == kNoRoom - kNoSuchObject + 1,
              "every code has its text");

/// The meaning of a code of this host; null for any other code.
constexpr const char* FindHostCodeText(KXPCode code) {
    for (const auto& row : kHostCodeTexts) {
        if (row.code == code)
            return row.text;
    }
    return nullptr;
}

} // namespace stagehost
