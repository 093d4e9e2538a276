#include <QPointer>
#include <QScriptEngine>
#include <QThread>

#include "MScriptMngRemote.h"
#include "MScriptThread.h"
#include "ResourceFixture.h"
#include "SetupDesk.h"

namespace {

class ResourceLife : public ResourceFixture {
protected:
    /// Has a setup with all resources and this script read, and starts the device when all resources are in that state.
    void GivenRunning(const std::string& script, std::uint32_t state = KXP_RESOURCE_CLOSED) {
        GivenAllResources();
        ASSERT_EQ(device->SetSetup(SetupText(SettingsOf(AllSettings()), script).c_str()), KXP_OK);
        for (auto* held : {&serial.state, &in.state, &out.state, &io.state})
            *held = state;
        device->Start();
        ASSERT_EQ(Error(), "");
    }
    void WhenItIsRestarted() {
        device->Stop();
        device->Start();
    }
    /// The object behind a value of the script.
    QObject* ObjectOf(const char* script) {
        QObject* object = nullptr;
        OnScriptThread([&] { object = device->GetEngine()->evaluate(QLatin1String(script)).toQObject(); });
        return object;
    }

    /// Takes the serial port into a global of the engine, where the test finds it too.
    const std::string kListening = "({ _mStart: function () { port = get('Serial', 3);"
                                   "  port.On('open', hearing('open')); port.On('close', hearing('close'));"
                                   "  port.On('data', hearing('data')); } })";
};

TEST_F(ResourceLife, APortThatIsOpenWhenItIsTakenTellsOpenWithinATick) {
    GivenRunning(kListening, KXP_RESOURCE_OPEN);
    EXPECT_EQ(Heard(1), "open");
}

TEST_F(ResourceLife, AStateThatTheHostTellsNobodyIsNoticedByTheTick) {
    GivenRunning(kListening);
    EXPECT_EQ(Heard(1), "close");
    serial.state = KXP_RESOURCE_OPEN;
    EXPECT_EQ(Heard(2), "close open");
}

TEST_F(ResourceLife, ARestartTellsTheStateAnewThoughItIsTheSame) {
    GivenRunning(kListening, KXP_RESOURCE_OPEN);
    EXPECT_EQ(Heard(1), "open");
    WhenItIsRestarted();
    EXPECT_EQ(Heard(2), "open open");
}

TEST_F(ResourceLife, TheTickLooksAtTakenResourcesOfARunningDeviceAlone) {
    GivenRunning("({})");
    device->OnTimer(0);
    EXPECT_EQ(serial.stateQuestions, 0u) << "it was not taken";
    Run("get('Serial', 3)");
    device->OnTimer(0);
    EXPECT_GE(serial.stateQuestions, 1u);
    EXPECT_EQ(in.stateQuestions, 0u);
    device->Stop();
    const std::uint32_t before = serial.stateQuestions;
    device->OnTimer(0);
    EXPECT_EQ(serial.stateQuestions, before);
}

TEST_F(ResourceLife, EachKindHasItsStateLookedAt) {
    GivenRunning("({ _mStart: function () {"
                 "  [['Serial', 3], ['DMXIn', 1], ['DMXOut', 2], ['DigitalIn', 4, 0], ['DigitalOut', 4, 0],"
                 "   ['AnalogIn', 4, 0], ['AnalogOut', 4, 0]].forEach(function (r) {"
                 "    get(r[0], r[1], r[2]).On('open', hearing('open')); }); } })",
                 KXP_RESOURCE_OPEN);
    EXPECT_EQ(Heard(7), "open open open open open open open");
}

TEST_F(ResourceLife, ARestartKeepsTheObjectAndEmptiesItsListeners) {
    GivenRunning(kListening);
    QObject* const object = ObjectOf("port");
    serial.calls.Take();
    device->Stop();
    EXPECT_EQ(serial.calls.Take(), "") << "the port stays as it is";
    device->GetStoredSetup().SetScript(QString(), QStringLiteral("port = get('Serial', 3); ({})"));
    device->Start();
    EXPECT_EQ(ObjectOf("port"), object);
    ForgetHeard();
    serial.Receive("x");
    EXPECT_EQ(HeardAfterAll(), "");
}

TEST_F(ResourceLife, APortThatTheNewRunDoesNotTakeIsNotHeard) {
    GivenRunning(kListening);
    Run("port.On('data', hearing('data'))");
    device->Stop();
    device->GetStoredSetup().SetScript(QString(), QStringLiteral("({})"));
    device->Start();
    ForgetHeard();
    serial.Receive("x");
    EXPECT_EQ(HeardAfterAll(), "");
}

TEST_F(ResourceLife, ABreakCharacterStaysOverARestartWhichIsMeant) {
    GivenRunning(kListening);
    Run("port.SetBreakTime(0); port.SetBreakCharacter(65)");
    WhenItIsRestarted();
    serial.calls.Take();
    Run("port.Write('A')");
    EXPECT_EQ(serial.calls.Take(), "SetBreak:1 SetBreak:0");
}

TEST_F(ResourceLife, AnEventThatWaitsWhenTheObjectsGoIsDropped) {
    GivenRunning(kListening);
    EXPECT_EQ(Heard(1), "close") << "what it begins with";
    ForgetHeard();
    OnScriptThread([&] {
        serial.Receive("x");
        device->GetRemote()->ReleaseScriptObjects();
    });
    EXPECT_EQ(HeardAfterAll(), "");
}

TEST_F(ResourceLife, AnEventThatWaitsWhenASetupIsReadReachesNeitherObject) {
    GivenRunning(kListening);
    EXPECT_EQ(Heard(1), "close");
    OnScriptThread([&] {
        serial.Receive("x");
        device->GetSetupDesk().ResolveResources(SettingsOf(AllSettings()));
        device->GetEngine()->evaluate(QStringLiteral("var next = get('Serial', 3); next.On('data', hearing('next'));"));
    });
    EXPECT_EQ(HeardAfterAll(), "close");
    serial.Receive("y");
    EXPECT_EQ(Heard(2), "close next:y");
}

TEST_F(ResourceLife, ASetupThatIsReadWhileItRunsLeavesTheScriptWithObjectsThatDoNothing) {
    GivenRunning(kListening);
    GivenSettings({{"Serial", R"({ "Type":"Serial", "ResourceID":3 })"}});
    serial.calls.Take();
    EXPECT_EQ(Run("port.Write('old'); typeof port.Open()"), "undefined");
    EXPECT_EQ(serial.calls.Take(), "");
    EXPECT_EQ(Run("get('Serial', 3) === port"), "false");
    Run("get('Serial', 3).Write('A')");
    EXPECT_EQ(serial.calls.Take(), "Write:41");
}

TEST_F(ResourceLife, ObjectsOfAnOldSetupAreDeletedOnTheScriptThreadWithTheirRun) {
    GivenRunning(kListening);
    QThread* deletedOn = nullptr;
    const QPointer<QObject> object = ObjectOf("port");
    OnScriptThread([&] {
        QObject::connect(object, &QObject::destroyed, object, [&deletedOn] { deletedOn = QThread::currentThread(); });
    });
    GivenSettings({});
    OnScriptThread([&] { EXPECT_FALSE(object.isNull()) << "the script may call it still"; });
    device->Stop();
    WhenTheScriptThreadHasCaughtUp();
    EXPECT_TRUE(object.isNull());
    EXPECT_EQ(deletedOn, static_cast<QThread*>(device->GetScriptThread()));
}

TEST_F(ResourceLife, TheEndOfTheDeviceLetsGoOfEverything) {
    GivenRunning("({ _mStart: function () { get('Serial', 3).Open(); get('DMXIn', 1).Open();"
                 "  get('DigitalIn', 4, 0).Open(); } })");
    EndDevice();
    EXPECT_EQ(serial.handlers.Count() + in.handlers.Count() + out.handlers.Count() + io.handlers.Count(), 0u);
    for (const auto& channel : io.channels)
        EXPECT_EQ(channel.second->handlers.Count(), 0u);
    EXPECT_EQ(serial.state + in.state + io.state, 0u);
}

TEST_F(ResourceLife, ADeviceThatNeverRanLetsGoToo) {
    GivenAllResources();
    EXPECT_EQ(serial.handlers.Count(), 1u);
    EndDevice();
    EXPECT_EQ(serial.handlers.Count(), 0u);
}

TEST_F(ResourceLife, TwoDevicesMayHearOnePort) {
    GivenRunning(kListening);
    auto* second = new MCalverinScript_Device(&module, nullptr, "Other");
    ASSERT_EQ(second->SetSetup(SetupText(SettingsOf(AllSettings())).c_str()), KXP_OK);
    EXPECT_EQ(serial.handlers.Count(), 2u);
    second->Release();
    EXPECT_EQ(serial.handlers.Count(), 1u);
    EXPECT_EQ(Heard(1), "close");
    serial.Receive("x");
    EXPECT_EQ(Heard(2), "close data:x");
}

TEST_F(ResourceLife, AHundredSetupsLeaveNothingBehind) {
    GivenRunning(kListening);
    const std::string setup = SetupText(SettingsOf(AllSettings()));
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(device->SetSetup(setup.c_str()), KXP_OK);
        if (i % 10 == 0)
            Run("get('Serial', 3); get('DMXIn', 1)");
    }
    EXPECT_EQ(serial.handlers.Count(), 1u);
    EXPECT_EQ(in.handlers.Count(), 1u);
}

} // namespace
