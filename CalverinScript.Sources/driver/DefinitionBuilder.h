#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ScriptRecords.h"

class IData;

/// What the definition of one device is built from.
struct DefinitionRequest {
    const char* definitionTemplate = nullptr; ///< XML text of the module
    std::uint32_t deviceNumber = 0;           ///< tells selectors which device's functions to offer
    /// The host's value of a variable that it knows, which has its number; null for others.
    std::function<IData*(const char* name)> findVariable = [](const char*) -> IData* { return nullptr; };
    std::vector<MScriptCommand> commands;   ///< user commands; those without an id are not offered
    std::vector<MScriptVariable> variables; ///< published variables
    bool hideDefaults = false;              ///< hides the built-in commands and drops the default variables
    bool resetDefaultIds = false; ///< gives the default variables no numbers, so that the host allocates them anew
};

/// Extends the template by what a script publishes.
/// @param out receives the text, indented by tabs.
/// @return false when the template cannot be parsed.   [host main]
bool BuildDefinition(const DefinitionRequest& request, std::string& out);
