#include "ResourceLink.h"

#include <gtest/gtest.h>

#include <future>

#include <QString>

#include "FakeResources.h"
#include "IScriptObjectOwner.h"
#include "MScriptCommonEvent.h"

namespace {

using namespace std::chrono_literals;

class Listening : public IScriptObjectOwner {
public:
    virtual ~Listening() = default;
    std::string events;
    std::mutex lock;

    std::string Take() {
        const std::lock_guard<std::mutex> guard(lock);
        return std::exchange(events, "");
    }
    void PostScriptEvent(const QString& eventName, const MScriptParamList*, MScriptCommonEvent*) override {
        const std::lock_guard<std::mutex> guard(lock);
        events += (events.empty() ? "" : " ") + eventName.toStdString();
    }
    std::string GetDeviceName() const override { return "Desk"; }
    void TraceMessage(const QString&, const QString&) override {}
};

class Link : public testing::Test {
protected:
    Listening owner;
    MScriptCommonEvent object;
    plain::FakeSerial port;
    const std::shared_ptr<ResourceLink> held = std::make_shared<ResourceLink>(&port, &owner, &object);
    ResourceLink& link = *held;
};

TEST_F(Link, TellsTheFirstStateAndThenChangesAlone) {
    link.Look();
    link.Look();
    EXPECT_EQ(owner.Take(), "close");
    port.state = KXP_RESOURCE_OPEN;
    link.Look();
    link.Look();
    EXPECT_EQ(owner.Take(), "open");
}

TEST_F(Link, TellsTheSameStateOnceMoreWhenItWasForgotten) {
    link.Look();
    link.ForgetState();
    link.Look();
    EXPECT_EQ(owner.Take(), "close close");
}

TEST_F(Link, KeepsStatesOfTheHostsOwnWithoutTellingThem) {
    port.state = 1;
    link.Look();
    port.state = 0;
    link.Look();
    EXPECT_EQ(owner.Take(), "close");
}

TEST_F(Link, HasNothingToTellWithoutResourceOrOwner) {
    std::make_shared<ResourceLink>(nullptr, &owner, &object)->Look();
    std::make_shared<ResourceLink>(&port, nullptr, &object)->Look();
    EXPECT_EQ(owner.Take(), "");
    EXPECT_EQ(port.stateQuestions, 1u);
}

TEST_F(Link, MakesNoCallFromItsShuttingOn) {
    EXPECT_TRUE(link.Use([] {}));
    link.Shut();
    bool called = false;
    EXPECT_FALSE(link.Use([&] { called = true; }));
    link.Look();
    EXPECT_FALSE(called);
    EXPECT_TRUE(link.IsShut());
    EXPECT_EQ(port.stateQuestions, 0u);
}

TEST_F(Link, TellsNothingOfALookThatWasInsideTheHostWhenItWasShut) {
    port.onGetState = [this] { link.Shut(); };
    link.Look();
    EXPECT_EQ(owner.Take(), "");
}

TEST_F(Link, WaitsForCallsOfOtherThreadsAndNotForItsOwn) {
    std::promise<void> inside;
    std::promise<void> goOn;
    std::thread other([&] {
        link.Use([&] {
            inside.set_value();
            goOn.get_future().wait();
        });
    });
    inside.get_future().wait();
    link.Use([&] {
        link.Shut();
        EXPECT_FALSE(link.WaitUntilUnused(1ms)) << "the other is still inside";
        goOn.set_value();
        EXPECT_TRUE(link.WaitUntilUnused(std::chrono::milliseconds(kDeadlineMs)));
    });
    other.join();
}

TEST_F(Link, MayBeUsedFromInsideItsOwnUse) {
    EXPECT_TRUE(link.Use([this] { EXPECT_TRUE(link.Use([this] { link.Look(); })); }));
    EXPECT_EQ(owner.Take(), "close");
}

TEST_F(Link, DropsAnAnswerThatCameLaterThanThatOfALaterLook) {
    std::promise<void> asked;
    std::promise<void> goOn;
    std::atomic<bool> first{true};
    port.onGetState = [&] {
        if (!first.exchange(false))
            return;
        asked.set_value();
        goOn.get_future().wait();
    };
    std::thread slow([this] { link.Look(); });
    asked.get_future().wait();
    port.state = KXP_RESOURCE_OPEN;
    link.Look();
    EXPECT_EQ(owner.Take(), "open");
    port.state =
        KXP_RESOURCE_CLOSED; // what the slow one reads now it must not tell: a look that follows the change does
    goOn.set_value();
    slow.join();
    EXPECT_EQ(owner.Take(), "");
    link.Look();
    EXPECT_EQ(owner.Take(), "close");
}

TEST_F(Link, TellsOpenAndCloseInTurnHoweverManyThreadsLook) {
    std::atomic<bool> stop{false};
    std::vector<std::thread> lookers;
    for (int i = 0; i < 4; ++i)
        lookers.emplace_back([&] {
            while (!stop)
                link.Look();
        });
    for (int i = 0; i < 2000; ++i) {
        port.state = i % 2 == 0 ? KXP_RESOURCE_OPEN : KXP_RESOURCE_CLOSED;
        link.Look();
    }
    stop = true;
    for (std::thread& looker : lookers)
        looker.join();
    std::string last;
    std::string all = owner.Take();
    for (std::size_t at = 0; at < all.size();) {
        const std::size_t end = std::min(all.find(' ', at), all.size());
        const std::string event = all.substr(at, end - at);
        EXPECT_NE(event, last);
        last = event;
        at = end + 1;
    }
    EXPECT_EQ(last, "close");
}

} // namespace
