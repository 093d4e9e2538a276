#pragma once

#include "IKXPDevice.h"

/// The module as the host loads it: one object for the whole process, found through GetKXPEntryPoint.
///
/// Order of calls: Initialize, SetDeviceHost, then devices come and go, Terminate, Release. Devices that are still
/// there at Release are let go of: they end as with their own Release and refuse every operation from then on (19, or
/// what the operation gives when it has nothing to give; QueryInterface may answer as before), until their own Release
/// frees them. A second Release of the module does nothing: its object stays until the next one goes, or the file. A
/// host may call Terminate and Release also from inside what the module asks it: within CreateDevice the Release counts
/// when that comes back, with 7.
///
/// What belongs to the process is the host's: the module leaves locale, working folder, file mask, the handling of
/// signals, rounding of floating-point numbers, environment and the three standard streams as they are, and writes
/// nothing to standard output. Threads, descriptors and memory that it has taken are given back with the Release of the
/// device or the module that they were taken for.
class IKXPModule : public IMInterface {
public:
    /// Hands over the host's root object, on which everything hangs that the module needs of the host. Called once,
    /// before any device. The root must outlive the module; the two further arguments are ignored.
    /// @return 0 always: what the host lacks switches off what needs it and nothing else.   [host main]
    virtual KXPCode Initialize(IMInterface* host, void* ignored1, void* ignored2) = 0;

    /// Ends the module's use of the host, once, after the last
    /// device. The argument is ignored. @return 0.   [host main]
    virtual KXPCode Terminate(void* ignored) = 0;

    /// An opaque value of the host's, remembered; must be set (not
    /// null) before the first CreateDevice. @return 0.   [host main]
    virtual KXPCode SetDeviceHost(void* deviceHost) = 0;

    /// The device definition template, an XML text. Valid until the
    /// next call or the module's end; null when missing.   [host main]
    virtual const char* GetDefinition() = 0;

    /// Writes 999. A null out is ignored. @return 0.   [host main]
    virtual KXPCode GetModuleVersion(std::uint32_t* out) = 0;

    /// Writes the count of live devices of this module. A null out is ignored. @return 0.   [host main]
    virtual KXPCode GetDeviceCount(std::uint32_t* out) = 0;

    /// Makes a device. The first argument is ignored.
    /// @param out must hold null on entry; receives the device, which the host ends with Release.
    /// @return 0 made, 2 out is null or holds something, 17 before SetDeviceHost, 7 nothing came of it.   [host main]
    virtual KXPCode CreateDevice(void* ignored, IKXPDevice** out) = 0;

    /// The device of that index from 0 in the process-wide list of devices; null outside or for another
    /// module's device. [host main]
    virtual IKXPDevice* GetDevice(std::uint32_t index) = 0;

    /// Asked of each stored command that uses the device. The collection learns which device it belongs to.
    /// @return 0 valid, or the device is not one of ours; 2 present with other parameters; 771 gone.   [host main]
    virtual KXPCode CheckCommand(void* ignored, IKXPDevice* device, std::int32_t id, IObjectParams* params) = 0;

protected:
    ~IKXPModule() = default;
};

/// The module's second face: the script drivers on disk.
class IKXPModuleDriverManager : public IMInterface {
public:
    /// The script drivers of the library as one text of file names separated by ";". The buffer belongs to the module
    /// and lives until the next call. When an argument is null nothing is written.
    /// @param outSize length of the text without its NUL. @return 0.   [host main]
    virtual KXPCode GetDriverList(char** out, std::uint32_t* outSize) = 0;

    /// Opens the device's setup with this script driver chosen.
    /// @param third must not be null, not read.
    /// @return as IKXPDevice::ShowSetup, 2 null device or third
    /// value, 13 a device that is not one of ours.   [host main]
    virtual KXPCode ShowDriverSetup(const char* driver, IKXPDevice* device, void* third) = 0;

    /// The module's icon, loaded once and owned by the module; null when missing.   [host main]
    virtual KXPBitmap GetDriverBitmap() = 0;

protected:
    ~IKXPModuleDriverManager() = default;
};

/// Type of the one exported function, "GetKXPEntryPoint".
/// Gives the module object, made at the first call and the same at every later one until it is released.
/// @return 0, 2 out is null, 6 the object could not be made.   [host main]
typedef KXPCode (*KXPEntryPoint)(IKXPModule** out);

/// Name under which a host finds the entry point in the module file.
#define KXP_ENTRY_POINT_NAME "GetKXPEntryPoint"
