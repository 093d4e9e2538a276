#include <QScriptEngine>

#include "DeviceFixture.h"
#include "ScriptWorld.h"

namespace {

/// Timers, changes and events as the bridge hands them to the device.
class Timers : public DeviceFixture {
protected:
    QScriptValue Function(const char* name) {
        return device->GetWorld().GetSet().global.property(QString::fromLatin1(name));
    }
};

const char* const kCounter = "({ n: 0, Tick: function() { this.n++ }, Get: function() { return this.n },"
                             "   Boom: function() { throw new Error('in timer') } })";

TEST_F(Timers, ATimeoutFiresOnceAndAnIntervalUntilItIsCleared) {
    GivenScript(kCounter);
    int interval = 0;
    OnScriptThread([&] { EXPECT_GT(device->SlotSetTimeout(Function("Tick"), 1), 0); });
    for (int tries = 0; tries < 1000 && Call("Get") != "1"; ++tries) {
    }
    EXPECT_EQ(Call("Get"), "1");
    OnScriptThread([&] { interval = device->SlotSetInterval(Function("Tick"), 1); });
    for (int tries = 0; tries < 10000 && std::stoi(Call("Get")) < 5; ++tries) {
    }
    OnScriptThread([&] { device->SlotClearInterval(interval); });
    const std::string after = Call("Get");
    EXPECT_GE(std::stoi(after), 5);
    EXPECT_EQ(Call("Get"), after);
}

TEST_F(Timers, AValueThatIsNoFunctionGivesMinusOneAndNoTimer) {
    GivenScript(kCounter);
    OnScriptThread([&] {
        EXPECT_EQ(device->SlotSetInterval(QScriptValue(5), 1), -1);
        EXPECT_EQ(device->SlotSetTimeout(QScriptValue(QStringLiteral("text")), 1), -1);
        EXPECT_EQ(device->SlotSetTimeout(QScriptValue(), 1), -1);
    });
}

TEST_F(Timers, ClearingTheOtherKindsIdOrAnUnknownOneDoesNothing) {
    GivenScript(kCounter);
    OnScriptThread([&] {
        const int timeout = device->SlotSetTimeout(Function("Tick"), 1);
        device->SlotClearInterval(timeout);
        device->SlotClearTimeout(timeout + 1000);
        device->SlotClearTimeout(-1);
    });
    for (int tries = 0; tries < 1000 && Call("Get") != "1"; ++tries) {
    }
    EXPECT_EQ(Call("Get"), "1");
}

TEST_F(Timers, AnExceptionInATimerIsReportedAndSignalled) {
    GivenScript(kCounter);
    std::atomic<int> signalled{0};
    QObject::connect(
        device, &MCalverinScript_Device::SignalScriptError, device, [&](const QScriptValue&) { ++signalled; },
        Qt::DirectConnection);
    OnScriptThread([&] { device->SlotSetTimeout(Function("Boom"), 0); });
    ASSERT_TRUE(variables.error.WaitFor("Script: in timer"));
    Call("Get");
    EXPECT_EQ(signalled, 1);
}

/// A task that posts itself anew until `flood` is taken away. It may be posted once more after that, so it
/// owns what it reads.
void PostWhile(MCalverinScript_Device& device, const std::shared_ptr<const std::atomic<bool>>& flood) {
    if (*flood)
        device.PostTask([&device, flood] { PostWhile(device, flood); });
}

TEST_F(Timers, HaveTheirTurnWhileTasksComeFasterThanTheyAreRun) {
    plain::Value fired("fired");
    GivenScript("({ Tick: function() { inside() } })");
    TellWhenInside(fired);
    const auto flood = std::make_shared<std::atomic<bool>>(true);
    OnScriptThread([&] {
        device->SlotSetTimeout(Function("Tick"), 1);
        PostWhile(*device, flood);
    });
    EXPECT_TRUE(fired.WaitFor("yes"));
    *flood = false;
}

TEST_F(Timers, NoneIsLeftAfterStop) {
    GivenScript("({ _mStart: function() {}, Tick: function() { ticks++ } })");
    OnScriptThread([&] {
        device->GetEngine()->globalObject().setProperty(QStringLiteral("ticks"), 0);
        device->SlotSetInterval(Function("Tick"), 0);
    });
    device->Stop();
    int first = 0;
    int second = 0;
    const auto read = [&] { return device->GetEngine()->globalObject().property(QStringLiteral("ticks")).toInt32(); };
    OnScriptThread([&] { first = read(); });
    for (int i = 0; i < 50; ++i)
        OnScriptThread([&] { second = read(); });
    EXPECT_EQ(first, second);
}

TEST_F(Timers, ATimerThatFiresInsideALongFunctionWaitsForItsEnd) {
    GivenScript("({ inside: false, seen: 'no', Tick: function() { this.seen = this.inside ? 'inside' : 'after' },"
                "   Long: function() { this.inside = true; var end = Date.now() + 150; while (Date.now() < end) {}"
                "                      this.inside = false }, Get: function() { return this.seen } })");
    OnScriptThread([&] { device->SlotSetTimeout(Function("Tick"), 20); });
    Call("Long");
    for (int tries = 0; tries < 1000 && Call("Get") == "no"; ++tries) {
    }
    EXPECT_EQ(Call("Get"), "after");
}

TEST_F(Timers, AReplyWatchdogThatIsSetAnewDoesNotGoOffForTheOneThatCameDueMeanwhile) {
    GivenScript("({ alarms: 0, Message: function() { var me = this;"
                "     var old = QCalverin.SetTimeout(function() { me.alarms += 1 }, 1);"
                "     var end = Date.now() + 60; while (Date.now() < end) {}"
                "     QCalverin.ClearTimeout(old);"
                "     var fresh = QCalverin.SetTimeout(function() { me.alarms += 100 }, 3600000);"
                "     return fresh == old },"
                "   Alarms: function() { return this.alarms } })");
    for (int message = 0; message < 5; ++message) {
        EXPECT_EQ(Call("Message"), "true") << "the number comes back at once";
        EXPECT_EQ(Call("Alarms"), "0");
    }
}

TEST_F(Timers, ADelayIsAWholeNumberOf32BitsAndANegativeOneStartsNothing) {
    GivenScript("({ n: 0, Start: function(ms) { var me = this;"
                "     return QCalverin.SetInterval(function() { ++me.n }, Number(ms)) },"
                "   Once: function(ms) { var me = this;"
                "     return QCalverin.SetTimeout(function() { me.n += 1000 }, Number(ms)) },"
                "   Get: function() { return this.n } })");
    const std::string thirtyDays = std::to_string(30LL * 24 * 3600 * 1000);
    for (const std::string& ms : {std::string("-1"), thirtyDays, std::string("2147483648"), std::string("-5000")}) {
        EXPECT_EQ(Call("Start", {ms}), "0") << ms;
        EXPECT_EQ(Call("Once", {ms}), "0") << ms;
    }
    EXPECT_NE(Call("Start", {"2147483647"}), "0") << "24.8 days";
    EXPECT_EQ(Call("Get"), "0");
    EXPECT_NE(Call("Once", {"4294967297"}), "0") << "one millisecond beyond the 32 bits";
    for (int tries = 0; tries < 10000 && Call("Get") != "1000"; ++tries) {
    }
    EXPECT_EQ(Call("Get"), "1000");
}

TEST_F(Timers, AChangeReachesTheCallbackWithObjectAndValue) {
    GivenScript("({ got: '', OnChange: function() { this.got += Array.prototype.join.call(arguments, '=') + ';' },"
                "   Get: function() { return this.got } })");
    device->PostPropertyChange("early", "p", "dropped", false);
    OnScriptThread([&] {
        EXPECT_EQ(device->SlotSetPropertyChangeCallback(QScriptValue(5)), KXP_NOT_IMPLEMENTED);
        EXPECT_EQ(device->SlotSetPropertyChangeCallback(Function("OnChange")), KXP_OK);
        EXPECT_EQ(device->SlotSetPropertyChangeCallback(QScriptValue(5)), KXP_NOT_IMPLEMENTED);
    });
    device->PostPropertyChange("a", "p", "1", false);
    device->PostPropertyChange("b", "p", "2", true);
    device->PostPropertyChange(nullptr, "p", "3", false);
    device->PostPropertyChange("c", nullptr, "3", false);
    device->PostPropertyChange("c", "p", nullptr, false);
    EXPECT_EQ(Call("Get"), "a=1;b=2;");
}

TEST_F(Timers, ChangesThatAHungScriptDoesNotTakeAreBounded) {
    GivenScript("({ n: 0, last: '', OnChange: function(o, value) { ++this.n; this.last = value },"
                "   Get: function() { return this.n + ':' + this.last } })");
    OnScriptThread([&] { device->SlotSetPropertyChangeCallback(Function("OnChange")); });
    constexpr int kMostChanges = 65536;
    OnScriptThread([&] { // the script thread takes nothing meanwhile
        for (int i = 1; i <= kMostChanges + 100; ++i)
            device->PostPropertyChange("a", "p", std::to_string(i).c_str(), false);
    });
    EXPECT_EQ(Call("Get"), "65536:65536");
    device->PostPropertyChange("a", "p", "again", false);
    EXPECT_EQ(Call("Get"), "65537:again") << "and what comes when it has caught up is heard again";
}

TEST_F(Timers, AnAsynchronousResultReachesItsFunctionOnce) {
    GivenScript("({ got: [], Done: function() { this.got.push(arguments.length + ':' + arguments[0]) },"
                "   Get: function() { return this.got.join(';') } })");
    MyAsyncDeviceExecContext* withText = nullptr;
    MyAsyncDeviceExecContext* without = nullptr;
    OnScriptThread([&] {
        EXPECT_EQ(device->MakeAsyncContext(QScriptValue(5)), nullptr);
        withText = device->MakeAsyncContext(Function("Done"));
        without = device->MakeAsyncContext(Function("Done"));
    });
    withText->AddRef();
    without->AddRef();
    withText->SetResultText("answer");
    std::thread([&] {
        withText->End();
        without->End();
    }).join();
    for (int tries = 0; tries < 1000 && Call("Get").find(';') == std::string::npos; ++tries) {
    }
    EXPECT_EQ(Call("Get"), "1:answer;0:undefined");
    withText->End();
    without->End();
}

} // namespace
