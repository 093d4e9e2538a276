#include "DeviceFixture.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QMainWindow>
#include <QScriptEngineDebugger>

#include "ScriptDebugger.h"
#include "ScriptWorld.h"

namespace {

/// With the debugger there is no script thread: everything runs on the thread that made the device,
/// which serves its events.
class Debugger : public DeviceFixture {
protected:
    void SetUp() override { module.configPath = WriteFile("module.cfg", "[DEBUGGER]\nenable=1\n"); }

    /// Serves events until a value has that text.
    static bool ServeUntil(const plain::Value& value, const std::string& text) {
        QElapsedTimer clock;
        clock.start();
        while (value.Text() != text && !clock.hasExpired(kDeadlineMs))
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        return value.Text() == text;
    }
};

TEST_F(Debugger, KeepsTheScriptOnTheHostsThreadAndStillRunsIt) {
    MakeDevice();
    ASSERT_NE(device->GetWorld().Debugger(), nullptr);
    EXPECT_EQ(device->GetScriptThread(), nullptr);
    GivenScript("({ F: function(a) { return a + '!' } })");
    EXPECT_EQ(variables.functions.Text(), "F\n");
    auto params = plain::Params::ForFunction("F", {"debugged"});
    plain::Context context;
    ASSERT_EQ(Send(3, *params, &context), KXP_OK);
    EXPECT_TRUE(ServeUntil(params->At(1), "debugged!"));
    EXPECT_TRUE(ServeUntil(variables.status.Plain(), "0"));
    EXPECT_TRUE(context.WaitForEnd());
}

TEST_F(Debugger, ShowsItsWindowWithTheDevicesName) {
    MakeDevice();
    GivenScript("({})");
    QCoreApplication::processEvents();
    const QMainWindow* window = device->GetWorld().Debugger()->GetDebugger().standardWindow();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Desk"));
    EXPECT_EQ(window->size(), QSize(1024, 640));
    EXPECT_FALSE(window->windowIcon().isNull());
}

TEST_F(Debugger, ReportsWhatAScriptThrows) {
    MakeDevice();
    GivenScript("throw new Error('at start')");
    EXPECT_EQ(Error(), "Script: Uncaught exception at line 1, Error: at start");
}

TEST_F(Debugger, LetsStopAbortAScriptThatNeverReturns) {
    MakeDevice();
    plain::Value inside("inside");
    TellWhenInside(inside);
    device->GetStoredSetup().SetScript(QString(), QStringLiteral("inside(); while (true) {}"));
    std::thread stopper([&] {
        EXPECT_TRUE(inside.WaitFor("yes"));
        device->Stop();
    });
    device->Start();
    stopper.join();
    EXPECT_EQ(device->IsRunning(), KXP_NO);
}

TEST_F(Debugger, IsNotThereOnARunTimeHostWhateverTheFileSays) {
    module.debuggerAllowed = false;
    MakeDevice();
    EXPECT_EQ(device->GetWorld().Debugger(), nullptr);
    EXPECT_NE(device->GetScriptThread(), nullptr);
}

TEST_F(Debugger, IsNotThereUnlessTheFileEnablesIt) {
    module.configPath = WriteFile("off.cfg", "[DEBUGGER]\nenable=0\n[OTHER]\nenable=1\n");
    MakeDevice();
    EXPECT_EQ(device->GetWorld().Debugger(), nullptr);
}

} // namespace
