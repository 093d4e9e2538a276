#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "FakeDevice.h"
#include "FakeMood.h"
#include "IKXPModule.h"

namespace {

constexpr const char* kParam =
    R"(<Properties><Property Name="DataDescriptor::VarDirection" Value="mddIn"/></Properties>)";

std::string TextParam(int id, const std::string& name, const char* properties = kParam) {
    return R"(<ObjectParam VarType="2" ClassName="IStringData"><StringData ID=")" + std::to_string(id) + R"(" Name=")" +
           name + R"(" String="">)" + properties + "</StringData></ObjectParam>";
}

std::string Command(int id, const std::string& name, const std::string& params) {
    return R"(<Command ID=")" + std::to_string(id) + R"(" Name=")" + name +
           R"(" Version="0" Status="Active"><ObjectParams Version="0">)" + params + "</ObjectParams></Command>";
}

std::string Definition() {
    if (MoodIs("broken-definition"))
        return "<Device><Commands>";
    std::string params =
        TextParam(0, "Script Function Name") +
        TextParam(1, "Result",
                  R"(<Properties><Property Name="DataDescriptor::VarDirection" Value="mddOut"/></Properties>)");
    for (int number = 1; number <= 8; ++number)
        params += TextParam(number + 1, "Param" + std::to_string(number));
    return R"(<Device ID="" Name=""><Commands>)" + Command(0, "Load From File", TextParam(0, "Script File Name")) +
           Command(1, "Load From Text", TextParam(0, "Script Text")) +
           Command(2, "Execute Function", TextParam(0, "Script Function Name")) +
           Command(3, "Execute Function With Params", params) +
           R"(</Commands><Variables><EnumData Name="Status" InstanceID="0" Current="0"><EnumStrings>)"
           R"(<EnumString Name="Ready" Value="0"/><EnumString Name="Loading" Value="1"/>)"
           R"(<EnumString Name="Executing" Value="2"/></EnumStrings></EnumData>)"
           R"(<StringData Name="Error" InstanceID="0" MaxLength="-1" String=""/>)"
           R"(<StringData Name="ScriptFunctions" InstanceID="0" MaxLength="-1" String=""/></Variables></Device>)";
}

class FakeModule final : public IKXPModule {
public:
    KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
    KXPCode Release() override { return KXP_OK; }

    KXPCode Initialize(IMInterface* host, void*, void*) override {
        m_host = host;
        if (!MoodIs("initialize-hangs"))
            return KXP_OK;
        std::mutex lock;
        std::condition_variable never;
        std::unique_lock<std::mutex> hold(lock);
        never.wait(hold, [] { return false; });
        return KXP_OK;
    }

    KXPCode Terminate(void*) override { return KXP_OK; }

    KXPCode SetDeviceHost(void* deviceHost) override {
        m_deviceHost = deviceHost;
        return KXP_OK;
    }

    const char* GetDefinition() override { return MoodIs("no-definition") ? nullptr : m_definition.c_str(); }
    KXPCode GetModuleVersion(std::uint32_t*) override { return KXP_OK; }
    KXPCode GetDeviceCount(std::uint32_t*) override { return KXP_OK; }

    KXPCode CreateDevice(void*, IKXPDevice** out) override {
        if (out == nullptr || *out != nullptr)
            return KXP_NULL_ARGUMENT;
        if (m_host == nullptr || m_deviceHost == nullptr)
            return KXP_NO_DEVICE_HOST;
        if (MoodIs("create-fails"))
            return KXP_NO_DEVICE_MADE;
        *out = new FakeDevice(m_definition.c_str());
        return KXP_OK;
    }

    IKXPDevice* GetDevice(std::uint32_t) override { return nullptr; }
    KXPCode CheckCommand(void*, IKXPDevice*, std::int32_t, IObjectParams*) override { return KXP_OK; }

private:
    const std::string m_definition = Definition();
    IMInterface* m_host = nullptr;
    void* m_deviceHost = nullptr;
};

} // namespace

bool MoodIs(const std::string& mood) {
    const char* now = std::getenv("FAKE_MODULE");
    return now != nullptr && mood == now;
}

extern "C" __attribute__((visibility("default"))) KXPCode GetKXPEntryPoint(IKXPModule** out) {
    static FakeModule module;
    if (MoodIs("entry-fails"))
        return KXP_NO_MODULE;
    *out = &module;
    return KXP_OK;
}
