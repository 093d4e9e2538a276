#include <future>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QScriptEngine>

#include "Deadline.h"
#include "ScriptEntrance.h"

namespace {

constexpr int kLookAtEventsMs = 10;

/// An entrance whose script thread is the test's own.
class Entrance : public testing::Test {
protected:
    void SetUp() override {
        entrance.SetEngine(engine);
        engine.setProcessEventsInterval(kLookAtEventsMs);
    }
    ~Entrance() override { entrance.LeaveThread(); }

    /// Serves all that waits, however many turns it takes: one turn of tasks may be over before its tasks are.
    static void ServeEvents() {
        do
            QCoreApplication::processEvents();
        while (QAbstractEventDispatcher::instance()->hasPendingEvents());
    }
    void Note(int what) {
        entrance.Post([this, what] { seen.push_back(what); });
    }
    /// Calls the function that a text gives, as the device does, and lets the device end while it runs.
    void RunToTheEndOfTheDevice(const QString& text) {
        engine.pushContext();
        QScriptValue function = engine.evaluate(text);
        engine.popContext();
        ASSERT_TRUE(function.isFunction());
        std::promise<void> begun;
        std::thread host([this, start = begun.get_future()] {
            start.wait();
            ending = true;
            entrance.Close();
            entrance.WakeUp();
        });
        {
            const ScriptEntrance::Entry entry(entrance);
            begun.set_value();
            function.call();
        }
        host.join();
    }

    std::vector<int> seen;
    int deferredRuns = 0;
    int shortages = 0;
    std::recursive_mutex lock;
    std::atomic<bool> ending{false};
    QScriptEngine engine;
    ScriptEntrance entrance{lock, ending, [this] { ++deferredRuns; }, [this] { ++shortages; }, nullptr};
};

TEST_F(Entrance, RunsTasksInTheOrderInWhichTheyWereLeft) {
    for (int i = 0; i < 3; ++i)
        Note(i);
    EXPECT_TRUE(seen.empty());
    ServeEvents();
    EXPECT_EQ(seen, (std::vector<int>{0, 1, 2}));
}

TEST_F(Entrance, RunsNothingInsideTheScriptAndEverythingBehindTheOutermostEntry) {
    {
        const ScriptEntrance::Entry outer(entrance);
        EXPECT_TRUE(entrance.IsInside());
        {
            const ScriptEntrance::Entry inner(entrance);
            Note(1);
            ServeEvents();
        }
        ServeEvents();
        EXPECT_TRUE(seen.empty());
    }
    EXPECT_FALSE(entrance.IsInside());
    ServeEvents();
    EXPECT_EQ(seen, std::vector<int>{1});
}

TEST_F(Entrance, RunsWhatWasDeferredWhenTheScriptHasBeenLeft) {
    {
        const ScriptEntrance::Entry entry(entrance);
        entrance.Defer();
        ServeEvents();
        EXPECT_EQ(deferredRuns, 0);
    }
    ServeEvents();
    EXPECT_EQ(deferredRuns, 1);
}

TEST_F(Entrance, AnEntryOfAnotherThreadHoldsTheLockAndCountsAsNobodyInside) {
    std::promise<void> entered;
    std::promise<void> leave;
    std::thread tick([&] {
        const ScriptEntrance::Entry entry(entrance);
        entered.set_value();
        leave.get_future().wait();
    });
    entered.get_future().wait();
    EXPECT_FALSE(entrance.IsInside());
    EXPECT_FALSE(lock.try_lock());
    leave.set_value();
    tick.join();
    EXPECT_TRUE(lock.try_lock());
    lock.unlock();
}

TEST_F(Entrance, WantOfMemoryInATaskIsToldAndTheNextTaskRuns) {
    entrance.Post([] { throw std::bad_alloc(); });
    Note(2);
    ServeEvents();
    EXPECT_EQ(shortages, 1);
    EXPECT_EQ(seen, std::vector<int>{2});
}

TEST_F(Entrance, TakesNoTaskAfterClose) {
    Note(1);
    entrance.Close();
    EXPECT_FALSE(entrance.Post([this] { seen.push_back(2); }));
    ServeEvents();
    EXPECT_EQ(seen, std::vector<int>{1});
}

TEST_F(Entrance, AbortsTheFunctionThatRunsWhenTheDeviceEnds) {
    RunToTheEndOfTheDevice(QStringLiteral("(function() { for (;;) {} })"));
    EXPECT_TRUE(engine.hasUncaughtException());
}

TEST_F(Entrance, AbortsWhatCatchesEverything) {
    RunToTheEndOfTheDevice(
        QStringLiteral("(function() { for (;;) try { for (;;) {} } catch (e) {} finally { for (;;) {} } })"));
}

TEST_F(Entrance, AbortsAScriptThatHasFilledItsStack) {
    RunToTheEndOfTheDevice(
        QStringLiteral("(function() {"
                       "  function deeper(n) { for (var i = 0; i < 3; ++i) try { deeper(n + 1); } catch (e) {} }"
                       "  for (;;) deeper(0); })"));
}

TEST_F(Entrance, AbortsNothingWhileTheDeviceLives) {
    QScriptValue function =
        engine.evaluate(QStringLiteral("(function() { var n = 0; for (var i = 0; i < 1e7; ++i) ++n; return n; })"));
    const ScriptEntrance::Entry entry(entrance);
    entrance.WakeUp();
    EXPECT_EQ(function.call().toInt32(), 10000000);
}

} // namespace
