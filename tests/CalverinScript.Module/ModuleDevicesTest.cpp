#include <atomic>
#include <thread>
#include <vector>

#include <unistd.h>

#include "ForeignDevice.h"
#include "MCalverinScript_Device.h"
#include "ModuleFixture.h"

namespace {

constexpr const char* kDeviceIdProperty = "ObjectParamDescriptor::DeviceID";

class ModuleDevices : public ModuleFixture {
protected:
    void SetUp() override {
        ModuleFixture::SetUp();
        Initialize();
    }
    static std::uint32_t NumberOf(IKXPDevice* device) {
        return dynamic_cast<MCalverinScript_Device&>(*device).GetStoredSetup().GetDeviceNumber();
    }
};

TEST_F(ModuleDevices, AreNotMadeIntoAPlaceThatHoldsSomethingOrIsNull) {
    module->SetDeviceHost(&deviceHost);
    ForeignDevice foreign;
    IKXPDevice* device = &foreign;
    EXPECT_EQ(module->CreateDevice(nullptr, &device), KXP_NULL_ARGUMENT);
    EXPECT_EQ(device, &foreign);
    EXPECT_EQ(module->CreateDevice(nullptr, nullptr), KXP_NULL_ARGUMENT);
    EXPECT_EQ(DeviceCount(), 0u);
}

TEST_F(ModuleDevices, AreNotMadeWhileTheProcessHasNoFreeDescriptors) {
    module->SetDeviceHost(&deviceHost);
    std::vector<int> taken;
    for (int descriptor = dup(0); descriptor >= 0; descriptor = dup(0))
        taken.push_back(descriptor);
    IKXPDevice* device = nullptr;
    EXPECT_EQ(module->CreateDevice(nullptr, &device), KXP_NO_DEVICE_MADE);
    EXPECT_EQ(device, nullptr);
    for (const int descriptor : taken)
        close(descriptor);
    EXPECT_EQ(module->CreateDevice(nullptr, &device), KXP_OK);
    device->Release();
}

TEST_F(ModuleDevices, AreNotMadeBeforeTheirHostIsSet) {
    IKXPDevice* device = nullptr;
    EXPECT_EQ(module->CreateDevice(nullptr, &device), KXP_NO_DEVICE_HOST);
    EXPECT_EQ(device, nullptr);
    EXPECT_EQ(module->SetDeviceHost(nullptr), KXP_OK);
    EXPECT_EQ(module->CreateDevice(nullptr, &device), KXP_NO_DEVICE_HOST);
    EXPECT_EQ(DeviceCount(), 0u);
}

TEST_F(ModuleDevices, PreferTheCodeForABadPlaceToThatForAMissingHost) {
    ForeignDevice foreign;
    IKXPDevice* device = &foreign;
    EXPECT_EQ(module->CreateDevice(nullptr, &device), KXP_NULL_ARGUMENT);
}

TEST_F(ModuleDevices, AreCountedAndNumberedByTheCountAndMayRepeatANumberAsIsMeant) {
    IKXPDevice* first = MakeDevice();
    IKXPDevice* second = MakeDevice();
    EXPECT_EQ(NumberOf(first), 1u);
    EXPECT_EQ(NumberOf(second), 2u);
    EXPECT_EQ(DeviceCount(), 2u);
    first->Release();
    EXPECT_EQ(DeviceCount(), 1u);
    IKXPDevice* third = MakeDevice();
    EXPECT_EQ(NumberOf(third), 2u);
    second->Release();
    third->Release();
    EXPECT_EQ(DeviceCount(), 0u);
}

TEST_F(ModuleDevices, AreFoundByTheirIndexInOrderOfCreation) {
    IKXPDevice* first = MakeDevice();
    IKXPDevice* second = MakeDevice();
    EXPECT_EQ(module->GetDevice(0), first);
    EXPECT_EQ(module->GetDevice(1), second);
    EXPECT_EQ(module->GetDevice(2), nullptr);
    EXPECT_EQ(module->GetDevice(0xFFFFFFFF), nullptr);
    first->Release();
    EXPECT_EQ(module->GetDevice(0), second);
    second->Release();
    EXPECT_EQ(module->GetDevice(0), nullptr);
}

TEST_F(ModuleDevices, OfAnotherKindAreInTheListButNotGivenOut) {
    const MKXPDeviceBase other;
    IKXPDevice* device = MakeDevice();
    EXPECT_EQ(module->GetDevice(0), nullptr);
    EXPECT_EQ(module->GetDevice(1), device);
    EXPECT_EQ(DeviceCount(), 1u);
    device->Release();
}

TEST_F(ModuleDevices, MayBeWalkedOnAnotherThreadWhileTheyComeAndGo) {
    std::atomic<bool> over{false};
    std::thread walker([&] {
        while (!over) {
            module->LockDevices(2);
            for (MCalverinScript_Device* device : module->GetDevices())
                EXPECT_NE(device->GetStoredSetup().GetDeviceNumber(), 99u);
            module->UnlockDevices(2);
        }
    });
    for (int i = 0; i < 20; ++i)
        MakeDevice()->Release();
    over = true;
    walker.join();
}

TEST_F(ModuleDevices, TellACommandWhichDeviceItBelongsTo) {
    IKXPDevice* first = MakeDevice();
    IKXPDevice* second = MakeDevice();
    plain::Params params;
    EXPECT_EQ(module->CheckCommand(nullptr, second, 3, &params), KXP_OK);
    EXPECT_STREQ(params.GetProperty(kDeviceIdProperty), "2");
    EXPECT_EQ(module->CheckCommand(nullptr, first, 3, &params), KXP_OK);
    EXPECT_STREQ(params.GetProperty(kDeviceIdProperty), "1");
    first->Release();
    second->Release();
}

TEST_F(ModuleDevices, KnowTheBuiltInCommandsAndNoOtherWithoutAScript) {
    IKXPDevice* device = MakeDevice();
    plain::Params params;
    for (int id = 0; id <= 3; ++id)
        EXPECT_EQ(module->CheckCommand(nullptr, device, id, &params), KXP_OK) << id;
    EXPECT_EQ(module->CheckCommand(nullptr, device, 4, &params), KXP_COMMANDS_CHANGED);
    EXPECT_EQ(module->CheckCommand(nullptr, device, 3, nullptr), KXP_OK);
    device->Release();
}

TEST_F(ModuleDevices, TellWhetherAStoredCommandIsGoneChangedOrValid) {
    class Stored : public plain::Params {
    public:
        IObjectParam* GetParam(std::uint32_t) override { return &result; }
        std::uint32_t GetParamCount() override { return count; }
        plain::Value result{"Result"};
        std::uint32_t count = 0;
    } params;
    IKXPDevice* device = MakeDevice();
    ASSERT_EQ(
        device->SetSetup("<DeviceData Version='1' Name='D'><Setup><Commands><Command Name='f' ID='4' Status='Active'>"
                         "<ObjectParams><ObjectParam><StringData Name='Result'/></ObjectParam></ObjectParams>"
                         "</Command></Commands></Setup></DeviceData>"),
        KXP_OK);
    params.SetProperty("KXPProp::ScriptUserCommandName", "gone", 0, 0);
    EXPECT_EQ(module->CheckCommand(nullptr, device, 4, &params), KXP_COMMANDS_CHANGED);
    params.SetProperty("KXPProp::ScriptUserCommandName", "f", 0, 0);
    EXPECT_EQ(module->CheckCommand(nullptr, device, 4, &params), KXP_NULL_ARGUMENT);
    params.count = 1;
    EXPECT_EQ(module->CheckCommand(nullptr, device, 4, &params), KXP_OK);
    device->Release();
}

TEST_F(ModuleDevices, ThatAreForeignOrNullLeaveACommandAlone) {
    ForeignDevice foreign;
    plain::Params params;
    EXPECT_EQ(module->CheckCommand(nullptr, &foreign, 4, &params), KXP_OK);
    EXPECT_EQ(module->CheckCommand(nullptr, nullptr, 4, &params), KXP_OK);
    EXPECT_EQ(params.GetProperty(kDeviceIdProperty), nullptr);
}

} // namespace
