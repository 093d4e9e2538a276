#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "FakeScriptDevice.h"
#include "MScriptCommonEvent.h"
#include "MScriptMngRemote.h"
#include "MScriptParamList.h"

namespace {

class Source : public MScriptCommonEvent {
public:
    explicit Source(bool* gone)
        : m_gone(gone) {
        m_type = ScriptObjectType::Udp;
    }
    ~Source() override { *m_gone = true; }

private:
    bool* const m_gone;
};

class BridgeEvents : public testing::Test {
protected:
    void MakeWith(IScriptDevice* scriptDevice) {
        remote = std::make_unique<MScriptMngRemote>(scriptDevice, nullptr, nullptr, nullptr, nullptr);
    }
    MScriptCommonEvent* Own() {
        auto object = std::make_unique<Source>(&gone);
        MScriptCommonEvent* const bare = object.get();
        remote->GetEventSources().Own(std::move(object));
        return bare;
    }

    bool gone = false;
    FakeScriptDevice device;
    MScriptParamList none;
    std::unique_ptr<MScriptMngRemote> remote;
};

TEST_F(BridgeEvents, GoToTheDeviceWithTheObjectBehindTheValues) {
    MakeWith(&device);
    MScriptCommonEvent* object = Own();
    MScriptParamList values;
    values.Add(true);
    remote->PostScriptEvent(QStringLiteral("data"), &values, object);
    remote->PostScriptEvent(QStringLiteral("open"), &none, object);
    EXPECT_EQ(device.events, (std::vector<std::string>{"data 1 with object", "open 0 with object"}));
    EXPECT_EQ(values.GetSource(), nullptr) << "the caller's own list stays as it is";
}

TEST_F(BridgeEvents, GoNowhereWithoutDeviceValuesOrObject) {
    MakeWith(&device);
    MScriptCommonEvent* object = Own();
    remote->PostScriptEvent(QStringLiteral("data"), nullptr, object);
    remote->PostScriptEvent(QStringLiteral("data"), &none, nullptr);
    EXPECT_TRUE(device.events.empty());
    MakeWith(nullptr);
    remote->PostScriptEvent(QStringLiteral("data"), &none, Own());
}

TEST_F(BridgeEvents, OfAnObjectThatIsNotTheScriptsGoNowhere) {
    MakeWith(&device);
    bool other = false;
    Source stranger(&other);
    remote->PostScriptEvent(QStringLiteral("data"), &none, &stranger);
    EXPECT_TRUE(device.events.empty());
    EXPECT_FALSE(remote->TakeRaised(&stranger));
}

TEST_F(BridgeEvents, EndWithTheRelease) {
    MakeWith(&device);
    MScriptCommonEvent* object = Own();
    EXPECT_TRUE(remote->TakeRaised(object));
    remote->ReleaseScriptObjects();
    EXPECT_TRUE(gone) << "on its own thread the bridge deletes at once";
    EXPECT_FALSE(remote->TakeRaised(object));
    EXPECT_TRUE(device.tasks.empty());
}

TEST_F(BridgeEvents, EndAtOnceWhenAnotherThreadReleasesAndTheScriptThreadDeletes) {
    MakeWith(&device);
    MScriptCommonEvent* object = Own();
    std::thread host([this] { remote->ReleaseScriptObjects(); });
    host.join();
    EXPECT_FALSE(remote->TakeRaised(object));
    ASSERT_EQ(device.tasks.size(), 1u);
    EXPECT_FALSE(gone) << "the wait of the host's thread has an end, and the object waits for its thread";
    device.tasks.front()();
    EXPECT_TRUE(gone);
}

TEST_F(BridgeEvents, LeaveObjectsToTheEndOfTheBridgeWhenTheDeviceTakesNoTasks) {
    MakeWith(&device);
    Own();
    device.takesTasks = false;
    std::thread host([this] { remote->ReleaseScriptObjects(); });
    host.join();
    EXPECT_FALSE(gone);
    remote.reset();
    EXPECT_TRUE(gone);
}

TEST_F(BridgeEvents, CostAReleaseWithoutObjectsNothing) {
    MakeWith(&device);
    std::thread host([this] { remote->ReleaseScriptObjects(); });
    host.join();
    EXPECT_TRUE(device.tasks.empty());
}

TEST_F(BridgeEvents, ComeFromADeviceWithAName) {
    MakeWith(&device);
    EXPECT_EQ(remote->GetDeviceName(), "Desk");
    MakeWith(nullptr);
    EXPECT_EQ(remote->GetDeviceName(), "");
}

} // namespace
