#pragma once

#include <memory>
#include <string>

#include "PlainHost.h"

/// The host of the process. What a device is to find there is set before the device is made.
plain::Host& BenchHost();
/// The module, loaded once for the process, with that host behind it.
IKXPModule& BenchModule();

/// One device of it, started with a script.
class BenchDevice {
public:
    explicit BenchDevice(const std::string& script);
    ~BenchDevice();
    BenchDevice(const BenchDevice&) = delete;
    BenchDevice& operator=(const BenchDevice&) = delete;

    IKXPDevice& Device() { return *m_device; }
    /// Sends the call and waits for its end. @return the result.
    std::string Call(plain::Params& params);

private:
    plain::Variables m_variables;
    IKXPDevice* m_device = nullptr;
};
