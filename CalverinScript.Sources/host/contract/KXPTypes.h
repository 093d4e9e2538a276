#pragma once

#include <cstdint>

/// @file
/// Result codes, type codes and opaque handles of the contract. Plain C++11, no other library.
///
/// Strings that cross the border are 8-bit (Latin-1) and NUL-terminated. A string returned by `GetValueAsString`
/// belongs to the caller and goes back through `ReleaseString` of the same object; the strings of
/// `IKXPDevice::GetSetup` and `UpdateCommand` go back through the device's `ReleaseString`. No other memory changes its
/// owner at the border. Nothing throws across it.

/// Result of most operations. 0 is success; for a query operation 0 is yes.
typedef std::uint32_t KXPCode;

/// The codes that the contract itself uses. Any other value is the host's own and passes through.
enum : KXPCode {
    KXP_OK = 0,                     ///< success; for a query: yes
    KXP_BAD_COMMAND = 1,            ///< command id known to nobody, or bad parameters (ExecuteCommand)
    KXP_NULL_ARGUMENT = 2,          ///< a null or empty argument (most operations)
    KXP_SCRIPT_FAILED = 3,          ///< the script part of a command failed (ExecuteCommand)
    KXP_NO_MODULE = 6,              ///< the module object could not be made (GetKXPEntryPoint)
    KXP_NO_DEVICE_MADE = 7,         ///< no device made (CreateDevice)
    KXP_CANCELLED = 13,             ///< setup dialog cancelled or not applicable, or a device that is not one of ours
    KXP_NO_ASYNC_LINK = 16,         ///< no asynchronous road to the host
    KXP_NO_DEVICE_HOST = 17,        ///< CreateDevice before SetDeviceHost
    KXP_NOT_IMPLEMENTED = 19,       ///< not implemented, refused or a generic failure
    KXP_PENDING = 21,               ///< the operation goes on and ends through its context
    KXP_BAD_SETUP = 22,             ///< setup text without a DeviceData root, or that root without a Version
    KXP_NO = 24,                    ///< query operation: no
    KXP_VARIABLE_NOT_FOUND = 48,    ///< no such variable
    KXP_COMMANDS_CHANGED = 771,     ///< CheckCommand: command gone; ShowSetup: the command list changed
    KXP_NO_INTERFACE = 0x10000000u, ///< QueryInterface: interface not offered
    KXP_BAD_INTERFACE_ARG = 0x10000001u ///< QueryInterface: null name or null out pointer
};

/// Type codes as IData::GetDataType returns them. 6 and 8 have no interface; 6 is treated as text.
enum KXPDataType : std::uint32_t {
    KXP_PRIVATE_DATA = 0,
    KXP_INTEGER_DATA = 1,
    KXP_STRING_DATA = 2,
    KXP_TIME_DATA = 3,
    KXP_ENUM_DATA = 4,
    KXP_DATE_DATA = 5,
    KXP_TEXT_LIKE_DATA = 6,
    KXP_REAL_DATA = 7,
    KXP_UNKNOWN_DATA = 8
};

/// A native window. 0 means none.
typedef std::uintptr_t KXPWindow;

/// A bitmap that its giver owns; null means none. On this platform it points to a QImage.
typedef void* KXPBitmap;
