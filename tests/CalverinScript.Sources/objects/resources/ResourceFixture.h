#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "EventFixture.h"
#include "FakeResources.h"
#include "ScriptRecords.h"

/// A sentence, what the script does, and what the host is asked then.
struct HostCallCase {
    const char* sentence;
    const char* script;
    const char* calls;
};

/// A sentence, a script and the text of what it gives.
struct ValueCase {
    const char* sentence;
    const char* script;
    const char* value;
};

/// A device beside a host with a serial port 3, DMX inputs 1 and outputs 2, and an I/O resource 4 with two channels of
/// each kind, 0 and 1. It is not started, so that nothing looks at states by itself, until a test starts it.
class ResourceFixture : public EventFixture {
protected:
    ResourceFixture();

    /// Has the device read a setup whose settings are fields of these kinds with these signatures.
    void GivenSettings(std::initializer_list<std::pair<const char*, std::string>> settings);
    /// The same with a setting for each of the host's resources, with their signatures as a dialog writes them. Scripts
    /// have two functions more then: `get(type, id, channel)` takes a resource, `hearing(name)` makes a listener that
    /// tells the test.
    void GivenAllResources();
    /// The text of a stored setup with those settings.
    static std::string SetupText(const ScriptSettings& settings, const std::string& script = "({})");
    static ScriptSettings SettingsOf(const std::vector<std::pair<const char*, std::string>>& settings);
    static std::vector<std::pair<const char*, std::string>> AllSettings();

    /// Runs a script on the script thread. @return its value as text; "threw " and the error when it throws.
    std::string Run(const std::string& script);
    /// Runs each script and compares what the resource was asked by it.
    void CheckCalls(plain::CallBook& book, std::initializer_list<HostCallCase> cases);
    /// Runs each script and compares its value.
    void CheckValues(std::initializer_list<ValueCase> cases);
    /// Waits until the objects that the device let go are deleted.
    void WhenTheScriptThreadHasCaughtUp() {
        OnScriptThread([] {});
    }

    plain::FakeSerial serial{3};
    plain::FakeUniverse in{1};
    plain::FakeUniverse out{2};
    plain::FakeIo io{4};
    plain::FakeProvider provider;
};
