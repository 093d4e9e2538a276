#include "SoakDevice.h"

/// Values without a history, and a definition that is refused one time in a hundred.
class SoakDevice::Variables : public plain::Variables {
public:
    explicit Variables(Faults& faults)
        : m_faults(faults) {
        for (plain::Value* value : {&status.Plain(), &error, &fileName, &scriptText, &functions})
            value->m_keepsHistory = false;
    }
    ~Variables() override = default;

    std::uint32_t SetDefinition(const char* xml) override {
        return m_faults.Strike() ? 0 : plain::Variables::SetDefinition(xml);
    }

private:
    Faults& m_faults;
};

SoakDevice::SoakDevice(SoakHost& host, std::string name, std::string script)
    : m_host(host)
    , m_name(std::move(name))
    , m_script(std::move(script)) {
    Make();
}

SoakDevice::~SoakDevice() {
    Release();
}

void SoakDevice::Reload() {
    constexpr std::int32_t kLoadFromText = 1;
    plain::Params load({m_script});
    if (m_device != nullptr)
        m_device->ExecuteCommand(kLoadFromText, &load, nullptr);
}

void SoakDevice::StopAndStart() {
    if (m_device == nullptr)
        return;
    m_device->Stop();
    m_device->Start();
    Reload(); // a start runs the script of the setup, and there is none
}

void SoakDevice::MakeAnew() {
    Release();
    Make();
}

void SoakDevice::Make() {
    m_variables = std::make_unique<Variables>(m_host.faults);
    if (m_host.Module()->CreateDevice(nullptr, &m_device) != KXP_OK)
        return;
    m_device->SetDeviceVariables(m_variables.get());
    m_device->SetName(m_name.c_str());
    m_device->GetDefinition();
    m_device->Start();
    Reload();
    m_host.SetDevice(m_name, m_device);
}

void SoakDevice::Release() {
    IKXPDevice* device = m_device;
    m_device = nullptr;
    if (device == nullptr)
        return;
    m_host.SetDevice(m_name, nullptr);
    device->Stop();
    m_host.CloseLink(device);
    device->Release();
    m_host.DropLink(device);
}
