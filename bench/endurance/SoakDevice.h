#pragma once

#include <memory>
#include <string>

#include "SoakHost.h"

/// One device of a long run. Its life is short: it is loaded anew, stopped and started, and released and made again.
/// [host main]
class SoakDevice {
public:
    SoakDevice(SoakHost& host, std::string name, std::string script);
    ~SoakDevice();
    SoakDevice(const SoakDevice&) = delete;
    SoakDevice& operator=(const SoakDevice&) = delete;

    const std::string& Name() const { return m_name; }
    /// Loads the script once more while the device runs.
    void Reload();
    void StopAndStart();
    void MakeAnew();

private:
    class Variables;

    void Make();
    void Release();

    SoakHost& m_host;
    const std::string m_name;
    const std::string m_script;
    std::unique_ptr<Variables> m_variables;
    IKXPDevice* m_device = nullptr; ///< null when it could not be made
};
