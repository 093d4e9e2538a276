#include <memory>

#include <gtest/gtest.h>

#include <QMap>
#include <QTest>
#include <QTimer>

#include "DriverDesk.h"
#include "Server.h"
#include "Waits.h"

/// The driver and the projector in one event loop.

namespace {

constexpr int kPoll = 200; // ms

class ProjectorDriver : public testing::Test {
protected:
    ProjectorDriver() {
        options.description.warmUp = options.description.coolDown = 1;
        options.description.lampHours = {1234};
    }

    ~ProjectorDriver() override { EXPECT_EQ(desk == nullptr ? QString() : desk->Uncaught(), QString()); }

    void GivenProjector() {
        server = std::make_unique<projector::Server>(options);
        server->OnCommand([this](const QByteArray& line) { commands += line; });
        ASSERT_TRUE(server->Listen());
        options.port = server->Port();
    }

    void GivenDriver(const char* password = "") {
        desk = std::make_unique<DriverDesk>(Text(PROJECTOR_EXAMPLE "/pjlink.js"),
                                            QMap<QString, QVariant>{{Text("port"), options.port},
                                                                    {Text("password"), Text(password)},
                                                                    {Text("poll"), kPoll}});
        desk->Start();
    }

    void GivenBoth() {
        GivenProjector();
        GivenDriver();
    }

    bool WaitFor(const char* variable, const char* value) const { return desk->WaitFor(variable, Text(value)); }
    std::string Variable(const char* name) const { return desk->Variable(name).toStdString(); }
    std::string Ask(const char* command, const char* parameter = "") {
        return desk->Ask(command, Text(parameter)).toStdString();
    }

    void GivenBothAndOn() {
        GivenBoth();
        EXPECT_EQ(Ask("PowerOn"), "OK");
        ASSERT_TRUE(WaitFor("Power", "on"));
    }

    projector::Options options;
    QByteArrayList commands; ///< what the projector heard
    std::unique_ptr<projector::Server> server;
    std::unique_ptr<DriverDesk> desk;
};

} // namespace

TEST_F(ProjectorDriver, ReportsWhatTheProjectorIs) {
    options.description.name = Text("B\xC3\xBChne");
    options.description.errors = Text("010020");
    GivenBoth();
    EXPECT_TRUE(WaitFor("Power", "off"));
    EXPECT_TRUE(WaitFor("ErrorStatus", "lamp warning, filter error"));
    EXPECT_TRUE(WaitFor("Name", "B\xC3\xBChne"));
    EXPECT_EQ(Variable("Online"), "yes");
    EXPECT_EQ(Variable("Connection"), "connected");
    EXPECT_EQ(Variable("LampHours"), "1234");
    EXPECT_EQ(Variable("Muted"), "nothing");
}

TEST_F(ProjectorDriver, TurnsTheProjectorOnAndOff) {
    GivenBoth();
    EXPECT_EQ(Ask("PowerOn"), "OK");
    EXPECT_TRUE(WaitFor("Power", "on"));
    EXPECT_TRUE(WaitFor("Input", "RGB 1"));
    EXPECT_EQ(Ask("PowerOff"), "OK");
    EXPECT_TRUE(WaitFor("Power", "off"));
    EXPECT_TRUE(WaitFor("ErrorStatus", "ok"));
}

TEST_F(ProjectorDriver, ReportsWarmingUpAndCooling) {
    options.description.warmUp = kNever;
    GivenBoth();
    EXPECT_EQ(Ask("PowerOn"), "OK");
    EXPECT_TRUE(WaitFor("Power", "warming up"));
    EXPECT_EQ(Ask("PowerOff"), "error: the projector cannot do that now");
    EXPECT_EQ(Ask("SelectInput", "Digital 1"), "error: the projector cannot do that now");
    options.description.warmUp = 0;
    options.description.coolDown = kNever;
    options.port = 0;
    GivenBothAndOn();
    EXPECT_EQ(Ask("PowerOff"), "OK");
    EXPECT_TRUE(WaitFor("Power", "cooling"));
    EXPECT_EQ(Ask("PowerOn"), "error: the projector cannot do that now");
}

TEST_F(ProjectorDriver, SelectsAnInputByItsNameAndItsCode) {
    GivenBothAndOn();
    EXPECT_EQ(Ask("SelectInput", "Digital 2"), "OK");
    EXPECT_TRUE(WaitFor("Input", "Digital 2"));
    EXPECT_EQ(Ask("SelectInput", "21"), "OK");
    EXPECT_TRUE(WaitFor("Input", "Video 1"));
    EXPECT_EQ(Ask("SelectInput", "Digital 9"), "error: the projector has no such value");
    for (const char* none : {"", "10", "61", "311", "Digital", "digital 1", "undefined"})
        EXPECT_EQ(Ask("SelectInput", none), std::string("error: not an input: ") + none);
}

TEST_F(ProjectorDriver, MutesPictureAndSound) {
    GivenBothAndOn();
    const std::pair<const char*, const char*> steps[] = {{"picture on", "picture"}, {"sound on", "all"},
                                                         {"picture off", "sound"},  {"sound off", "nothing"},
                                                         {"all on", "all"},         {"all off", "nothing"}};
    for (const auto& [what, muted] : steps) {
        EXPECT_EQ(Ask("Mute", what), "OK");
        EXPECT_TRUE(WaitFor("Muted", muted)) << what;
    }
    EXPECT_EQ(Ask("Mute", "31"), "error: cannot mute: 31");
    EXPECT_EQ(Ask("Mute", "toString"), "error: cannot mute: toString");
}

TEST_F(ProjectorDriver, TellsThatTheProjectorIsBroken) {
    options.description.broken = true;
    GivenBoth();
    EXPECT_EQ(Ask("PowerOn"), "error: the projector has failed");
    EXPECT_EQ(Variable("Power"), "unknown");
    EXPECT_EQ(Variable("Online"), "yes");
}

TEST_F(ProjectorDriver, KnowsPasswordsOfAnyLength) {
    // The digest is made of blocks of 64 bytes, the last with nine bytes of its own; the random number has eight.
    for (const int length : {1, 18, 32, 46, 47, 48, 55, 56, 57, 111, 112, 200}) {
        const QByteArray text = QByteArray("abcdefghijklmnopqrstuvwxyz0123456789").repeated(6).left(length);
        const char* password = text.constData();
        options.password = text;
        options.port = 0;
        GivenProjector();
        GivenDriver(password);
        EXPECT_EQ(Ask("PowerOn"), "OK") << password;
    }
}

TEST_F(ProjectorDriver, TellsThatThePasswordIsWrongOrMissing) {
    options.password = "secret";
    GivenProjector();
    GivenDriver("Secret");
    EXPECT_TRUE(WaitFor("Connection", "password refused"));
    EXPECT_EQ(Ask("PowerOn"), "error: password refused");
    EXPECT_EQ(Variable("Online"), "no");
    GivenDriver();
    EXPECT_TRUE(WaitFor("Connection", "the projector asks for a password"));
    EXPECT_EQ(Ask("PowerOn"), "error: the projector asks for a password");
}

TEST_F(ProjectorDriver, JoinsAnswersThatComeInPieces) {
    options.split = true;
    GivenBothAndOn();
    EXPECT_EQ(Ask("SelectInput", "32"), "OK");
    EXPECT_TRUE(WaitFor("Input", "Digital 2"));
}

TEST_F(ProjectorDriver, FindsAProjectorThatWentAwayAndCameBack) {
    GivenBothAndOn();
    server.reset();
    EXPECT_TRUE(WaitFor("Online", "no"));
    EXPECT_EQ(Variable("Power"), "unknown");
    GivenProjector();
    EXPECT_TRUE(WaitFor("Online", "yes"));
    EXPECT_TRUE(WaitFor("Power", "off"));
    EXPECT_EQ(Ask("PowerOn"), "OK");
}

TEST_F(ProjectorDriver, WaitsWithACommandForAProjectorThatIsNotThereYet) {
    GivenProjector();
    server.reset();
    GivenDriver();
    const int command = desk->Run("PowerOn");
    ASSERT_TRUE(QTest::qWaitFor([this] { return Variable("Connection") != "not connected"; }, kLongest));
    GivenProjector();
    EXPECT_EQ(desk->Result(command), Text("OK"));
}

TEST_F(ProjectorDriver, AnswersACommandThoughTheProjectorIsNotThere) {
    GivenProjector();
    server.reset();
    GivenDriver();
    EXPECT_EQ(Ask("PowerOn").substr(0, 22), "error: not connected: ");
}

TEST_F(ProjectorDriver, AnswersACommandThoughTheProjectorDoesNot) {
    options.slow = kNever;
    GivenBoth();
    EXPECT_EQ(Ask("PowerOn"), "error: not connected: no greeting");
    EXPECT_EQ(Variable("Online"), "no");
}

TEST_F(ProjectorDriver, DoesNotDoLaterWhatItHasGivenUp) {
    options.slow = 2600;
    GivenBoth();
    EXPECT_EQ(Ask("PowerOn").substr(0, 7), "error: ");
    const int heard = commands.count("%1POWR 1");
    server.reset();
    options.slow = 0;
    GivenProjector();
    EXPECT_TRUE(WaitFor("Power", "off"));
    EXPECT_EQ(commands.count("%1POWR 1"), heard);
}

TEST_F(ProjectorDriver, DoesNothingAnyMoreWhenItHasStopped) {
    GivenBothAndOn();
    desk->Run("_mStop");
    const auto heard = commands.size();
    server.reset();
    GivenProjector();
    QTimer rounds;
    int passed = 0;
    QObject::connect(&rounds, &QTimer::timeout, [&passed] { ++passed; });
    rounds.start(kPoll);
    ASSERT_TRUE(QTest::qWaitFor([&passed] { return passed == 3; }, kLongest));
    EXPECT_EQ(commands.size(), heard);
}

TEST_F(ProjectorDriver, SurvivesConnectionsThatBreakAgainAndAgain) {
    options.dropAfter = 2;
    GivenBoth();
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(Ask("PowerOn"), "OK");
    EXPECT_GE(commands.count("%1POWR 1"), 5);
}

TEST_F(ProjectorDriver, AsksEachThingOnceInARound) {
    GivenBoth();
    ASSERT_TRUE(QTest::qWaitFor([this] { return commands.count("%1ERST ?") >= 3; }, kLongest));
    const int rounds = commands.count("%1ERST ?");
    for (const char* query : {"%1POWR ?", "%1INPT ?", "%1AVMT ?", "%1LAMP ?"})
        EXPECT_LE(commands.count(query), rounds + 1) << query;
    EXPECT_EQ(commands.count("%1NAME ?"), 1);
}

TEST_F(ProjectorDriver, TakesSixteenWaitingCommandsAndNoMore) {
    GivenProjector();
    server.reset();
    GivenDriver();
    QList<int> taken;
    for (int i = 0; i < 16; ++i)
        taken += desk->Run("PowerOn");
    EXPECT_EQ(Ask("PowerOn"), "error: too many commands");
    GivenProjector();
    for (const int command : taken)
        EXPECT_EQ(desk->Result(command), Text("OK"));
    EXPECT_EQ(commands.count("%1POWR 1"), 16);
}

TEST_F(ProjectorDriver, AnswersWaitingCommandsWhenItStops) {
    GivenProjector();
    server.reset();
    GivenDriver();
    const int command = desk->Run("PowerOn");
    desk->Run("_mStop");
    EXPECT_EQ(desk->Result(command), Text("error: the driver has stopped"));
}

TEST_F(ProjectorDriver, TellsThatAnotherProgramListens) {
    QTcpServer other;
    ASSERT_TRUE(other.listen(QHostAddress::LocalHost));
    QObject::connect(&other, &QTcpServer::newConnection,
                     [&other] { other.nextPendingConnection()->write(QByteArray(1000, 'x')); });
    options.port = other.serverPort();
    GivenDriver();
    EXPECT_TRUE(WaitFor("Connection", "not a PJLink projector"));
}

TEST_F(ProjectorDriver, TellsItsStateInAText) {
    GivenBothAndOn();
    EXPECT_TRUE(WaitFor("ErrorStatus", "ok"));
    EXPECT_EQ(Ask("State"), "Connection=connected\nErrorStatus=ok\nInput=RGB 1\nLampHours=1234\nMuted=nothing\n"
                            "Name=Projector\nOnline=yes\nPower=on");
}
