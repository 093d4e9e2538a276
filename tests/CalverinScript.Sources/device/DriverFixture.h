#pragma once

#include <functional>
#include <map>
#include <memory>

#include "DeviceFixture.h"
#include "FakeRemotes.h"
#include "TypedValue.h"

/// The variables of a device as its definition tells them: made when the host takes a definition, each with a number.
class DefinedVariables : public plain::Variables {
public:
    IData* GetVariable(const char* name) override;
    std::uint32_t SetDefinition(const char* xml) override;

    TypedValue& At(const std::string& name) { return *m_own.at(name); }
    bool Has(const std::string& name) const { return m_own.count(name) > 0; }

    /// Drops the values that a definition has made, and may do it from inside a call.
    void DropAll() { m_own.clear(); }

    bool refuses = false;               ///< takes no definition
    std::function<void()> onGet;        ///< a variable is asked for
    std::function<void()> onDefinition; ///< a definition is offered

private:
    std::map<std::string, std::unique_ptr<TypedValue>> m_own;
    std::uint32_t m_lastId = 100;
};

/// A module with a list of devices and a real definition.
class DriverModule : public TestModule {
public:
    DriverModule();
    MLockedList<MCalverinScript_Device*>* GetDeviceList() override { return &devices; }
    void RemoveDevice(MCalverinScript_Device* device) override { devices.Remove(device); }
    bool IsHostAtLeast642() const override { return isRecent; }

    MLockedList<MCalverinScript_Device*> devices;
    bool isRecent = true;

private:
    const std::string m_definition;
};

/// One device with its variables.
struct DriverDevice {
    DefinedVariables variables;
    MCalverinScript_Device* device = nullptr; ///< null once a test has released it
};

/// Devices whose scripts are drivers, between a plain host and a test.
class DriverFixture : public testing::Test {
protected:
    DriverFixture();
    void TearDown() override;

    DriverDevice& MakeDevice(const char* name = "Desk");
    /// Lets a dialog be accepted in which the user has put that script and nothing else. @return the dialog's code.
    static KXPCode Accept(DriverDevice& driver, const std::string& script);
    static std::string Setup(DriverDevice& driver);
    /// Sends a user command and waits for its end. @return the result text, "(code n)" when it is refused.
    std::string Send(DriverDevice& driver, std::int32_t id, std::vector<IObjectParam*> inputs);
    /// "name:id" of each command of the device, blanks between.
    static std::string Commands(const DriverDevice& driver);
    static std::int32_t IdOf(const DriverDevice& driver, const std::string& name);

    plain::Host host;
    FakeRemote2 remote;
    DriverModule module;
    std::vector<std::unique_ptr<DriverDevice>> drivers;
    QTemporaryDir folder;
};
