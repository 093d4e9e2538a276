#include "DeviceFixture.h"

#include <algorithm>
#include <thread>

#include <QElapsedTimer>
#include <QScriptEngine>

#include "DeviceTexts.h"
#include "ModuleShared.h"
#include "ScriptWorld.h"

namespace {

class StartStop : public DeviceFixture {};

const char* const kRecorder = "({ log: '', _mStart: function(again) { this.log += 'start ' + again + ';' },"
                              "   _mStop: function(again) { this.log += 'stop ' + again + ';' },"
                              "   Get: function() { return this.log } })";

TEST_F(StartStop, RunsTheSetupsScriptAndTellsThatItIsAStart) {
    GivenScript(kRecorder);
    EXPECT_EQ(device->IsRunning(), KXP_OK);
    EXPECT_EQ(Call("Get"), "start false;");
}

TEST_F(StartStop, PrefersTheSetupsFileToItsText) {
    const std::string path = WriteFile("file.js", "({ Which: function() { return 'file' } })");
    device->GetStoredSetup().SetScript(QString::fromStdString(path),
                                       QStringLiteral("({ Which: function() { return 'text' } })"));
    device->Start();
    EXPECT_EQ(Call("Which"), "file");
}

TEST_F(StartStop, ALoadInARunningDeviceTellsThatItIsAReload) {
    GivenScript("");
    WhenFileIsLoaded(WriteFile("a.js", kRecorder));
    EXPECT_EQ(Call("Get"), "start true;");
}

TEST_F(StartStop, AReloadEndsTheOldScriptWithAReloadMark) {
    GivenScript("var log = ''; ({ _mStop: function(again) { left = 'stop ' + again } })");
    WhenTextIsLoaded("({ Get: function() { return left } })");
    EXPECT_EQ(Call("Get"), "stop true");
}

TEST_F(StartStop, StopTellsThatItIsAStopAndKeepsTheEnginesState) {
    GivenScript("left = ''; ({ _mStop: function(again) { left += 'stop ' + again + ';' } })");
    device->Stop();
    EXPECT_EQ(device->IsRunning(), KXP_NO);
    QString kept;
    OnScriptThread([&] { kept = device->GetEngine()->globalObject().property(QStringLiteral("left")).toString(); });
    EXPECT_EQ(kept, QStringLiteral("stop false;"));
}

TEST_F(StartStop, AStartAfterAStopEndsTheOldScriptOnceMoreAsAReloadDoesAndThatIsMeant) {
    GivenScript("left = ''; ({ _mStop: function(again) { left += 'stop ' + again + ';' } })");
    device->Stop();
    GivenScript("({ Get: function() { return left } })");
    EXPECT_EQ(Call("Get"), "stop false;stop true;");
}

TEST_F(StartStop, WhatTheRepeatedStopThrowsIsNoFailureSinceItsSocketsAreGone) {
    const char* const kSaysGoodbye = "var link = QCalverin.CreateSocket();"
                                     "({ _mStop: function() { link.end() }, F: function() { return 'ok' } })";
    GivenScript(kSaysGoodbye);
    device->Stop();
    EXPECT_EQ(Error(), "");
    GivenScript(kSaysGoodbye);
    EXPECT_EQ(Error(), "");
    EXPECT_EQ(Call("F"), "ok");
    WhenTextIsLoaded("({ _mStop: function() { throw new Error('at a reload') } })");
    WhenTextIsLoaded("({})");
    EXPECT_EQ(Error(), "Script: at a reload") << "of a script that has not been stopped it is one";
}

TEST_F(StartStop, AScriptThatFailsLeavesTheDeviceStarted) {
    GivenScript("throw new Error('at start')");
    EXPECT_EQ(device->IsRunning(), KXP_OK);
    EXPECT_EQ(Error(), "Script: Uncaught exception at line 1, Error: at start");
    WhenTextIsLoaded("({ F: function() { return 'ok' } })");
    EXPECT_EQ(Call("F"), "ok");
}

TEST_F(StartStop, AnExceptionIn_mStartIsReported) {
    GivenScript("({ _mStart: function() { throw new Error('in start') }, F: function() { return 1 } })");
    EXPECT_EQ(Error(), "Script: in start");
    EXPECT_EQ(Call("F"), "1");
}

/// A host that does something with the device from an observer that a script's write calls, on the script's own thread.
class ObservedScript : public DeviceFixture {
protected:
    void GivenScriptWhoseWriteMeans(const std::function<void()>& work) {
        observer = work;
        GivenScript("({ Write: function() { observe(); return 'written' }, Ask: function() { return 'answered' } })");
        OnScriptThread([&] {
            QScriptEngine* engine = device->GetEngine();
            engine->setProperty("observer", QVariant::fromValue(static_cast<void*>(&observer)));
            const auto observe = [](QScriptContext*, QScriptEngine* e) {
                (*static_cast<std::function<void()>*>(e->property("observer").value<void*>()))();
                return QScriptValue();
            };
            engine->globalObject().setProperty(QStringLiteral("observe"), engine->newFunction(observe));
        });
    }
    std::function<void()> observer;
};

TEST_F(ObservedScript, MayMakeTheHostStopTheDeviceWithoutWaitingForItself) {
    GivenScriptWhoseWriteMeans([this] { device->Stop(); });
    EXPECT_EQ(Call("Write"), "written");
    EXPECT_EQ(device->IsRunning(), KXP_NO);
    GivenScript("({ Ask: function() { return 'answered' } })");
    EXPECT_EQ(Call("Ask"), "answered") << "the start completes what the stop has left";
    EXPECT_TRUE(NothingIsPending()) << device->GetStackCount();
}

TEST_F(ObservedScript, MayMakeTheHostStopTheDeviceFromATimer) {
    GivenScriptWhoseWriteMeans([this] { device->Stop(); });
    OnScriptThread(
        [this] { device->SlotSetTimeout(device->GetWorld().GetSet().global.property(QStringLiteral("Write")), 0); });
    ASSERT_TRUE(Eventually([this] { return device->IsRunning() == KXP_NO; }));
    GivenScript("({ Ask: function() { return 'answered' } })");
    EXPECT_EQ(Call("Ask"), "answered");
}

TEST_F(ObservedScript, MayMakeTheHostStartTheDeviceAnew) {
    int times = 0;
    GivenScriptWhoseWriteMeans([&] {
        if (++times > 1)
            return;
        device->Stop();
        device->Start();
    });
    EXPECT_EQ(Call("Write"), "written");
    EXPECT_EQ(device->IsRunning(), KXP_OK);
    EXPECT_EQ(Call("Ask"), "answered") << "the stop that is completed late takes nothing of the new run along";
}

TEST_F(ObservedScript, ThatStopsTheDeviceIsFollowedByNoOtherCommand) {
    GivenScriptWhoseWriteMeans([this] { device->Stop(); });
    auto write = plain::Params::ForFunction("Write", {});
    auto ask = plain::Params::ForFunction("Ask", {});
    plain::Context first;
    plain::Context second;
    OnScriptThread([&] {
        ASSERT_EQ(Send(3, *write, &first), KXP_OK);
        ASSERT_EQ(Send(3, *ask, &second), KXP_OK);
    });
    EXPECT_TRUE(first.WaitForEnd());
    EXPECT_TRUE(second.WaitForEnd());
    EXPECT_EQ(write->At(1).Text(), "written");
    EXPECT_EQ(ask->At(1).Text(), "");
}

TEST_F(StartStop, AStartMayFollowAsSoonAsNothingRunsAndFindsTheStopOver) {
    GivenScript("var ran = 0; ({ Old: function() { ++ran }, Ran: function() { return ran },"
                "  _mStop: function() { var end = Date.now() + 5; while (Date.now() < end) {} } })");
    std::vector<std::unique_ptr<plain::Params>> old;
    for (int round = 0; round < 100; ++round) {
        for (int i = 0; i < 20; ++i)
            ASSERT_EQ(Send(3, *old.emplace_back(plain::Params::ForFunction("Old", {}))), KXP_OK);
        std::thread stopper([this] { device->Stop(); });
        while (device->IsRunning() == KXP_OK) {
        }
        device->Start();
        EXPECT_EQ(Call("Ran"), "0") << "commands of the old run ended with it";
        stopper.join(); // it waits for nothing of the new run
        EXPECT_EQ(device->IsRunning(), KXP_OK);
        EXPECT_EQ(Call("Ran"), "0");
    }
}

TEST_F(StartStop, StopWithoutAStopFunctionWaitsForNothing) {
    GivenScript("({})");
    EXPECT_FALSE(device->HasStopFunction());
    EXPECT_FALSE(device->ExecuteStopFunction());
    qint64 quickest = 25;
    for (int tries = 0; tries < 20; ++tries) {
        QElapsedTimer clock;
        clock.start();
        device->Stop();
        quickest = std::min(quickest, clock.elapsed());
        device->Start();
    }
    EXPECT_LT(quickest, 25);
}

TEST_F(StartStop, AStopFunctionThatTakesLongerThan25MsLetsStopGoOnAndEndsLater) {
    GivenScript("({ _mStop: function() { var end = Date.now() + 1000; while (Date.now() < end) {} done = 'ended' },"
                "   F: function() {} })");
    QElapsedTimer clock;
    clock.start();
    device->Stop();
    EXPECT_LT(clock.elapsed(), 1000);
    GivenScript("({ Get: function() { return done } })");
    EXPECT_EQ(Call("Get"), "ended");
}

TEST_F(StartStop, SettingsReachTheScriptBefore_mStartByTheirTypes) {
    const auto setting = [](const char* name, const char* type, const char* value) {
        MScriptSetting s;
        s.name = QString::fromLatin1(name);
        s.type = QString::fromLatin1(type);
        s.value = QString::fromLatin1(value);
        return s;
    };
    device->GetStoredSetup().SetSettings(
        {setting("i", "IntegerData", "42"), setting("e", "EnumData", "2"), setting("r", "RealData", "1.5"),
         setting("s", "StringData", "text"), setting("d", "DateData", "31/12/2020"),
         setting("t", "TimeData", "00:00:01/00"), setting("p", "PrivateData", "secret"),
         setting("gone", "StringData", "no member"), setting("bad", "IntegerData", "12abc")});
    GivenScript("({ Setup: { i: 0, e: 0, r: 0, s: '', d: 0, t: 0, p: 'own', bad: 7 }, seen: '',"
                "   _mStart: function() { var s = this.Setup; var out = [];"
                "     for (var k in s) out.push(k + '=' + typeof s[k] + ' ' + s[k]); this.seen = out.join(';') },"
                "   Get: function() { return this.seen } })");
    EXPECT_EQ(Call("Get"), "i=number 42;e=number 2;r=number 1.5;s=string text;d=string 31/12/2020;"
                           "t=string 00:00:01/00;p=string own;bad=number 0");
}

TEST_F(StartStop, AQueuedCommandsRequestIsEndedByStop) {
    GivenScript("({ F: function() {} })");
    plain::Params missing({"/no/such/file.js"});
    ASSERT_EQ(Send(0, missing), KXP_OK);
    ASSERT_TRUE(variables.error.WaitFor(DeviceText::kUnreadableFile));
    auto params = plain::Params::ForFunction("F", {});
    plain::Context context;
    ASSERT_EQ(Send(3, *params, &context), KXP_OK);
    device->Stop();
    EXPECT_EQ(context.Ended(), 1);
    EXPECT_EQ(device->GetStackCount(), 0);
}

TEST_F(StartStop, CommandsGivenWhileStoppedWaitForTheStart) {
    device->GetStoredSetup().SetScript(QString(), QStringLiteral("({ F: function() { return 1 } })"));
    device->Start();
    device->Stop();
    auto params = plain::Params::ForFunction("F", {});
    plain::Context context;
    ASSERT_EQ(Send(3, *params, &context), KXP_OK);
    EXPECT_EQ(context.Ended(), 0);
    device->Start();
    EXPECT_TRUE(context.WaitForEnd());
    EXPECT_EQ(params->At(1).Text(), "1");
}

TEST_F(StartStop, StartAndStopMayComeTwiceInARow) {
    GivenScript("({ F: function() { return 1 } })");
    device->Start();
    EXPECT_EQ(Call("F"), "1");
    device->Stop();
    device->Stop();
    EXPECT_EQ(device->IsRunning(), KXP_NO);
}

TEST_F(StartStop, WorksWithoutVariablesWithoutServicesAndWithoutAModule) {
    EndDevice();
    device = new MCalverinScript_Device(nullptr, nullptr, nullptr);
    EXPECT_STREQ(device->GetName(), "");
    EXPECT_EQ(device->GetDefinition(), nullptr);
    GivenScript("({ F: function() { return 'alone' } })");
    EXPECT_EQ(Call("F"), "alone");
}

TEST_F(StartStop, TheHostIsAskedForItsServicesInOrder) {
    const std::vector<std::string> expected = {"IManagerRemoteManager", "IManagerRemoteManager2", "IFolderManager",
                                               "IVariableManager",      "IObjectNameTools",       "IResourceProvider"};
    EXPECT_EQ(host.asked, expected);
}

TEST_F(StartStop, TheFirstDeviceMakesTheTickTimerAndTheLastEndsIt) {
    const ModuleShared* shared = ModuleShared::Get();
    ASSERT_NE(shared, nullptr);
    auto* second = new MCalverinScript_Device(&module, nullptr, "Second");
    EXPECT_EQ(ModuleShared::Get(), shared);
    device->Release();
    device = second;
    EXPECT_EQ(ModuleShared::Get(), shared);
    EXPECT_FALSE(ModuleShared::Get()->tickTimer.StopRequested());
    EndDevice();
    EXPECT_EQ(ModuleShared::Get(), nullptr);
}

} // namespace
