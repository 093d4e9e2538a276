#include <chrono>
#include <fstream>
#include <future>

#include <unistd.h>

#include <QEvent>
#include <QScriptEngine>

#include "EventFixture.h"
#include "EventRecords.h"
#include "MScriptMngRemote.h"

namespace {

using ScriptEvents = EventFixture;

TEST_F(ScriptEvents, BringTheValuesAndThenTheObjectToTheListener) {
    GivenSource("s.on('message', function (b, from, object) {"
                "  hear([b.toString('hex'), from.port, from.address, object === s, arguments.length].join()) }); ({})");
    Source().Raise("message", {QByteArray("\0A", 2), QVariant::fromValue(IPInfo(5000, QStringLiteral("127.0.0.1")))});
    EXPECT_EQ(Heard(1), "0041,5000,127.0.0.1,true,3");
}

TEST_F(ScriptEvents, BringTheObjectAloneWhenThereAreNoValues) {
    GivenSource("s.on('connect', function (object) { hear(object === s) });"
                "s.on('open', function () { hear('without parameters ' + arguments.length) }); ({})");
    Source().Raise("connect");
    Source().Raise("open");
    EXPECT_EQ(Heard(2), "true without parameters 1");
}

TEST_F(ScriptEvents, AreCalledWithThePublishedObjectAsThis) {
    GivenSource("var driver = { name: 'driver' }; s.on('data', function () { hear(this.name) }); driver");
    Source().Raise("data");
    EXPECT_EQ(Heard(1), "driver");
}

TEST_F(ScriptEvents, ReachListenersOfEveryKindOfObject) {
    for (int kind = 1; kind <= 10; ++kind) {
        GivenSource("s.on('data', function (o) { hear(" + std::to_string(kind) + ") }); ({})",
                    static_cast<ScriptObjectType>(kind));
        Source().Raise("data");
        Heard(1);
        EXPECT_EQ(HeardAfterAll(), std::to_string(kind));
        ForgetHeard();
    }
}

TEST_F(ScriptEvents, ReachNoListenerOfAnotherName) {
    GivenSource("s.on('data', function () { hear('data') }); s.on('Close', function () { hear('Close') });"
                "s.on('listening', function () { hear('listening') }); ({})");
    Source().Raise("close");
    Source().Raise("Close");
    Source().Raise("error");
    Source().Raise("nonsense");
    Source().Raise("data");
    EXPECT_EQ(HeardAfterAll(), "data");
}

TEST_F(ScriptEvents, KeepTheListenerWhenSomethingElseIsGiven) {
    GivenSource("s.on('data', function () { hear('first') }); s.on('data', 5); s.on('data', null);"
                "s.on('data', 'f'); s.on('data', {}); ({})");
    Source().Raise("data");
    EXPECT_EQ(HeardAfterAll(), "first");
}

TEST_F(ScriptEvents, GoToTheLastListenerAlone) {
    GivenSource("s.on('data', function () { hear('first') }); s.on('data', function () { hear('second') }); ({})");
    Source().Raise("data");
    EXPECT_EQ(HeardAfterAll(), "second");
}

TEST_F(ScriptEvents, GoOnForAnObjectThatTheScriptHasDropped) {
    GivenSource("s.on('data', function () { hear('still') }); s = null; gc(); gc(); ({})");
    Source().Raise("data");
    EXPECT_EQ(Heard(1), "still");
    OnScriptThread([this] { device->GetEngine()->collectGarbage(); });
    Source().Raise("data");
    EXPECT_EQ(Heard(2), "still still");
}

TEST_F(ScriptEvents, ComeInTheOrderOfEachThread) {
    GivenSource("var last = {}, wrong = 0, count = 0;"
                "s.on('data', function (b) { var n = b.toString().split(':'); var number = Number(n[1]);"
                "  if (number !== (n[0] in last ? last[n[0]] + 1 : 0)) ++wrong; last[n[0]] = number;"
                "  if (++count === 4000) hear('wrong: ' + wrong) }); ({})");
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([this, t] {
            for (int i = 0; i < 1000; ++i)
                Source().Raise("data", {QByteArray::number(t) + ':' + QByteArray::number(i)});
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(Heard(1), "wrong: 0");
}

/// Counts what wakes the script thread for the device.
class WakeUps : public QObject {
public:
    std::atomic<int> count{0};

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() >= QEvent::User)
            ++count;
        return false;
    }
};

TEST_F(ScriptEvents, ShareOneWakeUpWhenTheyComeInABurst) {
    GivenSource("var count = 0; s.on('data', function () { if (++count === 1000) hear('all') }); ({})");
    WakeUps wakeUps;
    std::promise<void> raised;
    std::promise<void> inside;
    std::chrono::steady_clock::time_point begin;
    wakeUps.moveToThread(device->thread());
    OnScriptThread([&] { device->GetEntrance().installEventFilter(&wakeUps); });
    ASSERT_TRUE(device->PostTask([&] {
        inside.set_value();
        raised.get_future().wait();
        wakeUps.count = 0;
        begin = std::chrono::steady_clock::now();
    }));
    inside.get_future().wait();
    for (int i = 0; i < 1000; ++i)
        Source().Raise("data", {true});
    raised.set_value();
    EXPECT_EQ(Heard(1), "all");
    // The thread looks at its timers every 5 ms, and wakes itself for that.
    const auto turns = (std::chrono::steady_clock::now() - begin) / std::chrono::milliseconds(5);
    EXPECT_LE(wakeUps.count, 1 + turns);
    OnScriptThread([&] {
        device->GetEntrance().removeEventFilter(&wakeUps);
        wakeUps.moveToThread(nullptr);
    });
}

TEST_F(ScriptEvents, AreDroppedWhenTheScriptIsStoppedBeforeTheyArrive) {
    GivenSource("s.on('data', function () { hear('heard') }); ({})");
    ASSERT_TRUE(device->PostTask([&] {
        for (int i = 0; i < 50; ++i)
            Source().Raise("data");
        device->GetRemote()->ReleaseScriptObjects();
    }));
    EXPECT_EQ(HeardAfterAll(), "");
    EXPECT_EQ(EventSource::Alive(), 0);
}

TEST_F(ScriptEvents, OfTheLastRunNeverReachObjectsOfTheNext) {
    for (int round = 0; round < 10; ++round) {
        ForgetHeard();
        GivenSource("var first = null; s.on('data', function (b) {"
                    "  if (first === null) { first = Number(b); hear(first) } }); ({})",
                    ScriptObjectType::TcpClient);
        Source().RaiseOnItsThread();
        EXPECT_EQ(Heard(1), "0") << "the first that a run hears is its own first";
    }
    device->Stop();
    HeardAfterAll();
    EXPECT_EQ(EventSource::Alive(), 0);
}

TEST_F(ScriptEvents, EndWithTheDeviceThatIsStoppedWhileTheyComeIn) {
    for (int round = 0; round < 10; ++round) {
        GivenSource("s.on('data', function (b) { b.left(2) }); ({})");
        Source().RaiseOnItsThread();
        if (round % 2 == 0)
            while (Source().Raised() < 1000)
                std::this_thread::yield();
        device->Stop();
        HeardAfterAll();
        EXPECT_EQ(EventSource::Alive(), 0);
    }
}

TEST_F(ScriptEvents, EndWithTheDeviceThatIsReleasedWhileTheyComeIn) {
    for (int round = 0; round < 5; ++round) {
        GivenSource("s.on('data', function (b) { b.left(2) }); ({})");
        Source().RaiseOnItsThread();
        device->Release();
        MakeDevice();
        EXPECT_EQ(EventSource::Alive(), 0);
        DeviceFixture::TearDown();
        SetUp();
    }
}

TEST_F(ScriptEvents, OfAResourceComeToTheNewRunAloneWhichTakesItWithAnEmptyTable) {
    EventSource port(device->GetRemote(), ScriptObjectType::Serial);
    resource = &port;
    GivenScript("take().on('data', function () { hear('old run') }); ({})");
    port.Raise("data");
    EXPECT_EQ(Heard(1), "old run");
    WhenTextIsLoaded("take(); ({})");
    port.Raise("data");
    EXPECT_EQ(HeardAfterAll(), "old run");
    WhenTextIsLoaded("take().on('data', function (p) { hear('new run') }); ({})");
    port.Raise("data");
    EXPECT_EQ(HeardAfterAll(), "old run new run");
    WhenTextIsLoaded("({})");
    port.Raise("data");
    EXPECT_EQ(HeardAfterAll(), "old run new run");
    EndDevice();
}

TEST_F(ScriptEvents, GoOnAfterAListenerThrew) {
    GivenSource("s.on('data', function (b) { hear(b.toString()); throw new Error('bad ' + b) }); ({})");
    Source().Raise("data", {QByteArray("1")});
    Source().Raise("data", {QByteArray("2")});
    EXPECT_EQ(Heard(2), "1 2");
    HeardAfterAll();
    EXPECT_EQ(Error(), "Script: bad 2");
}

TEST_F(ScriptEvents, KeepTheRunningListenerAliveWhileItReplacesItself) {
    GivenSource("s.on('data', function first(b, me) { var mine = 'kept';"
                "  me.on('data', function () { hear('second') }); gc(); gc(); hear(mine) }); ({})");
    Source().Raise("data", {QByteArray("x")});
    Source().Raise("data", {QByteArray("x")});
    EXPECT_EQ(Heard(2), "kept second");
}

TEST_F(ScriptEvents, MayStopTimersAndCallTheHost) {
    GivenSource("var ticks = 0, id = QCalverin.SetInterval(function () { ++ticks }, 1);"
                "s.on('data', function () { QCalverin.ClearInterval(id);"
                "  hear(QCalverin.SetValue('none', '1') + ' ' + QCalverin.GetValueAsString('none') + "
                "       QCalverin.Perform('none', 'none') + QCalverin.ClearTimeout(99)) }); ({})");
    Source().Raise("data");
    EXPECT_EQ(Heard(1).substr(0, 2), "19");
}

TEST_F(ScriptEvents, MayMakeMoreObjects) {
    GivenSource("s.on('data', function () { var t = source(1); t.on('close', function (value, o) {"
                "  hear((o === t) + ' ' + (o === s) + ' ' + value) }); hear('made') }); ({})");
    Source().Raise("data");
    EXPECT_EQ(Heard(1), "made");
    Source().Raise("close", {false});
    EXPECT_EQ(Heard(2), "made true false false");
}

TEST_F(ScriptEvents, NeverRunInsideAnotherListener) {
    GivenSource("var depth = 0; s.on('data', function () { if (++depth > 1) hear('nested');"
                "  for (var i = 0; i < 300000; ++i) {} --depth; hear('done') }); ({})");
    for (int i = 0; i < 5; ++i)
        Source().Raise("data");
    EXPECT_EQ(Heard(5), "done done done done done");
}

TEST_F(ScriptEvents, AreGoneWithAnObjectThatTheNextRunStillKnows) {
    GivenSource("Buffer.kept = s; ({})");
    WhenTextIsLoaded("({ Use: function () { try { return typeof Buffer.kept.on } catch (e) { return 'gone' } } })");
    EXPECT_EQ(Call("Use"), "gone");
    EXPECT_EQ(EventSource::Alive(), 0);
}

long ResidentKilobytes() {
    std::ifstream statm("/proc/self/statm");
    long total = 0;
    long resident = 0;
    statm >> total >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

TEST_F(ScriptEvents, OfAMillionLeaveNoMemoryBehind) {
    constexpr int kBurst = 1000;
    constexpr int kWarmUp = 10;
    // Sanitizers keep freed memory and take their time; a part tells as much there.
    constexpr int kBursts = MEMORY_ALLOWANCE_KB > 10000 ? 50 : 1000;
    GivenSource("var count = 0; s.on('data', function (b, ok) { if (++count % 1000 === 0) hear(b.length) }); ({})");
    const QByteArray block(200, 'x');
    const auto burst = [&] {
        ForgetHeard();
        for (int i = 0; i < kBurst; ++i)
            Source().Raise("data", {block, true});
        ASSERT_EQ(Heard(1), "200");
    };
    for (int i = 0; i < kWarmUp; ++i)
        burst();
    const long before = ResidentKilobytes();
    for (int i = 0; i < kBursts; ++i)
        burst();
    EXPECT_LT(ResidentKilobytes() - before, MEMORY_ALLOWANCE_KB);
}

} // namespace
