#include "ArgumentTable.h"

#include "HostOdds.h"

namespace {

using Stage = Operation::Stage;

std::uint32_t IsGiven(const void* pointer) {
    return pointer != nullptr ? 1 : 0;
}

void* Ignored(const Arguments& arguments) {
    return arguments.IsNull() ? nullptr : const_cast<char*>(arguments.text);
}

/// The answer of an object, if the module has it.
template <typename Object, typename Call>
std::uint32_t Ask(Object* object, const Call& call) {
    return object != nullptr ? static_cast<std::uint32_t>(call(*object)) : kNotOffered;
}

/// A device of its own, which the call may spoil.
template <typename Call>
std::uint32_t AskSpare(const Subjects& subjects, const Call& call) {
    IKXPDevice* device = nullptr;
    subjects.host->Module().CreateDevice(nullptr, &device);
    if (device == nullptr)
        return kNotOffered;
    const std::uint32_t answer = call(*device);
    device->Release();
    subjects.host->DropLink(device);
    return answer;
}

std::uint32_t AskFaces(IMInterface& object, const Arguments& arguments) {
    void* out = nullptr;
    const KXPCode code = object.QueryInterface(arguments.text, &out);
    return object.QueryInterface(arguments.text, nullptr) == KXP_BAD_INTERFACE_ARG && out == nullptr ? code : 0;
}

std::uint32_t SetVariables(const Subjects& subjects, const Arguments& arguments) {
    HostVariables variables(subjects.host->hearing);
    return AskSpare(subjects, [&](IKXPDevice& device) {
        device.SetDeviceVariables(arguments.IsNull() ? nullptr : &variables);
        device.GetDefinition();
        device.SetSetup(BusySetup().c_str());
        return device.Start() + device.Stop();
    });
}

/// The module has to go first: else a window might open.
std::uint32_t ShowSetup(const Subjects& subjects, const Arguments& arguments) {
    return AskSpare(subjects, [&](IKXPDevice& device) {
        subjects.host->Unload();
        return device.ShowSetup(Ignored(arguments));
    });
}

std::uint32_t Rename(IKXPDevice& device, const Arguments& arguments) {
    device.SetName(arguments.text);
    const char* name = device.GetName();
    return name != nullptr && std::string(arguments.IsNull() ? "" : arguments.text) == name ? 0 : 1;
}

std::uint32_t UpdateCommand(IKXPDevice& device, const Arguments& arguments) {
    char* out = nullptr;
    const KXPCode code = device.UpdateCommand(arguments.text, arguments.IsNull() ? nullptr : &out);
    if (arguments.IsNull())
        device.UpdateCommand("<Command/>", nullptr);
    return out == nullptr ? code : device.ReleaseString(&out);
}

/// Every command that a device may have, with good and with bad numbers, and with values that have no text.
std::uint32_t ExecuteCommands(HostedDevice& device, const Arguments& arguments) {
    if (arguments.IsNull()) {
        for (std::int32_t id = 0; id < 6; ++id) {
            if (device->ExecuteCommand(id, nullptr, nullptr) != KXP_BAD_COMMAND)
                return KXP_OK;
            device.SendNulls(id, kFunctionParameters);
        }
        return KXP_BAD_COMMAND;
    }
    const std::vector<std::string> texts(kFunctionParameters, arguments.text);
    for (const std::int32_t id : {0, 1, 2, 3, 4, 5, 10000})
        if (device.Send(id, texts) > KXP_SCRIPT_FAILED)
            return KXP_NOT_IMPLEMENTED;
    return device.Send(arguments.number, texts);
}

std::uint32_t ReleaseText(IKXPDevice& device, const Arguments& arguments) {
    if (arguments.IsNull())
        return device.ReleaseString(nullptr);
    char* text = nullptr;
    device.GetSetup(&text);
    const KXPCode code = device.ReleaseString(&text);
    return text == nullptr ? code : KXPCode{KXP_NOT_IMPLEMENTED};
}

std::uint32_t Select(const Subjects& subjects, const Arguments& arguments) {
    HostParams params({"x"}, subjects.host->hearing);
    return Ask(subjects.selector, [&](IPropertySelector& selector) {
        return selector.Select(nullptr, arguments.IsNull() ? nullptr : &params, arguments.text, nullptr);
    });
}

std::uint32_t TellBytes(ISerialResourceHandler& handler, ISerialResource& port, const Arguments& arguments) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(arguments.text);
    const auto length = static_cast<std::int32_t>(arguments.IsNull() ? 0 : std::string(arguments.text).size());
    handler.OnData(nullptr, bytes, length, 0);
    handler.OnData(&port, bytes, -1, 0);
    handler.OnData(&port, bytes, length, arguments.Unsigned());
    return 0;
}

std::uint32_t TellFrame(IDMXResourceHandler& handler, IDMXResource& universe, const Arguments& arguments) {
    const auto* levels = reinterpret_cast<const std::uint8_t*>(arguments.text);
    const auto length = static_cast<std::int32_t>(arguments.IsNull() ? 0 : std::string(arguments.text).size());
    handler.OnData(nullptr, levels, length, 0);
    handler.OnData(&universe, levels, -1, 0);
    handler.OnData(&universe, levels, length, arguments.Unsigned());
    return 0;
}

} // namespace

const std::vector<Operation>& AllOperations() {
    using S = const Subjects&;
    using A = const Arguments&;
    static const std::vector<Operation> operations = {
        {"IMInterface", "QueryInterface", Stage::AtWork, KXP_BAD_INTERFACE_ARG, KXP_NO_INTERFACE,
         [](S s, A a) { return AskFaces(**s.device, a); }},
        {"IMInterface", "Release", Stage::Alone, KXP_OK, KXP_OK,
         [](S s, A) {
             IKXPModule& module = s.host->Module();
             const KXPCode code = module.Release();
             s.host->Forget();
             return code;
         }},
        {"IKXPModule", "Initialize", Stage::Alone, KXP_OK, KXP_OK,
         [](S s, A a) {
             return s.host->Module().Initialize(a.IsNull() ? nullptr : s.host->Root(), Ignored(a), Ignored(a));
         }},
        {"IKXPModule", "Terminate", Stage::Alone, KXP_OK, KXP_OK,
         [](S s, A a) { return s.host->Module().Terminate(Ignored(a)); }},
        {"IKXPModule", "SetDeviceHost", Stage::Alone, KXP_NO_DEVICE_HOST, KXP_OK,
         [](S s, A a) {
             s.host->Module().SetDeviceHost(Ignored(a));
             const KXPCode code = AskSpare(s, [](IKXPDevice&) { return KXPCode{KXP_OK}; });
             return code == kNotOffered ? KXPCode{KXP_NO_DEVICE_HOST} : code;
         }},
        {"IKXPModule", "GetDefinition", Stage::AtWork, kAnyAnswer, kAnyAnswer,
         [](S s, A) { return IsGiven(s.host->Module().GetDefinition()); }},
        {"IKXPModule", "GetModuleVersion", Stage::AtWork, KXP_OK, KXP_OK,
         [](S s, A a) {
             std::uint32_t out = 0;
             return s.host->Module().GetModuleVersion(a.IsNull() ? nullptr : &out);
         }},
        {"IKXPModule", "GetDeviceCount", Stage::AtWork, KXP_OK, KXP_OK,
         [](S s, A a) {
             std::uint32_t out = 0;
             return s.host->Module().GetDeviceCount(a.IsNull() ? nullptr : &out);
         }},
        {"IKXPModule", "CreateDevice", Stage::AtWork, KXP_NULL_ARGUMENT, KXP_NULL_ARGUMENT,
         [](S s, A a) {
             IKXPDevice* occupied = &**s.device;
             return s.host->Module().CreateDevice(Ignored(a), a.IsNull() ? nullptr : &occupied);
         }},
        {"IKXPModule", "GetDevice", Stage::AtWork, 0, 0,
         [](S s, A a) { return IsGiven(s.host->Module().GetDevice(a.Unsigned())); }},
        {"IKXPModule", "CheckCommand", Stage::AtWork, KXP_OK, kAnyAnswer,
         [](S s, A a) {
             HostParams params(std::vector<std::string>(a.IsNull() ? 0 : 3, a.IsNull() ? "" : a.text), s.host->hearing);
             s.host->Module().CheckCommand(Ignored(a), &**s.device, a.number, nullptr);
             return s.host->Module().CheckCommand(Ignored(a), a.IsNull() ? nullptr : &**s.device, a.number, &params);
         }},
        {"IKXPModuleDriverManager", "GetDriverList", Stage::AtWork, KXP_OK, KXP_OK,
         [](S s, A a) {
             char* list = nullptr;
             std::uint32_t size = 0;
             return Ask(s.drivers, [&](auto& drivers) {
                 return drivers.GetDriverList(a.IsNull() ? nullptr : &list, a.number % 2 == 0 ? &size : nullptr);
             });
         }},
        {"IKXPModuleDriverManager", "ShowDriverSetup", Stage::AtWork, KXP_NULL_ARGUMENT, KXP_NULL_ARGUMENT,
         [](S s, A a) {
             return Ask(s.drivers, [&](auto& drivers) {
                 return drivers.ShowDriverSetup(a.text, a.IsNull() ? nullptr : &**s.device, nullptr);
             });
         }},
        {"IKXPModuleDriverManager", "GetDriverBitmap", Stage::AtWork, kAnyAnswer, kAnyAnswer,
         [](S s, A) { return Ask(s.drivers, [](auto& drivers) { return IsGiven(drivers.GetDriverBitmap()); }); }},
        {"IKXPDevice", "SetDeviceVariables", Stage::AtWork, KXP_OK, KXP_OK, &SetVariables},
        {"IKXPDevice", "QueryCapability", Stage::AtWork, KXP_NO, KXP_NO,
         [](S s, A a) { return (*s.device)->QueryCapability(a.Unsigned()); }},
        {"IKXPDevice", "SetName", Stage::AtWork, KXP_OK, KXP_OK, [](S s, A a) { return Rename(**s.device, a); }},
        {"IKXPDevice", "GetName", Stage::AtWork, 1, 1, [](S s, A) { return IsGiven((*s.device)->GetName()); }},
        {"IKXPDevice", "ShowSetup", Stage::Alone, kCancelledOrGone, kCancelledOrGone, &ShowSetup},
        {"IKXPDevice", "IsRunning", Stage::AtWork, KXP_OK, KXP_OK, [](S s, A) { return (*s.device)->IsRunning(); }},
        {"IKXPDevice", "Start", Stage::AtWork, KXP_OK, KXP_OK, [](S s, A) { return (*s.device)->Start(); }},
        {"IKXPDevice", "Stop", Stage::AtWork, KXP_OK, KXP_OK,
         [](S s, A) { return (*s.device)->Stop() + (*s.device)->Start(); }},
        {"IKXPDevice", "OnTimerailEvent", Stage::AtWork, KXP_OK, KXP_OK,
         [](S s, A a) {
             HostTime time(a.IsNull() ? "" : a.text, a.number);
             return (*s.device)->OnTimerailEvent(a.IsNull() ? nullptr : &time, a.number);
         }},
        {"IKXPDevice", "GetBitmap", Stage::AtWork, kAnyAnswer, kAnyAnswer,
         [](S s, A) { return IsGiven((*s.device)->GetBitmap()); }},
        {"IKXPDevice", "GetSetup", Stage::AtWork, KXP_NULL_ARGUMENT, KXP_OK,
         [](S s, A a) {
             char* text = nullptr;
             const KXPCode code = (*s.device)->GetSetup(a.IsNull() ? nullptr : &text);
             if (text != nullptr)
                 (*s.device)->ReleaseString(&text);
             return code;
         }},
        {"IKXPDevice", "SetSetup", Stage::AtWork, KXP_NULL_ARGUMENT, kRefusal,
         [](S s, A a) { return (*s.device)->SetSetup(a.text); }},
        {"IKXPDevice", "UpdateCommand", Stage::AtWork, KXP_NOT_IMPLEMENTED, KXP_NOT_IMPLEMENTED,
         [](S s, A a) { return UpdateCommand(**s.device, a); }},
        {"IKXPDevice", "Reserved14", Stage::AtWork, kAnyAnswer, kAnyAnswer,
         [](S s, A a) { return (*s.device)->Reserved14(Ignored(a)); }},
        {"IKXPDevice", "Reserved15", Stage::AtWork, kAnyAnswer, kAnyAnswer,
         [](S s, A a) { return (*s.device)->Reserved15(Ignored(a)); }},
        {"IKXPDevice", "Reserved16", Stage::AtWork, kAnyAnswer, kAnyAnswer,
         [](S s, A a) { return (*s.device)->Reserved16(Ignored(a)); }},
        {"IKXPDevice", "ExecuteCommand", Stage::AtWork, KXP_BAD_COMMAND, KXP_BAD_COMMAND,
         [](S s, A a) { return ExecuteCommands(*s.device, a); }},
        {"IKXPDevice", "ReleaseString", Stage::AtWork, KXP_NULL_ARGUMENT, KXP_OK,
         [](S s, A a) { return ReleaseText(**s.device, a); }},
        {"IKXPDevice", "GetDefinition", Stage::AtWork, kAnyAnswer, kAnyAnswer,
         [](S s, A) { return IsGiven((*s.device)->GetDefinition()); }},
        {"IKXPDevice", "Reserved20", Stage::AtWork, kAnyAnswer, kAnyAnswer,
         [](S s, A) { return (*s.device)->Reserved20(); }},
        {"IKXPDevice", "CreatePanel", Stage::AtWork, KXP_NULL_ARGUMENT, KXP_NOT_IMPLEMENTED,
         [](S s, A a) {
             IKXPDevicePanel* panel = nullptr;
             return (*s.device)->CreatePanel(a.Unsigned(), a.IsNull() ? nullptr : &panel);
         }},
        {"IKXPDevicePanel", "GetWindow", Stage::AtWork, kAnyAnswer, kAnyAnswer,
         [](S s, A) { return Ask(s.panel, [](auto& panel) { return panel.GetWindow() != 0 ? 1 : 0; }); }},
        {"IKXPDevicePanel", "Reserved4", Stage::AtWork, 0, 0,
         [](S s, A a) { return Ask(s.panel, [&](auto& panel) { return panel.Reserved4(Ignored(a)); }); }},
        {"IKXPDevicePanel", "GetName", Stage::AtWork, 1, 1,
         [](S s, A) { return Ask(s.panel, [](auto& panel) { return IsGiven(panel.GetName()); }); }},
        {"IKXPDevicePanel", "Reserved6", Stage::AtWork, 1, 1,
         [](S s, A a) { return Ask(s.panel, [&](auto& panel) { return panel.Reserved6(Ignored(a)); }); }},
        {"IKXPDevicePanel", "GetBounds", Stage::AtWork, 0, kAnyAnswer,
         [](S s, A a) {
             HostRect rect;
             return Ask(s.panel, [&](auto& panel) { return panel.GetBounds(a.IsNull() ? nullptr : &rect) ? 1 : 0; });
         }},
        {"IKXPDevicePanel", "GetState", Stage::AtWork, kAnyAnswer, kAnyAnswer,
         [](S s, A) { return Ask(s.panel, [](auto& panel) { return panel.GetState(); }); }},
        {"IKXPDevicePanel", "SetState", Stage::AtWork, 0, 0,
         [](S s, A a) {
             return Ask(s.panel, [&](auto& panel) {
                 panel.SetState(a.Unsigned(), a.Unsigned());
                 panel.SetState(KXP_PANEL_STATE, a.Unsigned());
                 return panel.GetState() == a.Unsigned() ? 0 : 1;
             });
         }},
        {"IObjectFactory", "CreateObject", Stage::AtWork, 0, 0,
         [](S s, A a) { return Ask(s.factory, [&](auto& factory) { return IsGiven(factory.CreateObject(a.text)); }); }},
        {"IPropertySelector", "Reserved3", Stage::AtWork, 1, 1,
         [](S s, A a) { return Ask(s.selector, [&](auto& selector) { return selector.Reserved3(Ignored(a)); }); }},
        {"IPropertySelector", "GetName", Stage::AtWork, 1, 1,
         [](S s, A) { return Ask(s.selector, [](auto& selector) { return IsGiven(selector.GetName()); }); }},
        {"IPropertySelector", "Select", Stage::AtWork, 0, 0, &Select},
        {"IManagerRemoteHandler", "OnPropertyChange", Stage::AtWork, KXP_OK, KXP_OK,
         [](S s, A a) {
             return Ask(s.changes, [&](auto& changes) {
                 return changes.OnPropertyChange(a.text, a.text, a.text, a.Unsigned(), a.Unsigned());
             });
         }},
        {"IManagerRemoteHandler", "Reserved2", Stage::AtWork, kAnyAnswer, kAnyAnswer,
         [](S s, A a) {
             return Ask(s.changes,
                        [&](auto& changes) { return changes.Reserved2(Ignored(a), Ignored(a), Ignored(a)); });
         }},
        {"IExecContext", "SetErrorCode", Stage::AtWork, KXP_OK, KXP_OK,
         [](S s, A a) { return Ask(s.request, [&](auto& request) { return request.SetErrorCode(a.Unsigned()); }); }},
        {"IExecContext", "Begin", Stage::AtWork, KXP_OK, KXP_OK,
         [](S s, A) { return Ask(s.request, [](auto& request) { return request.Begin(); }); }},
        {"IExecContext", "End", Stage::AtWork, KXP_OK, KXP_OK,
         [](S s, A) { return Ask(s.request, [](auto& request) { return request.End(); }); }},
        {"IExecContext", "Reserved4", Stage::AtWork, kAnyAnswer, kAnyAnswer,
         [](S s, A a) { return Ask(s.request, [&](auto& request) { return request.Reserved4(Ignored(a)); }); }},
        {"IExecContext", "Reserved5", Stage::AtWork, kAnyAnswer, kAnyAnswer,
         [](S s, A a) { return Ask(s.request, [&](auto& request) { return request.Reserved5(Ignored(a)); }); }},
        {"IExecContext2", "AddRef", Stage::AtWork, KXP_OK, KXP_OK,
         [](S s, A) { return Ask(s.request, [](auto& request) { return request.AddRef() + request.Release(); }); }},
        {"IExecContext2", "Reserved7", Stage::AtWork, kAnyAnswer, kAnyAnswer,
         [](S s, A a) { return Ask(s.request, [&](auto& request) { return request.Reserved7(Ignored(a)); }); }},
        {"IExecContext2", "Reserved8", Stage::AtWork, kAnyAnswer, kAnyAnswer,
         [](S s, A a) {
             return Ask(s.request,
                        [&](auto& request) { return request.Reserved8(Ignored(a), Ignored(a), Ignored(a)); });
         }},
        {"IExecContext2", "SetResultText", Stage::AtWork, KXP_OK, KXP_OK,
         [](S s, A a) { return Ask(s.request, [&](auto& request) { return request.SetResultText(a.text); }); }},
        {"IExecContext2", "GetState", Stage::AtWork, kAnyAnswer, kAnyAnswer,
         [](S s, A) { return Ask(s.request, [](auto& request) { return request.GetState(); }); }},
        {"IResourceHandler", "QueryInterface", Stage::AtWork, KXP_BAD_INTERFACE_ARG, KXP_NO_INTERFACE,
         [](S s, A a) {
             void* out = nullptr;
             return Ask(s.host->Resources().Serial().Handler(),
                        [&](auto& handler) { return handler.QueryInterface(a.text, &out); });
         }},
        {"IResourceHandler", "OnStateChanged", Stage::AtWork, 0, 0,
         [](S s, A) {
             return Ask(s.host->Resources().Serial().Handler(), [](auto& handler) {
                 handler.OnStateChanged();
                 return 0;
             });
         }},
        {"IResourceHandler", "GetOwnerName", Stage::AtWork, 1, 1,
         [](S s, A) {
             return Ask(s.host->Resources().Serial().Handler(),
                        [](auto& handler) { return IsGiven(handler.GetOwnerName()); });
         }},
        {"IResourceHandler", "Reserved4", Stage::AtWork, kAnyAnswer, kAnyAnswer,
         [](S s, A a) {
             return Ask(s.host->Resources().Serial().Handler(), [&](auto& handler) {
                 return handler.Reserved4(Ignored(a), Ignored(a), Ignored(a), Ignored(a));
             });
         }},
        {"ISerialResourceHandler", "OnData", Stage::AtWork, 0, 0,
         [](S s, A a) {
             HostSerial& port = s.host->Resources().Serial();
             return Ask(port.Handler(), [&](auto& handler) { return TellBytes(handler, port, a); });
         }},
        {"ISerialResourceHandler", "OnEvent", Stage::AtWork, 0, 0,
         [](S s, A a) {
             HostSerial& port = s.host->Resources().Serial();
             return Ask(port.Handler(), [&](auto& handler) {
                 handler.OnEvent(a.IsNull() ? nullptr : &port, a.number, a.number, a.Unsigned());
                 return 0;
             });
         }},
        {"IDMXResourceHandler", "OnData", Stage::AtWork, 0, 0,
         [](S s, A a) {
             HostUniverse& universe = s.host->Resources().Universe();
             return Ask(universe.Handler(), [&](auto& handler) { return TellFrame(handler, universe, a); });
         }},
        {"IIOResourceChannelHandler", "OnValueChanged", Stage::AtWork, 0, 0,
         [](S s, A a) {
             HostIo& io = s.host->Resources().Io();
             return Ask(io.ChannelHandler(), [&](auto& handler) {
                 handler.OnValueChanged(a.IsNull() ? nullptr : &io, a.number, a.Unsigned());
                 return 0;
             });
         }},
        {"IIOResourceChannelHandler", "Reserved2", Stage::AtWork, kAnyAnswer, kAnyAnswer,
         [](S s, A a) {
             return Ask(s.host->Resources().Io().ChannelHandler(), [&](auto& handler) {
                 return handler.Reserved2(Ignored(a), Ignored(a), Ignored(a), Ignored(a));
             });
         }},
        {"IIOResourceChannelHandler", "GetOwnerName", Stage::AtWork, 1, 1,
         [](S s, A a) {
             HostIo& io = s.host->Resources().Io();
             return Ask(io.ChannelHandler(),
                        [&](auto& handler) { return IsGiven(handler.GetOwnerName(a.IsNull() ? nullptr : &io)); });
         }},
    };
    return operations;
}
