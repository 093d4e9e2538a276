#include "BusyScript.h"

std::string BusySetup(const std::string& extra) {
    return "<DeviceData Version=\"1000\" Name=\"desk\" DeviceInternalVersion=\"1\"><Setup><Script><![CDATA["
           "QCalverin.SetInterval(function () { script.Device.Level += 1; }, 1);\n"
           "var script = { Device: { Level: 0 }, Work: function (a) { script.Device.Level += 1; return a; } " +
           extra + " }; script;]]></Script></Setup></DeviceData>";
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
