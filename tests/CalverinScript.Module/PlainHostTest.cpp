#include "PlainHost.h"

#include <gtest/gtest.h>

#include "LoadedModule.h"

namespace {

using namespace plain;

TEST(PlainHost, DrivesADeviceThroughItsWholeLifeAndReadsAResult) {
    Host host;
    LoadedModule loaded;
    ASSERT_NE(loaded.module, nullptr);
    IKXPModule* module = loaded.module;
    EXPECT_EQ(module->Initialize(host.Root(), nullptr, nullptr), KXP_OK);
    int deviceHost = 0;
    EXPECT_EQ(module->SetDeviceHost(&deviceHost), KXP_OK);
    IKXPDevice* device = nullptr;
    ASSERT_EQ(module->CreateDevice(nullptr, &device), KXP_OK);
    Variables variables;
    device->SetDeviceVariables(&variables);
    device->SetName("Desk");
    ASSERT_NE(device->GetDefinition(), nullptr);
    EXPECT_EQ(device->Start(), KXP_OK);
    EXPECT_EQ(device->IsRunning(), KXP_OK);

    Params load({"({ Add: function(a, b) { return Number(a) + Number(b); } })"});
    EXPECT_EQ(device->ExecuteCommand(1, &load, nullptr), KXP_OK);
    ASSERT_TRUE(variables.functions.WaitFor("Add\n")) << variables.error.Text();

    auto call = Params::ForFunction("Add", {"20", "22"});
    Context context;
    ASSERT_EQ(device->ExecuteCommand(3, call.get(), &context), KXP_OK);
    ASSERT_TRUE(context.WaitForEnd());
    EXPECT_EQ(call->At(1).Text(), "42");
    EXPECT_EQ(variables.error.Text(), "");

    EXPECT_EQ(device->Stop(), KXP_OK);
    EXPECT_EQ(device->IsRunning(), KXP_NO);
    EXPECT_EQ(device->Release(), KXP_OK);
    EXPECT_EQ(module->Terminate(nullptr), KXP_OK);
    EXPECT_EQ(module->Release(), KXP_OK);
    EXPECT_EQ(Value::OutstandingTexts(), 0);
}

} // namespace
