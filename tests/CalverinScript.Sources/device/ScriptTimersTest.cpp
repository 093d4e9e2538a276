#include "ScriptTimers.h"

#include <gtest/gtest.h>

#include <QObject>
#include <QScriptEngine>

namespace {

using Kind = ScriptTimers::Kind;

class TimersOfAScript : public testing::Test {
protected:
    QScriptValue Function(const char* body) {
        return engine.evaluate(QStringLiteral("(function() { return '%1' })").arg(QLatin1String(body)));
    }
    /// What the timer that fires under a number would call.
    std::string Fired(int id) { return timers.Take(id).call().toString().toStdString(); }

    QScriptEngine engine;
    QObject owner;
    ScriptTimers timers{owner};
};

TEST_F(TimersOfAScript, GiveMinusOneForAValueThatIsNoFunctionAndZeroForANegativeDelay) {
    EXPECT_EQ(timers.Start(Kind::Interval, QScriptValue(5), 10), -1);
    EXPECT_EQ(timers.Start(Kind::TimeOut, QScriptValue(5), -10), -1);
    EXPECT_EQ(timers.Start(Kind::Interval, Function("a"), -1), 0);
    EXPECT_EQ(timers.Start(Kind::TimeOut, Function("a"), -2147483647 - 1), 0);
    EXPECT_GT(timers.Start(Kind::TimeOut, Function("a"), 2147483647), 0);
    EXPECT_FALSE(timers.Take(0).isValid());
}

TEST_F(TimersOfAScript, AnIntervalStaysAndATimeOutIsOverWhenItFires) {
    const int interval = timers.Start(Kind::Interval, Function("again"), 10000);
    const int timeOut = timers.Start(Kind::TimeOut, Function("once"), 10000);
    EXPECT_EQ(Fired(interval), "again");
    EXPECT_EQ(Fired(interval), "again");
    EXPECT_EQ(Fired(timeOut), "once");
    EXPECT_FALSE(timers.Take(timeOut).isValid());
}

TEST_F(TimersOfAScript, AFiringThatIsDueGoesWithItsTimerAndNeverReachesTheNextOfItsNumber) {
    for (const Kind kind : {Kind::Interval, Kind::TimeOut}) {
        const int first = timers.Start(kind, Function("first"), 10000);
        timers.Defer(first);
        timers.Clear(kind, first);
        const int second = timers.Start(kind, Function("second"), 10000);
        EXPECT_EQ(second, first) << "Qt gives the number again";
        EXPECT_FALSE(timers.HasDeferred());
        EXPECT_FALSE(timers.TakeDeferred().has_value());
        timers.ClearAll();
    }
}

TEST_F(TimersOfAScript, ATimeOutThatFiresLosesWhatWasDueUnderItsNumberToo) {
    const int first = timers.Start(Kind::TimeOut, Function("first"), 10000);
    timers.Defer(first);
    EXPECT_EQ(Fired(first), "first");
    EXPECT_FALSE(timers.HasDeferred());
}

TEST_F(TimersOfAScript, ThatWaitedAreTakenInTheirOrderAndOnce) {
    const int a = timers.Start(Kind::Interval, Function("a"), 10000);
    const int b = timers.Start(Kind::TimeOut, Function("b"), 10000);
    for (const int id : {b, a, b})
        timers.Defer(id);
    EXPECT_EQ(timers.TakeDeferred(), b);
    EXPECT_EQ(timers.TakeDeferred(), a);
    EXPECT_EQ(timers.TakeDeferred(), std::nullopt);
}

TEST_F(TimersOfAScript, ClearingTheOtherKindsNumberKeepsTheTimerAndWhatIsDue) {
    const int timeOut = timers.Start(Kind::TimeOut, Function("kept"), 10000);
    timers.Defer(timeOut);
    timers.Clear(Kind::Interval, timeOut);
    EXPECT_EQ(timers.TakeDeferred(), timeOut);
    EXPECT_EQ(Fired(timeOut), "kept");
}

TEST_F(TimersOfAScript, NoneIsLeftWhenAllAreCleared) {
    const int interval = timers.Start(Kind::Interval, Function("a"), 10000);
    const int timeOut = timers.Start(Kind::TimeOut, Function("b"), 10000);
    timers.Defer(interval);
    timers.ClearAll();
    EXPECT_FALSE(timers.HasDeferred());
    EXPECT_FALSE(timers.Take(interval).isValid());
    EXPECT_FALSE(timers.Take(timeOut).isValid());
}

} // namespace
