#pragma once

#include <string>
#include <vector>

#include "IScriptDevice.h"

/// What the bridge asks of a device, noted.
class FakeScriptDevice : public IScriptDevice {
public:
    virtual ~FakeScriptDevice() = default;

    std::string name = "Desk";
    std::vector<MyAsyncDeviceExecContext*> asyncResults;
    std::vector<std::string> changes; ///< "object|property|value|flag", "-" for a null text
    std::vector<std::string> results; ///< texts written into the results of commands
    MCommandObject* resultCommand = nullptr;
    MCommandObject* executing = nullptr;

    const char* GetScriptDeviceName() override { return name.c_str(); }
    void PostAsyncResult(MyAsyncDeviceExecContext* context) override { asyncResults.push_back(context); }
    void PostPropertyChange(const char* object, const char* property, const char* value, bool objectFollows) override;
    MCommandObject* GetExecutingCommand() override { return executing; }
    void WriteCommandResult(MCommandObject* command, const QString& text) override;
};
