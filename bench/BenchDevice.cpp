#include "BenchDevice.h"

#include <cstdlib>

#include <dlfcn.h>

plain::Host& BenchHost() {
    static plain::Host host;
    return host;
}

IKXPModule& BenchModule() {
    static IKXPModule* module = [] {
        void* file = dlopen(MODULE_FILE, RTLD_NOW | RTLD_LOCAL);
        const auto entry =
            file != nullptr ? reinterpret_cast<KXPEntryPoint>(dlsym(file, KXP_ENTRY_POINT_NAME)) : nullptr;
        IKXPModule* made = nullptr;
        if (entry == nullptr || entry(&made) != KXP_OK)
            std::abort();
        made->Initialize(BenchHost().Root(), nullptr, nullptr);
        made->SetDeviceHost(&BenchHost());
        return made;
    }();
    return *module;
}

BenchDevice::BenchDevice(const std::string& script) {
    BenchModule().CreateDevice(nullptr, &m_device);
    m_device->SetDeviceVariables(&m_variables);
    m_device->SetName("Bench");
    m_device->Start();
    plain::Params load({script});
    const std::size_t before = m_variables.status.Plain().History().size();
    m_device->ExecuteCommand(1, &load, nullptr);
    m_variables.status.Plain().WaitForHistory(before + 2);
}

BenchDevice::~BenchDevice() {
    m_device->Stop();
    m_device->Release();
}

std::string BenchDevice::Call(plain::Params& params) {
    plain::Context context;
    m_device->ExecuteCommand(3, &params, &context);
    context.WaitForEnd();
    return params.At(1).Text();
}
