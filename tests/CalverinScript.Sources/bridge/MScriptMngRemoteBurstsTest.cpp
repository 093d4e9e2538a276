#include <gtest/gtest.h>

#include <memory>

#include "FakeScriptDevice.h"
#include "MScriptCommonEvent.h"
#include "MScriptMngRemote.h"
#include "MScriptParamList.h"

namespace {

class BurstSource : public MScriptCommonEvent {
public:
    BurstSource() { m_type = ScriptObjectType::Udp; }
};

class BridgeBursts : public testing::Test {
protected:
    BridgeBursts() {
        auto source = std::make_unique<BurstSource>();
        object = source.get();
        remote.GetEventSources().Own(std::move(source));
        burst[0].Add(true);
    }

    FakeScriptDevice device;
    MScriptMngRemote remote{&device, nullptr, nullptr, nullptr, nullptr};
    MScriptCommonEvent* object = nullptr;
    std::vector<MScriptParamList> burst = std::vector<MScriptParamList>(2);
};

TEST_F(BridgeBursts, GoToTheDeviceInOrderWithTheObjectBehindTheValues) {
    remote.PostScriptEvents(QStringLiteral("message"), burst, object);
    EXPECT_EQ(device.events, (std::vector<std::string>{"message 1 with object", "message 0 with object"}));
}

TEST_F(BridgeBursts, AreDeliveredInFullWhileTheObjectLives) {
    remote.PostScriptEvents(QStringLiteral("message"), burst, object);
    EXPECT_TRUE(remote.TakeRaised(object));
    EXPECT_TRUE(remote.TakeRaised(object));
}

TEST_F(BridgeBursts, AreDroppedInFullWhenTheObjectIsGone) {
    remote.PostScriptEvents(QStringLiteral("message"), burst, object);
    remote.ReleaseScriptObjects();
    EXPECT_FALSE(remote.TakeRaised(object));
    EXPECT_FALSE(remote.TakeRaised(object));
    remote.PostScriptEvents(QStringLiteral("message"), burst, object);
    EXPECT_EQ(device.events.size(), 2U) << "an object that is gone raises nothing";
}

TEST_F(BridgeBursts, GoNowhereWithoutDeviceOrObject) {
    remote.PostScriptEvents(QStringLiteral("message"), burst, nullptr);
    MScriptMngRemote alone(nullptr, nullptr, nullptr, nullptr, nullptr);
    alone.PostScriptEvents(QStringLiteral("message"), burst, object);
    EXPECT_TRUE(device.events.empty());
}

} // namespace
