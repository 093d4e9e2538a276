#include <chrono>
#include <new>
#include <thread>

#include <gtest/gtest.h>

#include <QScriptEngine>
#include <QThread>

#include "LimitedRun.h"
#include "MScriptDescription.h"
#include "StoppableLoop.h"

namespace {

using Outcome = LimitedRun::Outcome;

constexpr std::chrono::minutes kNeverReached(10);
constexpr std::chrono::milliseconds kSoon(50);

class Limited : public testing::Test {
protected:
    Outcome Evaluate(const char* text, std::chrono::milliseconds limit) {
        LimitedRun run(engine, limit);
        return run.Run([&] { value = engine.evaluate(QLatin1String(text)); });
    }

    QScriptEngine engine;
    QScriptValue value;
};

TEST_F(Limited, AWorkThatEndsLeavesItsValuesToTheCaller) {
    EXPECT_EQ(Evaluate("({ n: 6 * 7 })", kNeverReached), Outcome::InTime);
    EXPECT_EQ(value.property(QStringLiteral("n")).toInt32(), 42);
    EXPECT_EQ(engine.evaluate(QStringLiteral("1 + 1")).toInt32(), 2) << "the engine is the caller's again";
}

TEST_F(Limited, AWorkThatFindsNoMemoryEndsAsSuchAndLeavesTheEngineInOrder) {
    LimitedRun run(engine, kNeverReached);
    EXPECT_EQ(run.Run([] { throw std::bad_alloc(); }), Outcome::NoMemory);
    EXPECT_EQ(Evaluate("6 * 7", kNeverReached), Outcome::InTime);
    EXPECT_EQ(value.toInt32(), 42);
}

TEST_F(Limited, AWorkWhoseHostFindsNoMemoryForAnAnswerIsNoneThatCounts) {
    LimitedRun run(engine, kNeverReached);
    bool goesOn = false;
    EXPECT_EQ(run.Run([&] {
        run.OnCallersThread([] { throw std::bad_alloc(); });
        goesOn = true;
    }),
              Outcome::NoMemory);
    EXPECT_TRUE(goesOn);
}

TEST_F(Limited, AnEndlessScriptIsEndedAfterTheLimit) {
    for (const char* endless : {"for (;;) {}", "for (;;) try { for (;;) {} } catch (e) {}",
                                "function f() { return f() + 1; } for (;;) try { f(); } catch (e) {}"})
        EXPECT_EQ(Evaluate(endless, kSoon), Outcome::Late) << endless;
    EXPECT_EQ(Evaluate("1", kNeverReached), Outcome::InTime);
}

TEST_F(Limited, AnEndlessFunctionThatTheWorkCallsIsEndedToo) {
    LimitedRun run(engine, kSoon);
    EXPECT_EQ(run.Run([&] {
        QScriptValue function = engine.evaluate(QStringLiteral("(function() { for (;;) {} })"));
        function.call();
        function.call();
    }),
              Outcome::Late);
}

TEST_F(Limited, ANativeLoopHearsOfTheLimit) {
    LimitedRun run(engine, kSoon);
    EXPECT_EQ(run.Run([&] {
        StoppableLoop loop(&engine);
        while (loop.GoesOn()) {
        }
    }),
              Outcome::Late);
    StoppableLoop after(&engine);
    for (int i = 0; i < 5000; ++i)
        ASSERT_TRUE(after.GoesOn()) << "the limit counts for its own work alone";
}

TEST_F(Limited, TheHostIsAskedOnTheThreadThatWaits) {
    const std::thread::id caller = std::this_thread::get_id();
    std::thread::id worker;
    std::thread::id asked;
    LimitedRun run(engine, kNeverReached);
    EXPECT_EQ(run.Run([&] {
        worker = std::this_thread::get_id();
        run.OnCallersThread([&] { asked = std::this_thread::get_id(); });
    }),
              Outcome::InTime);
    EXPECT_EQ(asked, caller);
    EXPECT_NE(worker, caller);
}

TEST_F(Limited, AfterTheLimitTheHostIsAskedNoMore) {
    int asked = 0;
    LimitedRun run(engine, kSoon);
    EXPECT_EQ(run.Run([&] {
        engine.evaluate(QStringLiteral("for (;;) {}"));
        run.OnCallersThread([&] { ++asked; });
    }),
              Outcome::Late);
    EXPECT_EQ(asked, 0);
}

TEST_F(Limited, OnlyAnAnalysisThatDidNotEndHasAText) {
    EXPECT_TRUE(AnalysisFailure(Outcome::InTime, kAnalysisLimit).isNull());
    EXPECT_EQ(AnalysisFailure(Outcome::Late, kAnalysisLimit),
              QStringLiteral("The analysis was ended after 10 s: the script does not come back."));
    EXPECT_FALSE(AnalysisFailure(Outcome::NoThread, kAnalysisLimit).isEmpty());
    EXPECT_FALSE(AnalysisFailure(Outcome::NoMemory, kAnalysisLimit).isEmpty());
}

TEST_F(Limited, ADescriptionStaysAsItWasWhenTheScriptDoesNotComeBack) {
    MScriptDescription record;
    record.title = QStringLiteral("as before");
    MScriptDescription::Parse(QStringLiteral("({ Info: { Title: 'new', get Author() { for (;;) {} } } })"), engine,
                              record, kSoon);
    EXPECT_EQ(record.title, QStringLiteral("as before"));
    MScriptDescription::Parse(QStringLiteral("({ Info: { Title: 'new' } })"), engine, record);
    EXPECT_EQ(record.title, QStringLiteral("new"));
}

} // namespace
