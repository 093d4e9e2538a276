#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A command as a definition has it: `<Command ID="3" Name="Wait">`.
struct CommandTag {
    std::int32_t id;
    std::string name;
};

/// The commands of a definition, in its order; attributes may stand in any order and in either quotes. What is no XML
/// gives what can be found in it. @param definition null for none.
std::vector<CommandTag> CommandsOf(const char* definition);
