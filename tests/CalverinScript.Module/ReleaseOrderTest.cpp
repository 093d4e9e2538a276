#include <functional>
#include <future>
#include <string>
#include <utility>

#include "Deadline.h"
#include "MCalverinScript_Device.h"
#include "ModuleFixture.h"

namespace {

/// Variables of a host that does something of its own while it takes a definition.
class BusyVariables : public plain::Variables {
public:
    std::uint32_t SetDefinition(const char* xml) override {
        if (meanwhile)
            std::exchange(meanwhile, nullptr)();
        return plain::Variables::SetDefinition(xml);
    }
    std::function<void()> meanwhile;
};

/// A context whose end does something.
class BusyContext : public plain::Context {
public:
    KXPCode End() override {
        if (atEnd)
            std::exchange(atEnd, nullptr)();
        return plain::Context::End();
    }
    std::function<void()> atEnd;
};

/// A context whose beginning does something.
class StartledContext : public plain::Context {
public:
    KXPCode Begin() override {
        plain::Context::Begin();
        atBegin();
        return KXP_OK;
    }
    std::function<void()> atBegin;
};

/// A collection that does something when it is asked for a property or told one.
class BusyParams : public plain::Params {
public:
    KXPCode SetProperty(const char* name, const char* value, std::uint32_t a, std::uint32_t b) override {
        Ask();
        return plain::Params::SetProperty(name, value, a, b);
    }
    const char* GetProperty(const char* name) override {
        Ask();
        return plain::Params::GetProperty(name);
    }
    int questionsLeft = 0; ///< until it does that
    std::function<void()> meanwhile;

private:
    void Ask() {
        if (--questionsLeft == 0)
            meanwhile();
    }
};

/// A host that does something when it is asked for a face.
class BusyHost : public plain::Host {
public:
    KXPCode QueryInterface(const char* name, void** out) override {
        if (--questionsLeft == 0)
            meanwhile();
        return plain::Host::QueryInterface(name, out);
    }
    int questionsLeft = 0; ///< until it does that
    std::function<void()> meanwhile;
};

class ReleaseOrder : public ModuleFixture {
protected:
    void SetUp() override {
        ModuleFixture::SetUp();
        Initialize();
        device = MakeDevice();
        device->SetDeviceVariables(&variables);
    }
    void TearDown() override {
        if (device != nullptr) {
            EXPECT_EQ(device->Release(), KXP_OK);
        }
        ModuleFixture::TearDown();
        EXPECT_TRUE(Eventually([] { return MCalverinScript_Device::SweepAbandoned() == 0; }));
    }
    void Start(const char* script) {
        dynamic_cast<MCalverinScript_Device&>(*device).GetStoredSetup().SetScript(QString(), QLatin1String(script));
        ASSERT_EQ(device->Start(), KXP_OK);
    }
    KXPCode Call(const char* function, IExecContext* context) {
        params = plain::Params::ForFunction(function, {});
        return device->ExecuteCommand(3, params.get(), context);
    }
    /// A request that the script has taken and does not answer.
    void Postpone(BusyContext& postponed) {
        Start("({ Post: function() { QCalverin.PostponeResult() }, F: function() { return 1 } })");
        BusyContext behind;
        ASSERT_EQ(Call("Post", &postponed), KXP_OK);
        ASSERT_EQ(Call("F", &behind), KXP_OK);
        ASSERT_TRUE(behind.WaitForEnd());
    }
    void ExpectRefusals() {
        void* face = this;
        char* text = nullptr;
        IKXPDevicePanel* panel = nullptr;
        EXPECT_EQ(device->QueryInterface("IKXPDevice", &face), KXP_NO_INTERFACE);
        EXPECT_EQ(face, nullptr);
        EXPECT_EQ(device->QueryCapability(1), KXP_NO);
        EXPECT_EQ(device->ShowSetup(nullptr), KXP_CANCELLED);
        EXPECT_EQ(device->IsRunning(), KXP_NO);
        EXPECT_EQ(device->Start(), KXP_NOT_IMPLEMENTED);
        EXPECT_EQ(device->Stop(), KXP_NOT_IMPLEMENTED);
        EXPECT_EQ(device->OnTimerailEvent(nullptr, 2), KXP_NOT_IMPLEMENTED);
        EXPECT_EQ(device->GetBitmap(), nullptr);
        EXPECT_EQ(device->GetSetup(&text), KXP_NOT_IMPLEMENTED);
        EXPECT_EQ(device->SetSetup("<DeviceData Version=\"1\"/>"), KXP_NOT_IMPLEMENTED);
        EXPECT_EQ(device->UpdateCommand("<Command/>", &text), KXP_NOT_IMPLEMENTED);
        EXPECT_EQ(text, nullptr);
        EXPECT_EQ(Call("F", nullptr), KXP_BAD_COMMAND);
        EXPECT_EQ(device->GetDefinition(), nullptr);
        EXPECT_EQ(device->CreatePanel(1, &panel), KXP_NOT_IMPLEMENTED);
        device->SetName("late");
        device->SetDeviceVariables(&variables);
    }

    BusyVariables variables;
    IKXPDevice* device = nullptr;
    std::unique_ptr<plain::Params> params;
};

TEST_F(ReleaseOrder, ADeviceThatOutlivesItsModuleRefusesEverythingButItsRelease) {
    Start("({ F: function() { return 1 } })");
    BusyContext context;
    ASSERT_EQ(Call("F", &context), KXP_OK);
    ASSERT_TRUE(context.WaitForEnd());
    EXPECT_EQ(module->Release(), KXP_OK);
    ExpectRefusals();
}

TEST_F(ReleaseOrder, ADeviceThatWasNeverStartedDoesSoToo) {
    EXPECT_EQ(module->Release(), KXP_OK);
    ExpectRefusals();
}

TEST_F(ReleaseOrder, ADeviceWhoseScriptHangsIsLetGoAndItsRequestEnds) {
    Start("({ Hang: function() { for (;;) {} } })");
    BusyContext context;
    ASSERT_EQ(Call("Hang", &context), KXP_OK);
    ASSERT_TRUE(Eventually([&] { return variables.status.Plain().Text() == "2"; }));
    EXPECT_EQ(module->Release(), KXP_OK);
    EXPECT_EQ(context.Ended(), 1);
    ExpectRefusals();
}

TEST_F(ReleaseOrder, AModuleMayBeReleasedWhileTheHostTakesADefinition) {
    char* setup = nullptr;
    ASSERT_EQ(device->GetSetup(&setup), KXP_OK);
    variables.meanwhile = [this] { EXPECT_EQ(module->Release(), KXP_OK); };
    device->SetSetup(setup);
    device->ReleaseString(&setup);
    ExpectRefusals();
}

TEST_F(ReleaseOrder, ADeviceReleasedWhileTheHostTakesADefinitionStaysUntilItsSetupIsOver) {
    char* setup = nullptr;
    ASSERT_EQ(device->GetSetup(&setup), KXP_OK);
    const std::string text = setup;
    device->ReleaseString(&setup);
    IKXPDevice* const released = device;
    variables.meanwhile = [this] {
        EXPECT_EQ(std::exchange(device, nullptr)->Release(), KXP_OK);
        EXPECT_EQ(MCalverinScript_Device::SweepAbandoned(), 1u);
    };
    EXPECT_EQ(released->SetSetup(text.c_str()), KXP_NOT_IMPLEMENTED);
    EXPECT_TRUE(Eventually([] { return MCalverinScript_Device::SweepAbandoned() == 0; }));
}

TEST_F(ReleaseOrder, AModuleMayBeReleasedFromTheEndOfARequest) {
    Start("({ F: function() { return 1 } })");
    BusyContext context;
    context.atEnd = [this] { EXPECT_EQ(module->Release(), KXP_OK); };
    ASSERT_EQ(Call("F", &context), KXP_OK);
    ASSERT_TRUE(context.WaitForEnd());
    ExpectRefusals();
}

TEST_F(ReleaseOrder, ADeviceStaysWhileItsCommandThreadIsInTheEndOfARequest) {
    Start("({ F: function() { return 1 } })");
    BusyContext context;
    std::promise<void> inEnd;
    std::promise<void> released;
    context.atEnd = [&] {
        EXPECT_EQ(module->Release(), KXP_OK);
        inEnd.set_value();
        released.get_future().wait();
    };
    ASSERT_EQ(Call("F", &context), KXP_OK);
    inEnd.get_future().wait();
    EXPECT_EQ(std::exchange(device, nullptr)->Release(), KXP_OK);
    EXPECT_EQ(MCalverinScript_Device::SweepAbandoned(), 1u) << "its thread will come back into it";
    released.set_value();
    ASSERT_TRUE(context.WaitForEnd());
}

TEST_F(ReleaseOrder, ADeviceReleasedFromTheEndOfARequestStaysUntilItsCommandThreadIsOut) {
    Start("({ F: function() { return 1 } })");
    BusyContext context;
    context.atEnd = [&] {
        EXPECT_EQ(std::exchange(device, nullptr)->Release(), KXP_OK);
        EXPECT_EQ(MCalverinScript_Device::SweepAbandoned(), 1u);
    };
    ASSERT_EQ(Call("F", &context), KXP_OK);
    ASSERT_TRUE(context.WaitForEnd());
}

TEST_F(ReleaseOrder, AModuleThatIsReleasedEndsPostponedRequestsToo) {
    BusyContext postponed;
    Postpone(postponed);
    EXPECT_EQ(postponed.Ended(), 0);
    EXPECT_EQ(module->Release(), KXP_OK);
    EXPECT_EQ(postponed.Ended(), 1);
}

TEST_F(ReleaseOrder, ADeviceReleasedOnceMoreFromARequestThatItsReleaseEndsGoesOnce) {
    BusyContext postponed;
    Postpone(postponed);
    postponed.atEnd = [released = device] { EXPECT_EQ(released->Release(), KXP_OK); };
    EXPECT_EQ(std::exchange(device, nullptr)->Release(), KXP_OK);
    EXPECT_EQ(postponed.Ended(), 1);
}

TEST_F(ReleaseOrder, ADeviceReleasedFromARequestThatTheModulesReleaseEndsOutlivesThatRelease) {
    BusyContext postponed;
    Postpone(postponed);
    postponed.atEnd = [this] { EXPECT_EQ(std::exchange(device, nullptr)->Release(), KXP_OK); };
    EXPECT_EQ(module->Release(), KXP_OK);
    EXPECT_EQ(postponed.Ended(), 1);
}

TEST_F(ReleaseOrder, ADeviceStoppedFromTheEndOfARequestStartsAgain) {
    Start("({ F: function() { return 1 } })");
    for (int round = 0; round < 20; ++round) {
        BusyContext context;
        context.atEnd = [&] { EXPECT_EQ(device->Stop(), KXP_OK); };
        ASSERT_EQ(Call("F", &context), KXP_OK);
        ASSERT_TRUE(context.WaitForEnd());
        ASSERT_EQ(device->Start(), KXP_OK);
    }
    BusyContext last;
    ASSERT_EQ(Call("F", &last), KXP_OK);
    EXPECT_TRUE(last.WaitForEnd());
}

TEST_F(ReleaseOrder, ADeviceStoppedAndStartedWithinTheEndOfARequestGoesOn) {
    Start("({ F: function() { return 1 } })");
    BusyContext context;
    context.atEnd = [&] {
        EXPECT_EQ(device->Stop(), KXP_OK);
        EXPECT_EQ(device->Start(), KXP_OK);
    };
    ASSERT_EQ(Call("F", &context), KXP_OK);
    ASSERT_TRUE(context.WaitForEnd());
    BusyContext last;
    ASSERT_EQ(Call("F", &last), KXP_OK);
    EXPECT_TRUE(last.WaitForEnd());
}

TEST_F(ReleaseOrder, ARequestInWhoseBeginningTheDeviceIsReleasedEndsAtOnce) {
    Start("({ F: function() { return 1 } })");
    StartledContext context;
    context.atBegin = [this] { EXPECT_EQ(std::exchange(device, nullptr)->Release(), KXP_OK); };
    IKXPDevice& released = *device;
    params = plain::Params::ForFunction("F", {});
    EXPECT_EQ(released.ExecuteCommand(3, params.get(), &context), KXP_OK);
    EXPECT_EQ(context.Begun(), 1);
    EXPECT_EQ(context.Ended(), 1);
}

TEST_F(ReleaseOrder, ARequestInWhoseBeginningTheModuleIsReleasedEndsAtOnce) {
    Start("({ F: function() { return 1 } })");
    StartledContext context;
    context.atBegin = [this] { EXPECT_EQ(module->Release(), KXP_OK); };
    EXPECT_EQ(Call("F", &context), KXP_OK);
    EXPECT_EQ(context.Begun(), 1);
    EXPECT_EQ(context.Ended(), 1);
    ExpectRefusals();
}

TEST_F(ReleaseOrder, ADeviceReleasedWhileACommandOfItIsCheckedStaysUntilThatIsOver) {
    for (int question = 1;; ++question) {
        IKXPDevice* checked = MakeDevice();
        BusyParams stored;
        stored.questionsLeft = question;
        stored.meanwhile = [&] {
            EXPECT_EQ(std::exchange(checked, nullptr)->Release(), KXP_OK);
            EXPECT_EQ(MCalverinScript_Device::SweepAbandoned(), 1u) << "at question " << question;
        };
        module->CheckCommand(nullptr, checked, 99, &stored);
        if (checked == nullptr)
            continue;
        checked->Release();
        EXPECT_GT(question, 1) << "the collection is told which device it belongs to";
        return;
    }
}

TEST_F(ReleaseOrder, AModuleReleasedWhileItMakesADeviceMakesNoneAndGoesBehindThat) {
    BusyHost busy;
    bool isReleased = true;
    for (int question = 1; isReleased; ++question) {
        isReleased = false;
        Renew();
        ASSERT_EQ(module->Initialize(busy.Root(), nullptr, nullptr), KXP_OK);
        ASSERT_EQ(module->SetDeviceHost(this), KXP_OK);
        busy.questionsLeft = question;
        busy.meanwhile = [&] {
            isReleased = true;
            EXPECT_EQ(module->Terminate(nullptr), KXP_OK);
            EXPECT_EQ(module->Release(), KXP_OK);
            IKXPDevice* other = nullptr;
            EXPECT_EQ(module->CreateDevice(nullptr, &other), KXP_NO_DEVICE_MADE);
        };
        IKXPDevice* made = nullptr;
        const KXPCode code = module->CreateDevice(nullptr, &made);
        EXPECT_EQ(code, isReleased ? KXPCode{KXP_NO_DEVICE_MADE} : KXPCode{KXP_OK}) << "question " << question;
        EXPECT_EQ(made == nullptr, isReleased);
        busy.questionsLeft = 0;
        if (made != nullptr) {
            EXPECT_GT(question, 4) << "it asks for the host's services";
            made->Release();
        }
    }
    EXPECT_EQ(module->Release(), KXP_OK);
}

TEST_F(ReleaseOrder, AModuleThatIsReleasedTwiceMindsNothing) {
    IKXPModule* next = nullptr;
    EXPECT_EQ(module->Release(), KXP_OK);
    EXPECT_EQ(module->Release(), KXP_OK);
    EXPECT_EQ(DeviceCount(), 0u);
    EXPECT_EQ(module->CreateDevice(nullptr, &device), KXP_NULL_ARGUMENT);
    ASSERT_EQ(MCalverinScript_Module::GetEntryPoint(&next), KXP_OK);
    EXPECT_NE(next, module) << "a new one";
    EXPECT_EQ(next->Release(), KXP_OK);
    module = static_cast<MCalverinScript_Module*>(next);
}

TEST_F(ReleaseOrder, ADeviceOfTheNextModuleKnowsNothingOfTheOneBefore) {
    module->Release();
    IKXPModule* next = nullptr;
    ASSERT_EQ(MCalverinScript_Module::GetEntryPoint(&next), KXP_OK);
    module = static_cast<MCalverinScript_Module*>(next);
    Initialize();
    EXPECT_EQ(DeviceCount(), 0u);
    IKXPDevice* second = MakeDevice();
    EXPECT_EQ(second->Start(), KXP_OK);
    EXPECT_EQ(second->Stop(), KXP_OK);
    EXPECT_EQ(second->Release(), KXP_OK);
    ExpectRefusals();
}

} // namespace
