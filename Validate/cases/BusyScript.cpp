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
    Trial::Expect(problem.empty(), problem);
}

void StartBusy(HostedDevice& device, const std::string& setup) {
    if (device->SetSetup(setup.c_str()) != KXP_OK)
        throw Skipped("the module takes no setup with a script");
    Trial::ExpectCode(device->Start(), KXP_OK, "Start");
}
