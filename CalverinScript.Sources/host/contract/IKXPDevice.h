#pragma once

#include "IExecContext.h"
#include "IObjectParams.h"

class IKXPDevicePanel;

/// The variables of one device as the host keeps them. Made by the host, given to the device with SetDeviceVariables.
class IDeviceVariables : public IMInterface {
public:
    /// The live value of one of the device's variables, once a definition has been accepted.
    /// @param name the variable's name without the device's.
    /// @return owned by the host, valid until the next SetDefinition
    /// or the device's end; null for an unknown name.   [any]
    virtual IData* GetVariable(const char* name) = 0;

    /// Replaces the device's commands and variables with those of the definition text and allocates an InstanceID for
    /// each variable whose InstanceID is 0. The text is copied. While it runs, the device keeps out of the values that
    /// may go: a script that wants one waits for 2 s, then goes on without it (a write is lost, a read gives
    /// undefined). So it has to return sooner, and must wait for nothing that waits for the script.
    /// @return 1 accepted, anything else refused and the former definition stays.   [host main]
    virtual std::uint32_t SetDefinition(const char* xml) = 0;

protected:
    ~IDeviceVariables() = default;
};

/// A device as the host drives it.
///
/// Order of calls: SetDeviceVariables, SetName, SetSetup when a setup is stored, GetDefinition; then Start,
/// ExecuteCommand and Stop any number of times; at last Release, before which the host has called Stop. The host makes
/// the commands and variables of what GetDefinition gives; later changes come through IDeviceVariables::SetDefinition.
///
/// Release ends the device. From the instant at which a host calls it the host begins no other call on the device and
/// none on the device's IManagerRemoteHandler, and no other thread is inside that handler any more: it goes with the
/// device, without a SetHandler of null. (IResourceHandler has a rule of its own.) A Start or Stop that a script blocks
/// on another thread comes back then. Behind Release the module begins no call on the device's IDeviceVariables, values
/// and link, and contexts that were begun have ended. A script that never returns is ended or left behind: Release
/// comes back within 2 seconds.
class IKXPDevice : public IMInterface {
public:
    /// Gives the device its variables, at once after CreateDevice.
    /// Kept, not owned; must outlive the device.   [host main]
    virtual void SetDeviceVariables(IDeviceVariables* variables) = 0;

    /// Asks for a capability of the device by its code. @return 0
    /// for the codes 1 and 2, 24 for all others.   [any host thread]
    virtual KXPCode QueryCapability(std::uint32_t capability) = 0;

    /// The name that the user gave the device. Copied; null is the empty text.   [host main]
    virtual void SetName(const char* name) = 0;

    /// The device's name, empty if none. Owned by the device, valid until the next SetName.   [any host thread]
    virtual const char* GetName() = 0;

    /// Shows the modal setup dialog. The argument is ignored.
    /// @return 0 accepted, 771 accepted and the command list changed, 13 cancelled, not applicable or not available.
    ///         [host main]
    virtual KXPCode ShowSetup(void* ignored) = 0;

    /// @return 0 when started, 24 when not.   [any host thread]
    virtual KXPCode IsRunning() = 0;

    /// Starts the device: returns when the script's top level and its _mStart have
    /// run, or when the script failed, which is not reported here but in the
    /// variable "Error". A script that never returns blocks this call until Release.
    /// Waits for each Stop in which another thread still is, for two seconds at most.
    /// Commands behind it belong to the new run, those before that Stop to the old one.
    /// @return 0 always.   [any host thread]
    virtual KXPCode Start() = 0;

    /// Stops the device: timers, listeners and pending requests end, each queued command's context is ended. A command
    /// that sits in a script that never returns blocks this call until Release.
    /// @return 0 always.   [any host thread]
    virtual KXPCode Stop() = 0;

    /// A transport event of the host's position tracking. While a track runs the device takes no commands.
    /// @param time   borrowed for the call, may be null; its GetFrameCount is handed on.
    /// @param action 0 stop, 1 run, 2 start, 3 suspend, 4 end; others change nothing.
    /// @return 0.   [any host thread]
    virtual KXPCode OnTimerailEvent(ITimeData* time, std::int32_t action) = 0;

    /// The device's icon, 16 by 16. Owned by the device.   [host main]
    virtual KXPBitmap GetBitmap() = 0;

    /// The device's setup as an opaque text for the host's project.
    /// @param out receives a text that goes back through ReleaseString.
    /// @return 0; 2 when out is null; 19, and no text, when the
    /// setup is larger than the 64 MB that SetSetup reads.   [host main]
    virtual KXPCode GetSetup(char** out) = 0;

    /// Applies a setup text that GetSetup gave once. The text is copied. The device takes its name from the attribute
    /// Name of the setup's root, whatever SetName gave before, also where the root is all that is right of the text. A
    /// text that is refused changes nothing else.
    /// @return 0 applied, 2 null, empty or malformed text, 22 no DeviceData root or no Version.   [host main]
    virtual KXPCode SetSetup(const char* setup) = 0;

    /// Rewrites a stored command to the device's current commands, keeping what the user entered.
    /// @param commandXml borrowed. @param out receives a text that goes back through ReleaseString.
    /// @return 0 rewritten, 19 nothing was produced.   [host main]
    virtual KXPCode UpdateCommand(const char* commandXml, char** out) = 0;

    virtual KXPCode Reserved14(void* argument) = 0;
    virtual KXPCode Reserved15(void* argument) = 0;
    virtual KXPCode Reserved16(void* argument) = 0;

    /// Accepts one command. The work is done later, on the device's command thread, in the order of acceptance.
    /// @param id      the Command ID of the definition.
    /// @param params  borrowed for the call; the values that it hands out must live until the context has ended.
    /// @param context may be null. For command 3 and user commands the device calls Begin now and End, on any thread,
    ///                when the result is in place; for commands 0 to 2 it is not used. The host keeps it alive until
    ///                End; a reference that the device takes for a longer time goes back before Release returns.
    /// @return 0 accepted; 1 unknown id, no parameters or too few, or a track runs; 3 the function does not exist,
    ///         which it does once its script is loaded: "ScriptFunctions" tells when.   [any host thread]
    virtual KXPCode ExecuteCommand(std::int32_t id, IObjectParams* params, IExecContext* context) = 0;

    /// Frees a text that GetSetup or UpdateCommand gave and clears the pointer. @return 0, or 2 on null.   [host main]
    virtual KXPCode ReleaseString(char** text) = 0;

    /// The definition of this device with what its script adds, an XML text. Owned by the device, valid until the next
    /// call of an operation that changes it; null when the module has none.   [host main]
    virtual const char* GetDefinition() = 0;

    virtual KXPCode Reserved20() = 0;

    /// Makes a panel of the device.
    /// @param kind 1 for the control panel. @param out receives the panel, released by the host.
    /// @return 0 made, 2 null out, 19 another kind or no panel available.   [host main]
    virtual KXPCode CreatePanel(std::uint32_t kind, IKXPDevicePanel** out) = 0;

protected:
    ~IKXPDevice() = default;
};
