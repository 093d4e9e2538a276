#pragma once

#include <functional>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "IModuleServices.h"
#include "MCalverinScript_Device.h"
#include "PlainHost.h"

/// A module that has just what a device asks for.
class TestModule : public IModuleServices {
public:
    virtual ~TestModule() = default;
    IMInterface* GetHost() override { return host; }
    const char* GetDefinitionTemplate() override { return definition; }
    void GetConfigFilePath(char* buffer) override;
    bool IsDebuggerAllowed() const override { return debuggerAllowed; }
    bool IsHostAtLeast642() const override { return true; }
    bool IsHostAtLeast643() const override { return true; }
    void RemoveDevice(MCalverinScript_Device*) override { ++removed; }

    IMInterface* host = nullptr;
    const char* definition = nullptr;
    std::string configPath;
    bool debuggerAllowed = true;
    int removed = 0;
};

/// A device between a plain host and a test, and a few words to tell its stories with.
class DeviceFixture : public testing::Test {
protected:
    void SetUp() override { MakeDevice(); }
    void TearDown() override;

    void MakeDevice();
    /// Stops and releases the device.
    void EndDevice();
    /// Starts the device with a script text as its setup.
    void GivenScript(const std::string& text);
    /// Sends command 1 and waits until it is over.
    void WhenTextIsLoaded(const std::string& text);
    /// Sends command 0 and waits until it is over.
    void WhenFileIsLoaded(const std::string& path);
    /// Sends command 3 and waits for its End. @return the result text, "(no end)" past the deadline.
    std::string Call(const std::string& function, const std::vector<std::string>& arguments = {});
    KXPCode Send(std::int32_t id, plain::Params& params, IExecContext* context = nullptr) {
        return device->ExecuteCommand(id, &params, context);
    }
    std::string Error() const { return variables.error.Text(); }
    /// Runs work on the script thread and waits for it.
    void OnScriptThread(const std::function<void()>& work);
    /// @return whether the count of commands falls to 0, which it does only after the last one has told its end.
    bool NothingIsPending() const;
    /// Gives the script a function `inside` that sets the value to "yes".
    void TellWhenInside(plain::Value& inside);
    std::string WriteFile(const std::string& name, const std::string& content);

    plain::Host host;
    TestModule module;
    plain::Variables variables;
    QTemporaryDir folder;
    MCalverinScript_Device* device = nullptr;
};
