#include <future>

#include "CommandNumbers.h"
#include "Deadline.h"
#include "DeviceFixture.h"
#include "DeviceTexts.h"

namespace {

/// A second device of the same module, with variables of its own.
struct Neighbour {
    explicit Neighbour(TestModule& module)
        : device(new MCalverinScript_Device(&module, nullptr, "Neighbour")) {
        device->SetDeviceVariables(&variables);
    }
    ~Neighbour() {
        device->Stop();
        device->Release();
    }
    Neighbour(const Neighbour&) = delete;
    Neighbour& operator=(const Neighbour&) = delete;

    plain::Variables variables;
    MCalverinScript_Device* const device;
};

/// A command is held when its function is gone by the time it runs; it is executed once more on the tick
/// thread after 5 s.
class HungTick : public DeviceFixture {
protected:
    void SetUp() override {
        DeviceFixture::SetUp();
        TellWhenInside(inside);
        GivenScript("({ Gone: function() {}, Hide: function() { delete this.Gone; },"
                    "   Show: function() { this.Gone = function() { inside(); for (;;) {} } } })");
        ASSERT_EQ(Call("Hide"), "");
    }
    /// Holds a command whose second execution never comes back, and waits until it sits there.
    void WhenTheTickHangs() {
        held = plain::Params::ForFunction("Gone", {});
        ASSERT_EQ(Send(3, *held, &context), KXP_OK);
        ASSERT_TRUE(variables.error.WaitFor("Gone function is not defined"));
        OnScriptThread([this] { device->ExecuteScriptFunction("Show", nullptr, nullptr); });
        ASSERT_TRUE(inside.WaitFor("yes"));
    }

    std::unique_ptr<plain::Params> held;
    plain::Context context;
    plain::Value inside{"inside"};
};

TEST_F(HungTick, AScriptThatHangsOnItHarmsNobodyElse) {
    Neighbour before(module);
    before.device->GetStoredSetup().SetScript(
        QString(), QStringLiteral("({ Gone: function() {}, Hide: function() { delete this.Gone; } })"));
    before.device->Start();
    WhenTheTickHangs();

    std::promise<void> created;
    std::thread watch([future = created.get_future()]() mutable {
        if (future.wait_for(std::chrono::milliseconds(kDeadlineMs)) != std::future_status::ready)
            std::abort(); // nothing else ends a main thread that hangs
    });
    { const Neighbour after(module); }
    created.set_value();
    watch.join();

    before.device->ExecuteScriptFunction("Hide", nullptr, nullptr);
    auto params = plain::Params::ForFunction("Gone", {});
    plain::Context expired;
    ASSERT_EQ(before.device->ExecuteCommand(3, params.get(), &expired), KXP_OK);
    EXPECT_TRUE(expired.WaitForEnd()) << "the watchdog of every other device goes on";
    EXPECT_EQ(before.variables.error.Text(), DeviceText::kCommandTimeOut);

    device->Release();
    device = nullptr;
    EXPECT_EQ(context.Ended(), 1);
}

} // namespace
