#pragma once

#include <cstdint>

#include "KXPTypes.h"

class CommandRoad;
class HostValues;
class IExecContext;
class IObjectParams;
class IScriptReports;
class ScriptProgram;
class UserCommands;
struct MScriptCommand;
struct ScriptRequest;

/// Takes the commands that the host sends: it reads the texts of their parameters and posts what they ask for. A
/// parameter's value is that of the variable bound to it, where there is one.   [all: any host thread]
class HostCommands {
public:
    /// What it works with, all borrowed for its life.
    struct Parts {
        UserCommands& commands;
        ScriptProgram& program;
        CommandRoad& road;
        HostValues& values;
        IScriptReports& reports;
        bool writesResults; ///< whether the host takes the results of the script's own commands
    };

    explicit HostCommands(const Parts& parts)
        : m_parts(parts) {}
    HostCommands(const HostCommands&) = delete;
    HostCommands& operator=(const HostCommands&) = delete;

    /// As IKXPDevice::ExecuteCommand.
    KXPCode Take(std::int32_t id, IObjectParams* params, IExecContext* context);

private:
    KXPCode Post(const ScriptRequest& request, IExecContext* context);
    KXPCode PostBuiltIn(std::int32_t id, IObjectParams& params, IExecContext* context);
    KXPCode PostWithParams(const char* function, IObjectParams& params, IExecContext* context);
    KXPCode PostUsers(std::int32_t id, IObjectParams& params, IExecContext* context);

    const Parts m_parts;
};
