#include <memory>

#include "FakeRemotes.h"
#include "FakeScriptDevice.h"
#include "LogFixture.h"
#include "MScriptMngRemote.h"

namespace {

class BridgeHandler : public LogFixture {
protected:
    void MakeWith(IScriptDevice* scriptDevice, IManagerRemote2* newerLink) {
        remote = std::make_unique<MScriptMngRemote>(scriptDevice, nullptr, newerLink, nullptr, nullptr);
    }
    void GivenAnOpenLog() {
        GivenLibrary(RECORDING_LOGS);
        GivenHostLog();
        ASSERT_TRUE(Open());
    }

    FakeScriptDevice device;
    FakeRemote2 newer;
    std::unique_ptr<MScriptMngRemote> remote;
};

TEST_F(BridgeHandler, IsNotFoundThroughQueryInterfaceAndNotCounted) {
    MakeWith(&device, &newer);
    void* out = &device;
    EXPECT_EQ(remote->QueryInterface("IManagerRemoteHandler", &out), KXP_BAD_INTERFACE_ARG);
    EXPECT_EQ(remote->QueryInterface("IMInterface", &out), KXP_BAD_INTERFACE_ARG);
    EXPECT_EQ(remote->QueryInterface(nullptr, nullptr), KXP_BAD_INTERFACE_ARG);
    EXPECT_EQ(remote->Release(), KXP_BAD_INTERFACE_ARG);
    EXPECT_EQ(remote->Reserved2(nullptr, nullptr, nullptr), KXP_OK);
}

TEST_F(BridgeHandler, HandsAPropertyChangeToTheDevice) {
    MakeWith(&device, &newer);
    EXPECT_EQ(remote->OnPropertyChange("Lamp", "Level", "80", 0, 0), KXP_OK);
    EXPECT_EQ(remote->OnPropertyChange("Lamp", "Level", "80", 1, 7), KXP_OK);
    EXPECT_EQ(remote->OnPropertyChange("Lamp", "Level", "80", 0x80000000, 0), KXP_OK);
    EXPECT_EQ(device.changes, (std::vector<std::string>{"Lamp|Level|80|0", "Lamp|Level|80|1", "Lamp|Level|80|1"}));
}

TEST_F(BridgeHandler, DropsAPropertyChangeWithoutTheNewerLinkOrADevice) {
    MakeWith(&device, nullptr);
    EXPECT_EQ(remote->OnPropertyChange("Lamp", "Level", "80", 0, 0), KXP_OK);
    EXPECT_TRUE(device.changes.empty());
    MakeWith(nullptr, &newer);
    EXPECT_EQ(remote->OnPropertyChange("Lamp", "Level", "80", 0, 0), KXP_OK);
}

struct TraceCase {
    QString type;
    int level;
};

TEST_F(BridgeHandler, TracesAtTheLevelThatTheTypeNames) {
    GivenAnOpenLog();
    MakeWith(&device, &newer);
    std::vector<TraceCase> cases = {{QStringLiteral("NORMALPLUS"), 1},
                                    {QStringLiteral("INFO"), 2},
                                    {QStringLiteral("COMMENT"), 3},
                                    {QStringLiteral("ALARM"), 4},
                                    {QStringLiteral("ERROR"), 5},
                                    {QStringLiteral("FATAL"), 6},
                                    {QStringLiteral("DEBUG"), 7},
                                    {QStringLiteral("NORMAL"), 0},
                                    {QStringLiteral("debug"), 0},
                                    {QStringLiteral("DEBUG "), 0},
                                    {QStringLiteral("4"), 0},
                                    {QString(), 0},
                                    {QString(QChar(0)), 0},
                                    {QString(QChar(8)), 0}};
    for (int level = 1; level <= 7; ++level)
        cases.push_back({QString(QChar(level)), level});
    for (const TraceCase& row : cases) {
        remote->TraceMessage(QStringLiteral("hello"), row.type);
        EXPECT_EQ(Recorded().lines.back().level, row.level) << row.type.toStdString();
        EXPECT_EQ(Recorded().lines.back().text, "kxpCalverinScript [Desk] hello");
    }
    EXPECT_EQ(Recorded().lines.size(), cases.size());
}

TEST_F(BridgeHandler, TracesInTheHosts8BitText) {
    GivenAnOpenLog();
    MakeWith(&device, &newer);
    remote->TraceMessage(QString(QChar(0xE9)) + QChar(0x20AC) + QStringLiteral(" 100%s"), QStringLiteral("INFO"));
    EXPECT_EQ(Recorded().lines.back().text, "kxpCalverinScript [Desk] \xE9? 100%s");
}

TEST_F(BridgeHandler, TracesWithoutADeviceAsUnknown) {
    GivenAnOpenLog();
    MakeWith(nullptr, &newer);
    remote->TraceMessage(QStringLiteral("hello"), QStringLiteral("INFO"));
    EXPECT_EQ(Recorded().lines.back().text, "kxpCalverinScript [Unknown] hello");
}

TEST_F(BridgeHandler, TracesNothingWhileTheLogIsOff) {
    GivenAnOpenLog();
    MakeWith(&device, &newer);
    Recorded();
    CloseLog();
    remote->TraceMessage(QStringLiteral("hello"), QStringLiteral("FATAL"));
    EXPECT_TRUE(Recorded().lines.empty());
}

TEST_F(BridgeHandler, TakesNoObjectForOneThatIsNotLive) {
    MakeWith(&device, &newer);
    EXPECT_FALSE(remote->TakeRaised(nullptr));
}

} // namespace
