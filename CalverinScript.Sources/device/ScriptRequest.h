#pragma once

#include <array>
#include <cstdint>

#include "CommandNumbers.h"

class IData;
class MCommandObject;
class MyAsyncDeviceExecContext;

/// What a command of the road asks of the script. All pointers are borrowed, for a call or from the
/// command that carries them.
struct ScriptRequest {
    std::int32_t id = kLoadFromFile;                  ///< a BuiltInCommand
    const char* text = nullptr;                       ///< the file, the script or the function
    IData* result = nullptr;                          ///< of a function with parameters; may be null
    std::array<const char*, kArgumentCount> params{}; ///< of a function with parameters; the first null ends them
    MyAsyncDeviceExecContext* answer = nullptr;       ///< of a callback

    static ScriptRequest Load(BuiltInCommand kind, const char* fileOrText);
    static ScriptRequest Function(const char* name);
    /// @param params kArgumentCount texts.
    static ScriptRequest Function(const char* name, IData* result, const char* const* params);
    static ScriptRequest Callback(MyAsyncDeviceExecContext* answer);

    /// Copies the texts and the pointers into a command, behind its context.
    void AddTo(MCommandObject& command) const;
    /// Reads them back; the texts are the command's.
    static ScriptRequest Of(const MCommandObject& command);
};
