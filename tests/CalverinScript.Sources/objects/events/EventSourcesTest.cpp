#include "EventSources.h"

#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include "MScriptCommonEvent.h"
#include "ScriptFixture.h"

namespace {

class LiveSource : public MScriptCommonEvent {
public:
    LiveSource(ScriptObjectType kind, std::string name, std::string* gone)
        : m_name(std::move(name))
        , m_gone(gone) {
        m_type = kind;
    }
    ~LiveSource() override {
        if (m_gone != nullptr)
            *m_gone += m_name + " ";
    }

private:
    const std::string m_name;
    std::string* const m_gone;
};

class LiveObjects : public ScriptFixture {
protected:
    LiveSource* Own(ScriptObjectType kind, const std::string& name = "") {
        auto object = std::make_unique<LiveSource>(kind, name, &gone);
        LiveSource* const bare = object.get();
        objects.Own(std::move(object));
        return bare;
    }

    std::string gone;
    LiveSource resource{ScriptObjectType::Serial, "serial", nullptr};
    EventSources objects;
};

TEST_F(LiveObjects, DeliverWhatWasRaised) {
    LiveSource* udp = Own(ScriptObjectType::Udp);
    EXPECT_TRUE(objects.CountRaised(udp));
    EXPECT_TRUE(objects.TakeRaised(udp));
}

TEST_F(LiveObjects, AreFoundForEveryKindButNone) {
    for (int kind = 1; kind <= 10; ++kind)
        EXPECT_TRUE(objects.TakeRaised(Own(static_cast<ScriptObjectType>(kind)))) << kind;
    EXPECT_FALSE(objects.TakeRaised(Own(ScriptObjectType::None)));
    EXPECT_FALSE(objects.TakeRaised(nullptr));
    EXPECT_FALSE(objects.CountRaised(nullptr));
}

TEST_F(LiveObjects, AreLookedUpByAddressAloneSoThatOneThatIsGoneIsNeverTouched) {
    const auto* nowhere = reinterpret_cast<const MScriptCommonEvent*>(std::uintptr_t(64));
    EXPECT_FALSE(objects.CountRaised(nowhere));
    EXPECT_FALSE(objects.TakeRaised(nowhere));
}

TEST_F(LiveObjects, GoInTheOrderOfTheirKindsAndThenOfTheirAges) {
    Own(ScriptObjectType::HttpClient, "http1");
    objects.Borrow(resource);
    Own(ScriptObjectType::Udp, "udp1");
    Own(ScriptObjectType::TcpClient, "tcp1");
    Own(ScriptObjectType::HttpClient, "http2");
    Own(ScriptObjectType::TcpClient, "tcp2");
    Own(ScriptObjectType::Udp, "udp2");
    EXPECT_TRUE(objects.Release());
    EXPECT_EQ(gone, "");
    objects.DeleteReleased();
    EXPECT_EQ(gone, "tcp1 tcp2 udp1 udp2 http1 http2 ");
    EXPECT_FALSE(objects.Release());
}

TEST_F(LiveObjects, AreNotDeliveredToOnceTheyAreReleased) {
    LiveSource* udp = Own(ScriptObjectType::Udp);
    ASSERT_TRUE(objects.CountRaised(udp));
    objects.Release();
    EXPECT_FALSE(objects.CountRaised(udp)) << "nothing new is queued";
    EXPECT_FALSE(objects.TakeRaised(udp)) << "and what is on its way is dropped";
}

TEST_F(LiveObjects, NeverGetWhatAnObjectAtTheSameAddressHasLeftBehind) {
    objects.Borrow(resource);
    ASSERT_TRUE(objects.CountRaised(&resource));
    ASSERT_TRUE(objects.CountRaised(&resource));
    ASSERT_TRUE(objects.TakeRaised(&resource));
    ASSERT_TRUE(objects.CountRaised(&resource));
    objects.Release();
    objects.DeleteReleased();
    objects.Borrow(resource);
    ASSERT_TRUE(objects.CountRaised(&resource));
    EXPECT_FALSE(objects.TakeRaised(&resource)) << "two were on their way";
    EXPECT_FALSE(objects.TakeRaised(&resource));
    EXPECT_TRUE(objects.TakeRaised(&resource)) << "this one is its own";
}

TEST_F(LiveObjects, LetResourcesLiveWithAnEmptyListenerTable) {
    resource.SetListener(QStringLiteral("data"), engine.evaluate(QStringLiteral("(function () {})")));
    objects.Borrow(resource);
    objects.Borrow(resource);
    objects.Release();
    EXPECT_TRUE(resource.GetListener(QStringLiteral("data")).isValid()) << "until it is on the script thread";
    objects.DeleteReleased();
    EXPECT_FALSE(resource.GetListener(QStringLiteral("data")).isValid());
    EXPECT_EQ(gone, "");
    objects.Borrow(resource);
    EXPECT_TRUE(objects.TakeRaised(&resource));
}

TEST_F(LiveObjects, GoWithTheList) {
    {
        EventSources own;
        own.Own(std::make_unique<LiveSource>(ScriptObjectType::Udp, "udp", &gone));
    }
    EXPECT_EQ(gone, "udp ");
}

TEST_F(LiveObjects, AreWaitedForNoLongerThanTheLimit) {
    EXPECT_TRUE(objects.WaitUntilDeleted(std::chrono::milliseconds(0)));
    Own(ScriptObjectType::Udp);
    EXPECT_TRUE(objects.WaitUntilDeleted(std::chrono::milliseconds(0)));
    objects.Release();
    EXPECT_FALSE(objects.WaitUntilDeleted(std::chrono::milliseconds(1)));
    std::thread script([this] { objects.DeleteReleased(); });
    EXPECT_TRUE(objects.WaitUntilDeleted(std::chrono::seconds(20)));
    script.join();
    EXPECT_NE(gone, "");
}

/// A destructor waits for a thread that may just be raising an event.
class Raising : public MScriptCommonEvent {
public:
    explicit Raising(EventSources& objects) {
        m_type = ScriptObjectType::TcpClient;
        m_thread = std::thread([this, &objects] {
            while (!m_stop)
                objects.CountRaised(this);
        });
    }
    ~Raising() override {
        m_stop = true;
        m_thread.join();
    }

private:
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

TEST_F(LiveObjects, MayRaiseEventsWhileTheyGo) {
    for (int i = 0; i < 200; ++i) {
        objects.Own(std::make_unique<Raising>(objects));
        objects.Release();
        objects.DeleteReleased();
    }
    EXPECT_FALSE(objects.Release());
}

class FloodedObjects : public LiveObjects {
protected:
    FloodedObjects() { ends = 0; }

    void Take(EventSources& from, const MScriptCommonEvent* object, std::uint64_t count) {
        for (std::uint64_t i = 0; i < count; ++i)
            from.TakeRaised(object);
    }

    static inline int ends = 0;
    EventSources flooded{[] { ++ends; }};
};

TEST_F(FloodedObjects, TellTheEndOfAFloodOnceWhenItsLastEventIsTaken) {
    flooded.Borrow(resource);
    ASSERT_TRUE(flooded.CountRaised(&resource, EventSources::kFlood));
    Take(flooded, &resource, EventSources::kFlood - 1);
    EXPECT_EQ(ends, 0);
    EXPECT_TRUE(flooded.TakeRaised(&resource));
    EXPECT_EQ(ends, 1);
    ASSERT_TRUE(flooded.CountRaised(&resource));
    EXPECT_TRUE(flooded.TakeRaised(&resource));
    EXPECT_EQ(ends, 1);
}

TEST_F(FloodedObjects, TellNothingOfManyEventsOfWhichFewWaitAtATime) {
    flooded.Borrow(resource);
    for (std::uint64_t i = 0; i < 3; ++i) {
        ASSERT_TRUE(flooded.CountRaised(&resource, EventSources::kFlood - 1));
        Take(flooded, &resource, EventSources::kFlood - 1);
    }
    EXPECT_EQ(ends, 0);
}

TEST_F(FloodedObjects, TellTheEndOfAFloodOfSeveralObjectsAlsoWhenTheyAreReleased) {
    LiveSource other(ScriptObjectType::DmxIn, "dmx", nullptr);
    flooded.Borrow(resource);
    flooded.Borrow(other);
    ASSERT_TRUE(flooded.CountRaised(&resource, EventSources::kFlood - 1));
    ASSERT_TRUE(flooded.CountRaised(&other));
    flooded.Release();
    flooded.DeleteReleased();
    Take(flooded, &resource, EventSources::kFlood - 1);
    EXPECT_EQ(ends, 0);
    EXPECT_FALSE(flooded.TakeRaised(&other));
    EXPECT_EQ(ends, 1);
}

} // namespace
