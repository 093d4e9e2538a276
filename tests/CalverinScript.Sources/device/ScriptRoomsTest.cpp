#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QScriptEngine>
#include <QTimerEvent>

#include "Deadline.h"
#include "DeviceTexts.h"
#include "FakeScriptDevice.h"
#include "HostServices.h"
#include "HostValues.h"
#include "IProgramOwner.h"
#include "MScriptMngRemote.h"
#include "PlainHost.h"
#include "ScriptEntrance.h"
#include "ScriptHandlers.h"
#include "ScriptProgram.h"
#include "ScriptWorld.h"
#include "StoredSetup.h"

namespace {

/// The rooms of one script without a device: their script thread is the test's, and their host has variables alone.
class ScriptRooms : public testing::Test, public IProgramOwner {
protected:
    /// Has the timers' events, as a device has them.
    struct Home : public QObject {
        explicit Home(ScriptRooms& rooms)
            : m_rooms(rooms) {}
        void timerEvent(QTimerEvent* fired) override { m_rooms.handlers.OnTimer(fired->timerId()); }
        ScriptRooms& m_rooms;
    };

    void SetUp() override {
        values.SetVariables(&variables);
        values.BindDefaults(true);
    }
    void TearDown() override {
        handlers.ClearAll();
        entrance.LeaveThread();
    }

    // IProgramOwner
    void ReportError(const QString& text, bool /*stopMode*/) override { errors.push_back(text.toStdString()); }
    void ReportLine(int /*line*/) override {}
    void ReportScriptFile(const QString& /*fileName*/) override {}
    void ReportScriptText(const QString& text) override { shownText = text.toStdString(); }
    void ReportException(const QScriptValue& exception) override {
        exceptions.push_back(exception.toString().toStdString());
    }
    void ReportLeftBehind(const QScriptValue& /*exception*/) override { ++leftBehind; }
    bool EvaluateProgram(const QString& text) override { return program.Evaluate(text); }
    void StopProgram() override { program.CallStop(); }
    void ReportStopped(const QStringList& /*lines*/) override {}
    void ShowDebugger() override {}

    bool Load(const char* text) {
        const ScriptEntrance::Entry entry(entrance);
        return program.LoadText(QLatin1String(text));
    }
    bool CallFunction(const char* name) {
        const ScriptEntrance::Entry entry(entrance);
        return program.CallFunction(name, nullptr, nullptr);
    }
    QScriptValue Function(const char* name) { return world.GetSet().global.property(QLatin1String(name)); }
    /// What the script has noted in its `log`.
    std::string Noted() { return Function("log").toString().toStdString(); }

    std::vector<std::string> errors;
    std::vector<std::string> exceptions;
    int leftBehind = 0;
    std::string shownText;

    Home home{*this};
    std::recursive_mutex lock;
    std::atomic<bool> ending{false};
    plain::Variables variables;
    FakeScriptDevice device;
    const HostServices services{};
    HostValues values{ending};
    StoredSetup setup;
    ScriptEntrance entrance{lock, ending, [this] { handlers.FireDeferred(); }, [] {}, &home};
    ScriptWorld world{ScriptWorld::Place{home, device, services, values, entrance, ending, *this}};
    ScriptHandlers handlers{home, world, entrance};
    ScriptProgram program{ScriptProgram::Parts{world, handlers, values, setup, services, *this}};
};

using WorldOfAScript = ScriptRooms;
using HandlersOfAScript = ScriptRooms;
using ProgramOfADevice = ScriptRooms;

TEST_F(WorldOfAScript, CallsAFunctionWithWhatTheScriptHasPublishedAsItsThis) {
    const ScriptEntrance::Entry entry(entrance);
    world.Evaluate(QStringLiteral("({ n: 7, Get: function(more) { return this.n + more } })"));
    EXPECT_EQ(world.Call(Function("Get"), {QScriptValue(1)}).toInt32(), 8);
    EXPECT_TRUE(exceptions.empty());
}

TEST_F(WorldOfAScript, ReportsAnExceptionAndKeepsItUntilSomebodyHasLookedAtIt) {
    const ScriptEntrance::Entry entry(entrance);
    world.Evaluate(QStringLiteral("({ Fail: function() { throw new Error('no') } })"));
    world.Call(Function("Fail"), {});
    EXPECT_EQ(exceptions, std::vector<std::string>{"Error: no"});
    EXPECT_TRUE(world.Engine().hasUncaughtException());
    world.CheckUncaught();
    world.CheckUncaught();
    EXPECT_EQ(leftBehind, 1);
    EXPECT_FALSE(world.Engine().hasUncaughtException());
}

TEST_F(WorldOfAScript, CallsNothingAnyMoreOnceTheDeviceIsEnding) {
    const ScriptEntrance::Entry entry(entrance);
    world.Evaluate(QStringLiteral("({ log: '', Note: function() { this.log += 'called' } })"));
    ending = true;
    EXPECT_FALSE(world.Call(Function("Note"), {}).isValid());
    EXPECT_EQ(Noted(), "");
}

TEST_F(WorldOfAScript, KnowsWhetherTheScriptHasCalledTheThreadThatAsks) {
    EXPECT_FALSE(world.IsCallersOwn());
    const ScriptEntrance::Entry entry(entrance);
    EXPECT_TRUE(world.IsCallersOwn());
    bool isOthers = true;
    std::thread([&] { isOthers = world.IsCallersOwn(); }).join();
    EXPECT_FALSE(isOthers);
}

TEST_F(HandlersOfAScript, LetATimerThatComesDueInsideTheScriptWaitUntilItIsLeft) {
    ASSERT_TRUE(Load("({ log: '', Tick: function() { this.log += 'tick;' } })"));
    const int id = handlers.StartTimer(ScriptTimers::Kind::Interval, Function("Tick"), 100000);
    {
        const ScriptEntrance::Entry entry(entrance);
        handlers.OnTimer(id);
        handlers.OnTimer(id);
        QCoreApplication::processEvents();
        EXPECT_EQ(Noted(), "");
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(Noted(), "tick;") << "once, however often it came due";
}

TEST_F(HandlersOfAScript, TellADelayThatStartsNothingInTheLog) {
    ASSERT_TRUE(Load("({ Tick: function() {} })"));
    EXPECT_EQ(handlers.StartTimer(ScriptTimers::Kind::TimeOut, Function("Tick"), -1), 0);
    EXPECT_EQ(handlers.StartTimer(ScriptTimers::Kind::TimeOut, QScriptValue(7), 10), -1);
}

TEST_F(HandlersOfAScript, CallTheLastFunctionForChangesAndNoneWhereThereIsNone) {
    ASSERT_TRUE(Load("({ log: '', A: function() { this.log += 'a;' },"
                     "   B: function(object, value) { this.log += object + '=' + value } })"));
    handlers.OnChange(QStringLiteral("early"), QStringLiteral("0"));
    handlers.SetOnChange(Function("A"));
    handlers.SetOnChange(Function("B"));
    handlers.OnChange(QStringLiteral("lamp"), QStringLiteral("50"));
    EXPECT_EQ(Noted(), "lamp=50");
    handlers.ClearAll();
    handlers.OnChange(QStringLiteral("late"), QStringLiteral("0"));
    EXPECT_EQ(Noted(), "lamp=50");
}

TEST_F(HandlersOfAScript, CallTheFunctionOfAnAnswerOnce) {
    ASSERT_TRUE(Load("({ log: '', Answer: function(text) { this.log += text + ';' } })"));
    EXPECT_EQ(handlers.MakeRequest(QScriptValue(QStringLiteral("no function"))), nullptr);
    MyAsyncDeviceExecContext* request = handlers.MakeRequest(Function("Answer"));
    ASSERT_NE(request, nullptr);
    request->AddRef(); // what the host is given
    request->SetResultText("done");
    request->End();
    ASSERT_EQ(device.asyncResults, std::vector<MyAsyncDeviceExecContext*>{request});
    for (int times = 0; times < 2; ++times) {
        const ScriptEntrance::Entry entry(entrance);
        handlers.OnAnswer(request);
    }
    EXPECT_EQ(Noted(), "done;");
    EXPECT_TRUE(world.Remote().GetAsyncContexts()->IsEmpty());
    request->Release(); // the host's
}

TEST_F(ProgramOfADevice, TellsAStartFromAReloadAndAStopFromTheEndOfAReload) {
    const char* const text = "log = typeof log == 'undefined' ? '' : log;"
                             "({ _mStart: function(again) { log += 'start ' + again + ';' },"
                             "   _mStop: function(again) { log += 'stop ' + again + ';' } })";
    const auto noted = [this] { return world.Engine().globalObject().property(QStringLiteral("log")).toString(); };
    program.BeginStart();
    ASSERT_TRUE(Load(text));
    EXPECT_TRUE(program.HasStopFunction());
    ASSERT_TRUE(Load(text));
    EXPECT_EQ(noted(), QStringLiteral("start false;stop true;start true;"));
    program.BeginStop();
    {
        const ScriptEntrance::Entry entry(entrance);
        EXPECT_TRUE(program.CallStop());
    }
    EXPECT_EQ(noted(), QStringLiteral("start false;stop true;start true;stop false;"));
}

TEST_F(ProgramOfADevice, ShowsItsTextAndItsFunctions) {
    ASSERT_TRUE(Load("({ Play: function() {}, Rest: function() {} })"));
    EXPECT_EQ(shownText, "({ Play: function() {}, Rest: function() {} })");
    EXPECT_EQ(variables.functions.Text(), "Play\nRest\n");
    EXPECT_TRUE(program.HasFunction("Play"));
    EXPECT_FALSE(program.HasFunction("play"));
    EXPECT_FALSE(program.HasFunction(nullptr));
}

TEST_F(ProgramOfADevice, ReportsWhatIsNotThereToCall) {
    ASSERT_TRUE(Load("({ n: 1 })"));
    errors.clear();
    EXPECT_FALSE(CallFunction(nullptr));
    EXPECT_FALSE(CallFunction("Gone"));
    EXPECT_EQ(errors, (std::vector<std::string>{DeviceText::kNoFunctionName,
                                                NoSuchFunction(QStringLiteral("Gone")).toStdString()}));
}

TEST_F(ProgramOfADevice, GivesTheSettingsThatTheScriptHasBeforeItsStart) {
    const auto setting = [](const char* name, const char* type, const char* value) {
        MScriptSetting made;
        made.name = QLatin1String(name);
        made.type = QLatin1String(type);
        made.value = QLatin1String(value);
        return made;
    };
    setup.SetSettings({setting("port", "IntegerData", "5000"), setting("host", "StringData", "desk"),
                       setting("unknown", "IntegerData", "1"), setting("kept", "PrivateData", "1")});
    ASSERT_TRUE(Load("({ log: '', Setup: { port: 1, host: '', kept: 2 }, _mStart: function() {"
                     "   this.log = typeof this.Setup.port + this.Setup.port + this.Setup.host + this.Setup.kept"
                     "     + this.Setup.unknown } })"));
    EXPECT_EQ(Noted(), "number5000desk2undefined");
}

TEST_F(ProgramOfADevice, LeavesAStopOpenThatItsOwnScriptHasBroughtAbout) {
    ASSERT_TRUE(Load("({})"));
    EXPECT_TRUE(program.EndStop()) << "a stop from elsewhere goes on at once";
    EXPECT_FALSE(program.IsStopOpen());
    {
        const ScriptEntrance::Entry entry(entrance);
        EXPECT_FALSE(program.EndStop());
    }
    EXPECT_TRUE(program.IsStopOpen());
    EXPECT_TRUE(program.WantsStop()) << "the tick may complete it when the script has been left";
    int ended = 0;
    EXPECT_TRUE(program.FinishStop([&] { ++ended; }));
    EXPECT_FALSE(program.FinishStop([&] { ++ended; }));
    EXPECT_EQ(ended, 1);
    EXPECT_FALSE(program.IsStopOpen());
    EXPECT_FALSE(program.WantsStop());
}

/// The command that the tick waits for may start the device.
TEST_F(ProgramOfADevice, CompletesAnOpenStopOnceWhileACommandThatIsWaitedForTriesAsWell) {
    ASSERT_TRUE(Load("({})"));
    {
        const ScriptEntrance::Entry entry(entrance);
        ASSERT_FALSE(program.EndStop());
    }
    bool hasFinishedInside = true;
    EXPECT_TRUE(program.FinishStop([&] {
        std::thread command([&] { hasFinishedInside = program.FinishStop([] {}); });
        command.join();
        EXPECT_TRUE(program.IsStopOpen());
    }));
    EXPECT_FALSE(hasFinishedInside);
    EXPECT_FALSE(program.IsStopOpen());
}

} // namespace
