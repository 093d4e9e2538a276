#include "BusyScript.h"

#include <thread>

std::string SetupWith(const std::string& script, const std::string& variable) {
    return "<DeviceData Version=\"1000\" Name=\"desk\" DeviceInternalVersion=\"1\"><Setup><Monitors><Monitor Name=\"" +
           variable + "\" Type=\"StringData\" Value=\"0\"/></Monitors><Script><![CDATA[" + script +
           "]]></Script></Setup></DeviceData>";
}

std::string BusySetup(const std::string& extra) {
    return SetupWith(
        "QCalverin.SetInterval(function () { script.Device.Level += 1; }, 1);\n"
        "var script = { Device: { Level: 0 }, Work: function (a) { script.Device.Level += 1; return a; } " +
            extra + " }; script;",
        "Level");
}

std::string TalkingSetup() {
    return "<DeviceData Version=\"1000\" Name=\"desk\"><Setup><Settings><Setting Name=\"port\" Type=\"StringData\" "
           "Widget=\"Serial\" Value='{ \"Type\":\"Serial\", \"ResourceID\":1 }'/></Settings>"
           "<Script RegisterAllUserGroups=\"1\"><![CDATA[QCalverin.RegisterGroup('House', true);\n"
           "({ Work: function (a) { QCalverin.OpenUserScreen('s', 1, 2, 3); QCalverin.StartTask('t');\n"
           "  QCalverin.SetProperty('o', 'p', 'v'); QCalverin.GetProperty('o', 'p');\n"
           "  return QCalverin.Perform('desk', a); } })]]></Script></Setup></DeviceData>";
}

bool WaitForText(HostedDevice& device, const std::string& variable, const std::string& text) {
    const auto end = std::chrono::steady_clock::now() + kTrialWait;
    while (device.Variables().Text(variable) != text) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

std::int32_t FunctionCommand(const HostedDevice& device) {
    const std::int32_t id = device.CommandId("Execute Function With Params");
    if (id < 0)
        throw Skipped("the module has no command \"Execute Function With Params\"");
    return id;
}

std::vector<std::string> CallOfWork(const std::string& argument) {
    std::vector<std::string> texts(kFunctionParameters);
    texts[0] = "Work";
    texts[2] = argument;
    return texts;
}

void LoadOrFail(ModuleHost& host, const Trial& trial) {
    const std::string problem = host.Load(trial.ModuleFile());
    if (!problem.empty())
        throw Finding(problem);
}

void StartBusy(HostedDevice& device, const std::string& setup) {
    const KXPCode code = CallModule("IKXPDevice::SetSetup(a script)", [&] { return device->SetSetup(setup.c_str()); });
    if (code != KXP_OK)
        throw Skipped("the module takes no setup with a script: SetSetup answers " + std::to_string(code));
    Trial::ExpectCode(CallModule("IKXPDevice::Start()", [&] { return device->Start(); }), KXP_OK,
                      "IKXPDevice::Start()");
}

void StartScript(HostedDevice& device, const std::string& setup, const std::vector<std::string>& functions) {
    StartBusy(device, setup);
    FunctionCommand(device);
    const std::string published = "\n" + device.Variables().Text("ScriptFunctions") + "\n";
    for (const std::string& function : functions)
        if (published.find("\n" + function + "\n") == std::string::npos)
            throw Skipped("the module runs no script: behind Start its variable ScriptFunctions does not name the "
                          "script's function " +
                          function);
}

std::string StartEither(HostedDevice& device, const std::string& setup) {
    try {
        StartScript(device, setup);
        return {};
    } catch (const Skipped& reason) {
        device->Start();
        return reason.what();
    }
}

void CallScript(HostedDevice& device, const std::vector<std::string>& texts, ContextTally& tally) {
    const std::int32_t command = FunctionCommand(device);
    Trial::ExpectCode(device.Send(command, texts, &tally), KXP_OK,
                      "IKXPDevice::ExecuteCommand(" + std::to_string(command) + ", " + texts[0] + ")");
}
