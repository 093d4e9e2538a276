#include <atomic>
#include <future>
#include <thread>

#include <QScriptEngine>

#include "MScriptMngRemote.h"
#include "ResourceFixture.h"
#include "SetupDesk.h"

namespace {

/// Lets one go on when another says so.
class Signal {
public:
    void Give() {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_given = true;
        m_changed.notify_all();
    }
    bool Wait() {
        std::unique_lock<std::mutex> guard(m_lock);
        return m_changed.wait_for(guard, std::chrono::milliseconds(kDeadlineMs), [this] { return m_given; });
    }

private:
    std::mutex m_lock;
    std::condition_variable m_changed;
    bool m_given = false;
};

class ResourceThreads : public ResourceFixture {
protected:
    void TearDown() override {
        goOn.Give();
        ResourceFixture::TearDown();
    }
    void GivenPorts() {
        GivenAllResources();
        Run("var port = get('Serial', 3), desk = get('DMXIn', 1), lamp = get('DMXOut', 2),"
            "    door = get('DigitalIn', 4, 0), lock = get('DigitalOut', 4, 0);"
            "['open', 'close', 'data', 'cts'].forEach(function (e) {"
            "  [port, desk, lamp, door].forEach(function (r) { r.On(e, function () {}); }); })");
    }
    /// The script's global `hang()` tells `isInside` and returns when `goOn` is given.
    void GivenHang() {
        OnScriptThread([this] {
            QScriptEngine* engine = device->GetEngine();
            engine->setProperty("threads", QVariant::fromValue(static_cast<void*>(this)));
            const auto hang = [](QScriptContext*, QScriptEngine* e) {
                auto* self = static_cast<ResourceThreads*>(e->property("threads").value<void*>());
                self->isInside.Give();
                self->goOn.Wait();
                return QScriptValue();
            };
            engine->globalObject().setProperty(QStringLiteral("hang"), engine->newFunction(hang));
        });
    }
    /// Runs a script without waiting for it.
    void WhenTheScriptBegins(const std::string& script) {
        device->PostTask([engine = device->GetEngine(), script] { engine->evaluate(QString::fromStdString(script)); });
    }
    void WhenNoResourceIsWanted() { device->GetSetupDesk().ResolveResources({}); }
    /// Calls every method of every kind of object.
    void RunEverything() {
        for (const char* call : {"port.Open()",
                                 "port.SetBreakTime(0)",
                                 "port.SetBreakCharacter(65)",
                                 "port.Write('xAy')",
                                 "port.SetBaudRate()",
                                 "port.SetParity()",
                                 "port.SetDataSize()",
                                 "port.SetStopBits()",
                                 "port.SetBreak(false)",
                                 "port.SetDTR(true)",
                                 "port.SetRTS(true)",
                                 "port.SetDTRControl(true)",
                                 "port.SetRTSControl(true)",
                                 "port.SetDTRHandshake(true)",
                                 "port.SetDSROutFlow(true)",
                                 "port.SetRTSHandshake(true)",
                                 "port.SetCTSOutFlow(true)",
                                 "port.Close()",
                                 "lamp.Open()",
                                 "lamp.WriteBlock(new Buffer(9))",
                                 "lamp.ReadBlock()",
                                 "desk.ReadBlock()",
                                 "lamp.Close()",
                                 "door.Open()",
                                 "door.GetValue()",
                                 "lock.SetValue(1)",
                                 "door.Close()"})
            EXPECT_NE(Run(call).substr(0, 5), "threw") << call;
    }

    Signal isInside;
    Signal goOn;
};

TEST_F(ResourceThreads, WhatAHungScriptDoesNotTakeIsBoundedByNumberAndByBytes) {
    GivenPorts();
    Run("var heard = 0, bytes = 0; port.On('data', function (data) { heard += 1; bytes += data.length })");
    constexpr int kMostEvents = 65536;
    OnScriptThread([&] { // which takes nothing meanwhile
        for (int i = 0; i < kMostEvents + 100; ++i)
            serial.Receive("x");
    });
    EXPECT_EQ(Run("heard"), std::to_string(kMostEvents));

    Run("heard = 0; bytes = 0");
    const std::string block(1U << 20U, 'x');
    OnScriptThread([&] {
        for (int i = 0; i < 20; ++i)
            serial.Receive(block);
    });
    EXPECT_EQ(Run("bytes"), std::to_string(16U << 20U));
    serial.Receive("y");
    EXPECT_EQ(Run("heard"), "17") << "and what comes when it has caught up is heard again";
}

TEST_F(ResourceThreads, AHostMayCallBackFromInsideEveryCall) {
    GivenPorts();
    serial.calls.onCall = [this](const std::string&) {
        serial.Receive("x");
        serial.Happen(KXP_SERIAL_CTS, 1);
        serial.handlers.Tell([](IResourceHandler& handler) { handler.OnStateChanged(); });
    };
    for (plain::FakeUniverse* universe : {&in, &out})
        universe->calls.onCall = [universe](const std::string&) { universe->Receive("x"); };
    io.calls.onCall = [this](const std::string&) {
        io.handlers.Tell([](IResourceHandler& handler) { handler.OnStateChanged(); });
        io.Channel(KXP_DIGITAL_INPUT, 0).Become(1);
    };
    RunEverything();
    WhenNoResourceIsWanted();
    EXPECT_EQ(serial.handlers.Count() + in.handlers.Count() + io.handlers.Count(), 0u);
}

TEST_F(ResourceThreads, AHostMayWaitInsideACallForAHandlerOnAnotherThread) {
    GivenPorts();
    const auto onAnother = [](auto work) { std::thread(work).join(); };
    serial.calls.onCall = [&](const std::string&) {
        onAnother([this] {
            serial.Receive("x");
            serial.Happen(KXP_SERIAL_CTS, 1);
            serial.handlers.Tell([](IResourceHandler& handler) {
                handler.OnStateChanged();
                handler.GetOwnerName();
            });
        });
    };
    for (plain::FakeUniverse* universe : {&in, &out})
        universe->calls.onCall = [&onAnother, universe](const std::string&) {
            onAnother([universe] { universe->Receive("x"); });
        };
    io.calls.onCall = [&](const std::string&) {
        onAnother([this] {
            io.handlers.Tell([](IResourceHandler& handler) { handler.OnStateChanged(); });
            io.Channel(KXP_DIGITAL_INPUT, 0).Become(1);
        });
    };
    RunEverything();
    WhenNoResourceIsWanted();
    EXPECT_EQ(serial.handlers.Count() + in.handlers.Count() + io.handlers.Count(), 0u);
}

TEST_F(ResourceThreads, AHostMayTellAChangeFromInsideTheQuestionForTheState) {
    GivenPorts();
    std::atomic<int> depth{0};
    serial.onGetState = [&] {
        if (depth++ == 0)
            std::thread([this] {
                serial.handlers.Tell([](IResourceHandler& handler) { handler.OnStateChanged(); });
            }).join();
    };
    Run("port.On('open', hearing('open'))");
    serial.BecomeState(KXP_RESOURCE_OPEN);
    EXPECT_EQ(HeardAfterAll(), "open") << "once, though two looks saw it";
}

TEST_F(ResourceThreads, ASetupIsReadWhileTheScriptHangs) {
    GivenPorts();
    GivenHang();
    WhenTheScriptBegins("hang(); port.Write('old'); port.Open(); lamp.WriteBlock(new Buffer(1)); lock.SetValue(1);"
                        "door.Open(); hear('done')");
    ASSERT_TRUE(isInside.Wait());
    serial.calls.Take();
    ASSERT_EQ(device->SetSetup(SetupText(SettingsOf(AllSettings())).c_str()), KXP_OK);
    EXPECT_EQ(serial.calls.Take(), "RemoveHandler Close AddHandler:3") << "before SetSetup returned";
    out.calls.Take();
    io.calls.Take();
    goOn.Give();
    EXPECT_EQ(Heard(1), "done");
    EXPECT_EQ(serial.calls.Take() + out.calls.Take() + io.calls.Take(), "");
}

TEST_F(ResourceThreads, AHostMayDeleteItsResourcesAsSoonAsASetupWithoutThemIsRead) {
    auto port = std::make_unique<plain::FakeSerial>(3);
    auto universe = std::make_unique<plain::FakeUniverse>(2);
    auto channels = std::make_unique<plain::FakeIo>(4);
    channels->Channel(KXP_DIGITAL_INPUT, 0);
    channels->Channel(KXP_DIGITAL_OUTPUT, 0);
    provider.resources[{1, 3, 3}] = port->Root();
    provider.resources[{2, 2, 2}] = universe->Root();
    provider.resources[{5, 4, 3}] = channels->Root();
    GivenPorts();
    Run("port.Open(); lamp.Open(); door.Open()");
    device->Start();
    GivenHang();
    WhenTheScriptBegins("hang(); port.Write('x'); port.Close(); lamp.ReadBlock(); lock.SetValue(1); door.Close();"
                        "hear('done')");
    ASSERT_TRUE(isInside.Wait());
    provider.resources.clear();
    GivenSettings({});
    port.reset();
    universe.reset();
    channels.reset();
    goOn.Give();
    EXPECT_EQ(Heard(1), "done");
}

TEST_F(ResourceThreads, RemovingAHandlerWaitsForTheOneThatIsInsideIt) {
    GivenPorts();
    std::atomic<bool> stop{false};
    std::thread line([&] {
        for (int i = 0; !stop; ++i) {
            serial.Receive("data");
            in.Receive("frame");
            serial.BecomeState(i % 2 == 0 ? KXP_RESOURCE_OPEN : KXP_RESOURCE_CLOSED);
            io.Channel(KXP_DIGITAL_INPUT, 0).Become(i);
        }
    });
    const std::string setup = SetupText(SettingsOf(AllSettings()));
    for (int i = 0; i < 20; ++i) {
        ASSERT_EQ(device->SetSetup(setup.c_str()), KXP_OK);
        Run("get('Serial', 3).On('data', function () {}); get('DigitalIn', 4, 0).Open()");
        device->GetRemote()->Tick();
    }
    stop = true;
    line.join();
    WhenNoResourceIsWanted();
    EXPECT_EQ(serial.handlers.Count() + in.handlers.Count() + io.handlers.Count(), 0u);
}

TEST_F(ResourceThreads, APortThatIsPulledOutTellsErrorAndCloseAndComesBack) {
    GivenPorts();
    Run("port.On('error', hearing('error')); port.Open(hearing('open')); port.On('close', hearing('close'))");
    std::thread line([this] {
        serial.Happen(KXP_SERIAL_ERROR, 1);
        serial.BecomeState(KXP_RESOURCE_CLOSED);
        serial.BecomeState(KXP_RESOURCE_OPEN);
    });
    line.join();
    EXPECT_EQ(HeardAfterAll(), "open error:true close open");
}

TEST_F(ResourceThreads, AClosingByANewSetupWakesAWriteThatWaitsForTheLine) {
    GivenPorts();
    std::atomic<bool> isOut{false};
    serial.calls.onCall = [&](const std::string& call) {
        if (call.substr(0, 5) == "Write") {
            isInside.Give();
            goOn.Wait();
            isOut = true;
        } else if (call == "Close") {
            goOn.Give();
        }
    };
    WhenTheScriptBegins("port.Write('x'); port.Write('y'); hear('done')");
    ASSERT_TRUE(isInside.Wait());
    WhenNoResourceIsWanted();
    EXPECT_TRUE(isOut) << "the host has its resource back, with nobody inside";
    EXPECT_EQ(Heard(1), "done");
    EXPECT_EQ(serial.calls.CountOf("Write:79"), 0u);
}

TEST_F(ResourceThreads, ACallThatTheHostNeverAnswersHoldsUpTheNewSetupForASecondAlone) {
    GivenPorts();
    serial.calls.onCall = [&](const std::string& call) {
        if (call.substr(0, 5) != "Write")
            return;
        isInside.Give();
        goOn.Wait();
    };
    WhenTheScriptBegins("port.Write('x'); port.Write('y'); hear('done')");
    ASSERT_TRUE(isInside.Wait());
    WhenNoResourceIsWanted();
    goOn.Give();
    EXPECT_EQ(Heard(1), "done");
    EXPECT_EQ(serial.calls.CountOf("Write:79"), 0u);
}

TEST_F(ResourceThreads, AnOpeningThatComesTooLateIsTakenBack) {
    GivenPorts();
    serial.calls.onCall = [&](const std::string& call) {
        if (call == "Open") {
            isInside.Give();
            goOn.Wait();
        } else if (call == "Close") {
            goOn.Give();
        }
    };
    serial.calls.Take();
    WhenTheScriptBegins("port.Open(); hear('done')");
    ASSERT_TRUE(isInside.Wait());
    WhenNoResourceIsWanted();
    EXPECT_EQ(serial.state, KXP_RESOURCE_CLOSED);
    EXPECT_EQ(serial.calls.Take(), "Open RemoveHandler Close Close");
    EXPECT_EQ(Heard(1), "done");
}

TEST_F(ResourceThreads, AChannelsOpeningThatComesTooLateLeavesNoHandler) {
    GivenPorts();
    io.Channel(KXP_DIGITAL_INPUT, 0).calls.onCall = [&](const std::string& call) {
        if (call == "RemoveHandler")
            goOn.Give();
    };
    io.calls.onCall = [&](const std::string& call) {
        if (call != "Open")
            return;
        isInside.Give();
        goOn.Wait();
    };
    WhenTheScriptBegins("door.Open(); hear('done')");
    ASSERT_TRUE(isInside.Wait());
    WhenNoResourceIsWanted();
    EXPECT_EQ(io.handlers.Count(), 0u);
    EXPECT_EQ(Heard(1), "done");
}

TEST_F(ResourceThreads, ATickThatIsInsideTheHostIsWaitedForByANewSetup) {
    std::atomic<bool> isOut{false};
    std::atomic<bool> armed{false};
    serial.onGetState = [&] {
        if (!armed.exchange(false))
            return;
        isInside.Give();
        goOn.Wait();
        isOut = true;
    };
    GivenPorts();
    device->Start();
    GivenHang();
    Run("get('Serial', 3)");
    armed = true;
    ASSERT_TRUE(isInside.Wait());
    serial.calls.onCall = [&](const std::string& call) {
        if (call == "Close")
            goOn.Give();
    };
    WhenNoResourceIsWanted();
    EXPECT_TRUE(isOut);
}

TEST_F(ResourceThreads, AStopEndsALongBreakAndWithItTheWrite) {
    const std::string script = "({ Send: function () { var port = QCalverin.GetResource({ Type: 'Serial',"
                               "  ResourceID: 3 }); port.SetBreakTime(3600000); port.SetBreakCharacter(65);"
                               "  port.Write('xAyAz'); hear('done'); } })";
    ASSERT_EQ(device->SetSetup(SetupText(SettingsOf(AllSettings()), script).c_str()), KXP_OK);
    device->Start();
    serial.calls.Take();
    auto params = plain::Params::ForFunction("Send", {});
    plain::Context context;
    ASSERT_EQ(Send(3, *params, &context), KXP_OK);
    ASSERT_TRUE(serial.calls.WaitFor("SetBreak:1"));
    device->Stop();
    EXPECT_EQ(Heard(1), "done");
    EXPECT_EQ(serial.calls.Take(), "Write:78 SetBreak:1 SetBreak:0") << "the line is let go, the rest is not sent";
}

TEST_F(ResourceThreads, ANewSetupEndsALongBreak) {
    GivenPorts();
    Run("port.SetBreakTime(3600000); port.SetBreakCharacter(65)");
    serial.calls.Take();
    WhenTheScriptBegins("port.Write('xAy'); hear('done')");
    ASSERT_TRUE(serial.calls.WaitFor("SetBreak:1"));
    WhenNoResourceIsWanted();
    EXPECT_EQ(Heard(1), "done");
    EXPECT_EQ(serial.calls.CountOf("Write:79"), 0u);
}

TEST_F(ResourceThreads, ADeviceIsReleasedInTheMiddleOfALongBreak) {
    GivenPorts();
    Run("port.SetBreakTime(3600000); port.SetBreakCharacter(65)");
    WhenTheScriptBegins("port.Write('xAy')");
    ASSERT_TRUE(serial.calls.WaitFor("SetBreak:1"));
    EndDevice();
    EXPECT_EQ(serial.handlers.Count(), 0u);
    EXPECT_TRUE(Eventually([] { return MCalverinScript_Device::SweepAbandoned() == 0; }));
}

TEST_F(ResourceThreads, ADeviceWhoseScriptHangsGivesItsResourcesBackWhenItIsReleased) {
    GivenPorts();
    GivenHang();
    Run("port.Open(); door.Open()");
    WhenTheScriptBegins("hang(); port.Write('late'); door.Open()");
    ASSERT_TRUE(isInside.Wait());
    serial.calls.Take();
    io.calls.Take();
    EndDevice();
    EXPECT_EQ(serial.calls.Take(), "RemoveHandler Close");
    EXPECT_EQ(io.calls.Take(), "Close");
    goOn.Give();
    EXPECT_TRUE(Eventually([] { return MCalverinScript_Device::SweepAbandoned() == 0; }));
    EXPECT_EQ(serial.calls.Take() + io.calls.Take(), "");
}

TEST_F(ResourceThreads, EverythingAtOnceEndsWell) {
    GivenPorts();
    device->Start();
    std::atomic<bool> stop{false};
    std::thread line([&] {
        for (int i = 0; !stop; ++i) {
            serial.Receive("data");
            serial.BecomeState(i % 2 == 0 ? KXP_RESOURCE_OPEN : KXP_RESOURCE_CLOSED);
            io.BecomeState(i % 3 == 0 ? KXP_RESOURCE_CLOSED : KXP_RESOURCE_OPEN);
        }
    });
    std::thread tick([&] {
        while (!stop)
            device->GetRemote()->Tick();
    });
    const std::string setup = SetupText(SettingsOf(AllSettings()));
    for (int i = 0; i < 20; ++i) {
        WhenTheScriptBegins("for (var n = 0; n < 5; ++n) { var p = get('Serial', 3), c = get('DigitalOut', 4, 0);"
                            "  if (p) { p.On('data', function () {}); p.Open(); p.Write('x'); p.Close(); }"
                            "  if (c) { c.Open(); c.SetValue(n); } } ");
        ASSERT_EQ(device->SetSetup(setup.c_str()), KXP_OK);
    }
    stop = true;
    line.join();
    tick.join();
    device->Stop();
    EndDevice();
    EXPECT_EQ(serial.handlers.Count() + io.handlers.Count(), 0u);
}

} // namespace
