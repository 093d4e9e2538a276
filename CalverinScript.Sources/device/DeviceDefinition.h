#pragma once

#include <string>

#include "ScriptRecords.h"

class HostValues;
class IModuleServices;
class StoredSetup;
struct ScriptSet;

/// The definition of one device: the commands and variables under which its host keeps it. It is built from the
/// module's template and what the script publishes, offered to the host, and brings the host's values of the variables.
/// [host main, where nothing else is said]
class DeviceDefinition {
public:
    /// All are borrowed for this object's life. @param module may be null: then there is no definition. @param running
    /// what the running script publishes.
    DeviceDefinition(IModuleServices* module, HostValues& values, const ScriptSet& running, StoredSetup& setup)
        : m_module(module)
        , m_values(values)
        , m_running(running)
        , m_setup(setup) {}
    DeviceDefinition(const DeviceDefinition&) = delete;
    DeviceDefinition& operator=(const DeviceDefinition&) = delete;

    /// The definition that the host has, or will ask for. While there is none it is built from the script that runs;
    /// where that fails it is the template. @return null without a module or template; valid until it is built anew.
    const char* Get();
    /// Builds one. @param hideDefaults leaves the default commands and variables out. @param resetDefaultIds gives them
    /// new numbers. @return false when the template is missing or of no use.
    bool Build(const ScriptCommands& functions, const ScriptVariables& variables, bool hideDefaults,
               bool resetDefaultIds, std::string& text);
    /// As HostValues::Offer.
    bool Offer(const std::string& definition);

    /// Looks up the host's values of the variables that the script has added, after a definition was taken. A host that
    /// gives another setup from within has bound them itself.
    void BindVariables();
    /// Looks up the host's values of the five default variables, unless the setup removes these.
    void BindDefaults();
    /// The same where they were never found.   [any host thread]
    void BindDefaultsUnlessBound();

private:
    IModuleServices* const m_module;
    HostValues& m_values;
    const ScriptSet& m_running;
    StoredSetup& m_setup;
    unsigned m_bindings = 0; ///< times that variables were looked up
};
