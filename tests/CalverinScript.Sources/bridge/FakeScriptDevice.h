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
    std::vector<std::string> changes;         ///< "object|property|value|flag", "-" for a null text
    std::vector<std::string> events;          ///< "data 1 with object": name, count of values, source
    std::vector<std::function<void()>> tasks; ///< what was left for the script thread
    bool takesTasks = true;
    std::vector<std::string> results; ///< texts written into the results of commands
    MCommandObject* resultCommand = nullptr;
    MCommandObject* executing = nullptr;

    std::string GetScriptDeviceName() override { return name; }
    void PostAsyncResult(MyAsyncDeviceExecContext* context) override { asyncResults.push_back(context); }
    void PostPropertyChange(const char* object, const char* property, const char* value, bool objectFollows) override;
    MCommandObject* TakeExecutingCommand() override { return executing; }
    void WriteCommandResult(MCommandObject* command, const QString& text) override;
    int PostScriptEvent(const QString& event, const MScriptParamList* params, MScriptCommonEvent* object) override;
    void PostScriptEvents(const QString& name, std::vector<MScriptParamList> list, MScriptCommonEvent* object) override;
    bool PostTask(std::function<void()> task) override;

    bool ending = false;
    int timers = 0;                                  ///< the last id given; ids count from 1
    std::vector<std::string> timerCalls;             ///< "SetInterval 20", "ClearTimeout 3" and so on
    unsigned int callbackCode = 0;                   ///< what SetPropertyChangeCallback answers
    MyAsyncDeviceExecContext* madeContext = nullptr; ///< what MakeAsyncContext answers
    std::vector<MyAsyncDeviceExecContext*> forgotten;

    bool IsEnding() const override { return ending; }
    int SetInterval(const QScriptValue&, int delay) override { return NoteTimer("SetInterval", delay); }
    void ClearInterval(int id) override { timerCalls.push_back("ClearInterval " + std::to_string(id)); }
    int SetTimeout(const QScriptValue&, int delay) override { return NoteTimer("SetTimeout", delay); }
    void ClearTimeout(int id) override { timerCalls.push_back("ClearTimeout " + std::to_string(id)); }
    unsigned int SetPropertyChangeCallback(const QScriptValue&) override { return callbackCode; }
    MyAsyncDeviceExecContext* MakeAsyncContext(const QScriptValue&) override { return madeContext; }
    void ForgetAsyncContext(MyAsyncDeviceExecContext* context) override { forgotten.push_back(context); }
    MScriptResource* FindResource(const QScriptValue&) override { return resource; }

    MScriptResource* resource = nullptr; ///< what every signature names

private:
    int NoteTimer(const std::string& call, int delay) {
        timerCalls.push_back(call + " " + std::to_string(delay));
        return ++timers;
    }
};
