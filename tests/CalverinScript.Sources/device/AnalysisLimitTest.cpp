#include <QScriptEngine>

#include "DeviceFixture.h"
#include "ScriptAnalysis.h"
#include "SetupFormat.h"

namespace {

class AnalysisLimit : public DeviceFixture {
protected:
    void SetUp() override {
        module.configPath = WriteFile("module.cfg", "[ANALYSIS]\nlimit=1\n");
        DeviceFixture::SetUp();
        QObject::connect(device, &MCalverinScript_Device::SignalNotifyErrorChange,
                         [this](const QString& text) { told = text.toStdString(); });
    }
    bool Analyse(const char* text) {
        QScriptEngine engine;
        return device->EvaluateScript(QLatin1String(text), &engine);
    }

    std::string told;
};

constexpr const char* kEnded = "Script: The analysis was ended after 1 s: the script does not come back.";

TEST_F(AnalysisLimit, EndsAScriptWhoseTopLevelNeverComesBack) {
    EXPECT_FALSE(Analyse("for (;;) {}"));
    EXPECT_EQ(told, kEnded);
    EXPECT_TRUE(Analyse("({})")) << "the next one is looked at as always";
}

TEST_F(AnalysisLimit, EndsAGetterThatTheScanFindsAndThatNeverComesBack) {
    EXPECT_FALSE(Analyse("({ F: function() {}, get Endless() { for (;;) {} } })"));
    EXPECT_EQ(told, kEnded);
    EXPECT_FALSE(Analyse("({ Info: { get Options() { for (;;) {} } } })"));
    EXPECT_FALSE(Analyse("({ Setup: { get a() { for (;;) {} }, get b() { for (;;) {} } } })"));
    EXPECT_FALSE(Analyse("throw { toString: function() { for (;;) {} } }"));
}

TEST_F(AnalysisLimit, EndsANativeLoopWhoseLengthTheScriptChose) {
    EXPECT_FALSE(Analyse("new Buffer(1).concat(new Array(4000000000))"));
    EXPECT_EQ(told, kEnded);
}

TEST_F(AnalysisLimit, LeavesTheListsOfTheLastGoodAnalysis) {
    ASSERT_TRUE(Analyse("({ F: function() {} })"));
    EXPECT_FALSE(Analyse("({ G: function() {}, get Endless() { for (;;) {} } })"));
    ASSERT_EQ(device->GetAnalysis().GetSet().functions.Count(), 1u);
    EXPECT_EQ(device->GetAnalysis().GetSet().functions.Snapshot().front().name, QStringLiteral("F"));
}

TEST_F(AnalysisLimit, LetsAProjectOpenWhoseScriptNeverComesBack) {
    DeviceSetup setup;
    SetupScript script;
    script.text = QStringLiteral("for (;;) {}");
    setup.script = script;
    EXPECT_EQ(device->SetSetup(PrintSetup(setup).c_str()), KXP_OK);
    EXPECT_EQ(told, kEnded);
    EXPECT_EQ(device->GetStoredSetup().GetScriptText(), script.text);
}

} // namespace
