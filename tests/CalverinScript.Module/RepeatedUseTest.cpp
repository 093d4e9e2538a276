#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "Deadline.h"
#include "FakeRemotes.h"
#include "LoadedModule.h"
#include "PlainHost.h"

namespace {

using namespace plain;

constexpr int kWarmUp = 40;
constexpr int kCycles = 100;
/// The allocator settles over some hundred cycles, and an application object leaves up to 1 KB each; a device that
/// stayed would be 450 KB. Sanitizers keep freed memory for a while.
constexpr long kMemoryPerCycleKb = MEMORY_PER_CYCLE_KB;

/// What this process holds of the system.
struct Footprint {
    long threads = 0;
    long descriptors = 0;
    long memoryKb = 0;
};

Footprint Measure() {
    Footprint footprint;
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("Threads:", 0) == 0)
            footprint.threads = std::stol(line.substr(8));
        if (line.rfind("RssAnon:", 0) == 0)
            footprint.memoryKb = std::stol(line.substr(8));
    }
    namespace fs = std::filesystem;
    footprint.descriptors = std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    return footprint;
}

std::ostream& operator<<(std::ostream& out, const Footprint& footprint) {
    return out << footprint.threads << " threads, " << footprint.descriptors << " descriptors, " << footprint.memoryKb
               << " KB";
}

/// Load, use, release: two devices, a script each, a command that is answered.
void UseTheModuleOnce(int& begun, int& ended) {
    FakeRemote2 link;
    Host host;
    host.offerRemoteManager2 = true;
    host.remote2 = &link;
    const LoadedModule loaded;
    ASSERT_NE(loaded.module, nullptr);
    loaded.module->Initialize(host.Root(), nullptr, nullptr);
    int deviceHost = 0;
    loaded.module->SetDeviceHost(&deviceHost);
    IKXPDevice* devices[2] = {};
    Variables variables[2];
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(loaded.module->CreateDevice(nullptr, &devices[i]), KXP_OK);
        devices[i]->SetDeviceVariables(&variables[i]);
        devices[i]->SetName("Desk");
        ASSERT_NE(devices[i]->GetDefinition(), nullptr);
        ASSERT_NE(devices[i]->GetBitmap(), nullptr);
        devices[i]->Start();
        Params load({"({ Twice: function(a) { return 2 * a; } })"});
        devices[i]->ExecuteCommand(1, &load, nullptr);
        ASSERT_TRUE(variables[i].functions.WaitFor("Twice\n"));
        Context contexts[3];
        auto call = Params::ForFunction("Twice", {"21"});
        for (Context& context : contexts) {
            ASSERT_EQ(devices[i]->ExecuteCommand(3, call.get(), &context), KXP_OK);
            ASSERT_TRUE(context.WaitForEnd());
        }
        EXPECT_EQ(call->At(1).Text(), "42");
        devices[i]->Stop();
        for (const Context& context : contexts) {
            begun += context.Begun();
            ended += context.Ended();
        }
    }
    for (IKXPDevice* device : devices)
        device->Release();
    loaded.module->Terminate(nullptr);
    loaded.module->Release();
}

TEST(RepeatedUse, NeitherGrowsNorBreaks) {
    int begun = 0;
    int ended = 0;
    for (int i = 0; i < kWarmUp && !HasFatalFailure(); ++i)
        UseTheModuleOnce(begun, ended);
    const Footprint before = Measure();
    for (int i = 0; i < kCycles && !HasFatalFailure(); ++i)
        UseTheModuleOnce(begun, ended);
    Footprint after;
    // A thread that has been joined counts for a moment more.
    EXPECT_TRUE(Eventually([&] { return (after = Measure()).threads <= before.threads; }));
    std::cout << "before: " << before << "\nafter " << kCycles << " cycles: " << after << "\n";
    EXPECT_LE(after.descriptors, before.descriptors);
    EXPECT_LE(after.memoryKb, before.memoryKb + kCycles * kMemoryPerCycleKb);
    EXPECT_EQ(begun, (kWarmUp + kCycles) * 6);
    EXPECT_EQ(ended, begun);
}

TEST(RepeatedUse, StartsCleanEachTime) {
    for (int i = 0; i < 3; ++i) {
        Host host;
        const LoadedModule loaded;
        ASSERT_NE(loaded.module, nullptr);
        std::uint32_t count = 99;
        EXPECT_EQ(loaded.module->GetDeviceCount(&count), KXP_OK);
        EXPECT_EQ(count, 0u);
        IKXPDevice* device = nullptr;
        EXPECT_EQ(loaded.module->CreateDevice(nullptr, &device), KXP_NO_DEVICE_HOST) << "remembers its last host";
        EXPECT_EQ(loaded.module->GetDevice(0), nullptr);
        loaded.module->Initialize(host.Root(), nullptr, nullptr);
        loaded.module->SetDeviceHost(&count);
        ASSERT_EQ(loaded.module->CreateDevice(nullptr, &device), KXP_OK);
        device->Release();
        loaded.module->Terminate(nullptr);
        loaded.module->Release();
    }
}

} // namespace
