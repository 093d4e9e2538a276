#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "DriverFixture.h"
#include "FakeResources.h"
#include "SetupDesk.h"

namespace {

/// Asks back before it gives a resource.
class AskingProvider : public plain::FakeProvider {
public:
    std::function<void()> onAsk;

    IMInterface* GetResource(std::uint32_t kind, std::int32_t resourceId, std::uint32_t subtype) override {
        IMInterface* const found = plain::FakeProvider::GetResource(kind, resourceId, subtype);
        onAsk();
        return found;
    }
};

/// Asks back while it takes a handler.
class AskingSerial : public plain::FakeSerial {
public:
    using plain::FakeSerial::FakeSerial;
    std::function<void()> onAsk;

    KXPCode AddHandler(ISerialResourceHandler* handler, std::uint32_t mask) override {
        const KXPCode code = plain::FakeSerial::AddHandler(handler, mask);
        onAsk();
        return code;
    }
};

/// A position of the host's that asks back.
class AskingTime : public ITimeData {
public:
    virtual ~AskingTime() = default;
    std::function<void()> onAsk;

    KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
    KXPCode Release() override { return KXP_OK; }
    const char* GetName() override { return ""; }
    KXPCode SetProperty(const char*, const char*, std::uint32_t, std::uint32_t) override { return KXP_OK; }
    const char* GetProperty(const char*) override { return nullptr; }
    void ReleaseString(char**) override {}
    std::uint32_t GetInstanceID() override { return 0; }
    std::int32_t GetIntValue() override { return 0; }
    void SetIntValue(std::int32_t, std::uint32_t, std::uint32_t) override {}
    double GetRealValue() override { return 0; }
    void SetRealValue(double, std::uint32_t, std::uint32_t) override {}
    char* GetValueAsString() override { return nullptr; }
    void SetValueFromString(const char*, std::uint32_t, std::uint32_t) override {}
    std::uint32_t GetDataType() override { return KXP_TIME_DATA; }
    std::int32_t GetTimeCodeType() override { return 4; }
    KXPCode Reserved2() override { return KXP_OK; }
    KXPCode Reserved3() override { return KXP_OK; }
    std::int32_t GetFrameCount() override {
        onAsk();
        return 7;
    }
};

/// A host that releases the device, and drops its values, from inside what the device asks it.
class ReleasedFromInside : public DriverFixture {
protected:
    using Operation = std::function<void(MCalverinScript_Device&)>;

    ReleasedFromInside() {
        host.resourceProvider = &provider;
        provider.onAsk = [this] { Asked(); };
        time.onAsk = [this] { Asked(); };
        for (int id = 0; id < kPorts; ++id) {
            ports.push_back(std::make_unique<AskingSerial>(id));
            ports.back()->onAsk = [this] { Asked(); };
            provider.resources[{KXP_SERIAL_RESOURCE, id, KXP_RESOURCE_BOTH}] = ports.back()->Root();
        }
    }

    void TearDown() override {
        DriverFixture::TearDown();
        for (const auto& port : ports)
            EXPECT_EQ(port->handlers.Count(), 0u) << "a handler of a device that is gone";
    }

    /// Does the operation on a new device each time, and releases it at the first, the second ... question until there
    /// are no more. @return how many there are.
    int ReleaseAtEachQuestionOf(const Operation& operation, const Operation& before = nullptr) {
        for (int question = 1;; ++question) {
            m_driver = &MakeDevice();
            if (isSetUp) {
                EXPECT_EQ(Accept(*m_driver, kScript), KXP_OK);
            }
            if (before)
                before(*m_driver->device);
            m_driver->variables.onGet = [this] { Asked(); };
            m_driver->variables.onDefinition = [this] { Asked(); };
            m_left = question;
            operation(*m_driver->device);
            EXPECT_EQ(m_askedBehind, 0) << "behind a release at question " << question;
            m_left = 0;
            m_driver->variables.onGet = nullptr;
            m_driver->variables.onDefinition = nullptr;
            if (m_driver->device != nullptr)
                return question - 1;
        }
    }

    void Asked() {
        if (m_driver != nullptr && m_driver->device == nullptr)
            ++m_askedBehind;
        else if (std::this_thread::get_id() == m_hostMain && m_left > 0 && --m_left == 0)
            Release();
    }

    bool isSetUp = true; ///< whether a dialog was accepted before the operation
    AskingProvider provider;
    AskingTime time;
    std::vector<std::unique_ptr<AskingSerial>> ports;

private:
    static constexpr int kPorts = 2;
    static constexpr const char* kScript =
        "({ Device: { Level: 1, Mode: 'a' }, f: function (x) {},"
        "   Info: { Setup: { main: { Widget: 'Serial' }, spare: { Widget: 'Serial' } } },"
        "   Setup: { main: '{ \"Type\":\"Serial\", \"ResourceID\":0 }', spare: '{ \"Type\":\"Serial\", "
        "\"ResourceID\":1 }' } })";

    void Release() {
        std::exchange(m_driver->device, nullptr)->Release();
        m_driver->variables.DropAll();
    }

    const std::thread::id m_hostMain = std::this_thread::get_id();
    std::atomic<int> m_askedBehind{0};
    DriverDevice* m_driver = nullptr;
    int m_left = 0; ///< questions on the main thread until the release; 0 for never
};

TEST_F(ReleasedFromInside, ASetupAsksNothingMore) {
    const int questions = ReleaseAtEachQuestionOf([setup = std::string()](MCalverinScript_Device& device) mutable {
        if (setup.empty()) {
            char* text = nullptr;
            ASSERT_EQ(device.GetSetup(&text), KXP_OK);
            setup = text;
            device.ReleaseString(&text);
        }
        device.SetSetup(setup.c_str());
    });
    EXPECT_GT(questions, 20) << "five default variables, two of the script's, several times each, and two ports";
}

TEST_F(ReleasedFromInside, ADialogThatIsAcceptedAsksNothingMore) {
    EXPECT_GT(ReleaseAtEachQuestionOf([this](MCalverinScript_Device& device) {
                  EXPECT_EQ(&device, drivers.back()->device);
                  Accept(*drivers.back(), "({ Device: { Other: 1 }, g: function () {} })");
              }),
              10);
}

TEST_F(ReleasedFromInside, ADialogThatIsLeftAsksNothingMore) {
    EXPECT_GT(ReleaseAtEachQuestionOf([](MCalverinScript_Device& device) { device.GetSetupDesk().Cancel(); },
                                      [](MCalverinScript_Device& device) { device.GetSetupDesk().Begin(); }),
              4);
}

TEST_F(ReleasedFromInside, AChoiceOfResourcesInADialogAsksNothingMore) {
    EXPECT_EQ(ReleaseAtEachQuestionOf([](MCalverinScript_Device& device) {
                  device.GetSetupDesk().ResolveResources(device.GetStoredSetup().GetSettings());
              }),
              4)
        << "two ports, each given and each told who hears of it";
}

TEST_F(ReleasedFromInside, AResourceThatHasBecomeOpenIsAskedNothingMore) {
    for (const auto& port : ports)
        port->onGetState = [this] { Asked(); };
    EXPECT_EQ(
        ReleaseAtEachQuestionOf([this](MCalverinScript_Device&) { ports.front()->BecomeState(KXP_RESOURCE_OPEN); }), 1)
        << "its state";
}

TEST_F(ReleasedFromInside, AStartThatLooksUpTheDefaultVariablesAsksNothingMore) {
    isSetUp = false;
    EXPECT_EQ(ReleaseAtEachQuestionOf([](MCalverinScript_Device& device) { device.Start(); }), 5);
}

TEST_F(ReleasedFromInside, ADefinitionAsksNothingMore) {
    const auto forgetDefinition = [](MCalverinScript_Device& device) { device.GetStoredSetup().SetDefinition(""); };
    EXPECT_GT(ReleaseAtEachQuestionOf([](MCalverinScript_Device& device) { device.GetDefinition(); }, forgetDefinition),
              4);
}

TEST_F(ReleasedFromInside, ATransportEventDoesNothingMore) {
    EXPECT_EQ(ReleaseAtEachQuestionOf([this](MCalverinScript_Device& device) { device.OnTimerailEvent(&time, 2); }), 1);
}

} // namespace
