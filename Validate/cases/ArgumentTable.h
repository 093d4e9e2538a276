#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "BusyScript.h"
#include "IKXPDevicePanel.h"
#include "IPropertySelector.h"

/// @file
/// Every operation that a module implements, with a way to call it with arguments that no host should send. The tests
/// hold the table against the contract's headers.

/// Arguments of one kind: each operation takes those of its types.
struct Arguments {
    const char* text;    ///< null: so are all other pointers
    std::int32_t number; ///< none of the numbers that the contract gives a meaning

    bool IsNull() const { return text == nullptr; }
    std::uint32_t Unsigned() const { return static_cast<std::uint32_t>(number); }
};

/// The objects of a module as a host reaches them; null where the module has none.
struct Subjects {
    ModuleHost* host = nullptr;
    HostedDevice* device = nullptr;
    IKXPModuleDriverManager* drivers = nullptr;
    IKXPDevicePanel* panel = nullptr;
    IObjectFactory* factory = nullptr;
    IPropertySelector* selector = nullptr;
    IManagerRemoteHandler* changes = nullptr;
    IExecContext2* request = nullptr; ///< of the device, with a reference of the host's own
};

/// What an operation answers beside a code of its own.
enum : std::int64_t {
    kAnyAnswer = -1,
    kRefusal = -2,        ///< any code but 0
    kCancelledOrGone = -3 ///< 13 or 19
};

struct Operation {
    enum Stage {
        Alone, ///< asked of a module that has nothing else to do, and goes afterwards
        AtWork ///< asked of a device that runs, one after the other
    };
    const char* face;
    const char* name;
    Stage stage;
    std::int64_t onNull;  ///< what null arguments are answered with
    std::int64_t onOther; ///< what others are answered with
    /// @return what the operation answered; 0 for those without an answer; kNotOffered.
    std::uint32_t (*call)(const Subjects& subjects, const Arguments& arguments);
};

/// What a call answers for an object that the module does not have.
constexpr std::uint32_t kNotOffered = 0xFEFEFEFE;

/// In the order of the headers.
const std::vector<Operation>& AllOperations();
