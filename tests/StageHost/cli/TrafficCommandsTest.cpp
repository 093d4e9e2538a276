#include <csignal>

#include <sys/resource.h>

#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>

#include "StageHostProcess.h"

/// record and replay as people and shows use them.

namespace {

constexpr int kDeadline = 60000;

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

QByteArray ReadAll(const QString& path) {
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

/// The port of a ready line.
int PortOf(const StageHostProcess& program, const char* kind = "tcp") {
    const QByteArray line = program.Output().section(QLatin1Char('\n'), 0, 0).toUtf8();
    return QJsonDocument::fromJson(line).object().value(QLatin1String(kind)).toInt();
}

class TrafficCommands : public testing::Test {
protected:
    void GivenDevice() { ASSERT_TRUE(server.listen(QHostAddress::LocalHost)); }

    void BeginToRecord(const QStringList& more = {}) {
        file = line.Folder() + Text("/some.traffic");
        line.Begin(QStringList{Text("record"), Text("--json"), Text("--tcp"),
                               Text("127.0.0.1:%1").arg(server.serverPort()), file} +
                   more);
        ASSERT_TRUE(line.WaitForOutput("}\n"));
    }

    void BeginToReplay(const QByteArray& lines, const QStringList& more = {}) {
        file =
            device.File(Text("some.traffic"), "{\"traffic\":1,\"kind\":\"tcp\",\"device\":\"127.0.0.1:1\"}\n" + lines);
        device.Begin(QStringList{Text("replay"), Text("--json"), file} + more);
        ASSERT_TRUE(device.WaitForOutput("}\n"));
    }

    static void Connect(QTcpSocket& socket, int port) {
        socket.connectToHost(Text("127.0.0.1"), static_cast<quint16>(port));
        ASSERT_TRUE(socket.waitForConnected(kDeadline));
    }

    static void Say(QTcpSocket& socket, const char* text) {
        socket.write(text);
        EXPECT_TRUE(socket.waitForBytesWritten(kDeadline));
    }

    static QByteArray Read(QTcpSocket& socket, int size) {
        while (socket.bytesAvailable() < size && socket.waitForReadyRead(kDeadline)) {
        }
        return socket.read(size);
    }

    QTcpServer server;
    StageHostProcess line;
    StageHostProcess device;
    QString file;
};

const QByteArray kAsk = R"({"connection":1,"from":"program","text":"ask\r"})"
                        "\n"
                        R"({"connection":1,"from":"device","text":"answer\r"})"
                        "\n";

} // namespace

TEST_F(TrafficCommands, RecordPassesOnAndWritesUntilCtrlC) {
    GivenDevice();
    BeginToRecord();
    QTcpSocket program;
    Connect(program, PortOf(line));
    ASSERT_TRUE(server.waitForNewConnection(kDeadline));
    QTcpSocket* ours = server.nextPendingConnection();
    Say(program, "ask\r");
    EXPECT_EQ(Read(*ours, 4).toStdString(), "ask\r");
    Say(*ours, "answer\r");
    EXPECT_EQ(Read(program, 7).toStdString(), "answer\r");
    line.Interrupt();
    line.Finish();
    EXPECT_EQ(line.ExitCode(), 0) << line.Errors().toStdString();
    QByteArray written = ReadAll(file);
    EXPECT_TRUE(written.contains(R"("connection":1,"from":"program","text":"ask\r"})")) << written.toStdString();
    EXPECT_TRUE(written.contains(R"("connection":1,"from":"device","text":"answer\r"})")) << written.toStdString();
    EXPECT_TRUE(written.endsWith("\"event\":\"end\"}\n")) << written.toStdString();
}

TEST_F(TrafficCommands, ReplayPlaysOnWhereNobodyIsAtTheOtherEndOfStandardInput) {
    device.SetWorkingFolder(device.Folder());
    device.File(Text("some.traffic"), "{\"traffic\":1,\"kind\":\"tcp\",\"device\":\"127.0.0.1:1\"}\n" + kAsk);
    for (const char* input : kInputsOfNobody) {
        SCOPED_TRACE(input);
        device.BeginWithInput(input, {Text("replay"), Text("--json"), Text("--any-order"), Text("some.traffic")});
        ASSERT_TRUE(device.WaitForOutput("}\n")) << device.Errors().toStdString();
        QTcpSocket program;
        Connect(program, PortOf(device));
        for (int turn = 0; turn < 50; ++turn) { // an end that is read is met within a few of them
            Say(program, "ask\r");
            ASSERT_EQ(Read(program, 7).toStdString(), "answer\r") << turn;
        }
        device.Interrupt();
        device.Finish();
        EXPECT_EQ(device.ExitCode(), 0);
    }
}

TEST_F(TrafficCommands, AQuietRecordingLetsTheProcessorSleepUntilItIsAskedToEnd) {
    GivenDevice();
    BeginToRecord();
    const auto sleeps = [&] {
        const QByteArray status = ReadAll(Text("/proc/%1/status").arg(line.ProcessId()));
        const QString text = QString::fromLatin1(status).section(Text("\nvoluntary_ctxt_switches:"), 1);
        return text.section(QLatin1Char('\n'), 0, 0).trimmed().toInt();
    };
    const QDeadlineTimer deadline(kDeadline);
    int before = sleeps();
    for (; before == 0 && !deadline.hasExpired(); before = sleeps())
        server.waitForNewConnection(10); // it has still to settle
    EXPECT_GT(before, 0);
    EXPECT_FALSE(server.waitForNewConnection(1000)); // nobody comes
    EXPECT_LT(sleeps() - before, 5);
    line.Interrupt();
    line.Finish();
    EXPECT_EQ(line.ExitCode(), 0) << line.Errors().toStdString();
}

TEST_F(TrafficCommands, ReplayPlaysWhatRecordHasWritten) {
    BeginToReplay(kAsk);
    QTcpSocket program;
    Connect(program, PortOf(device));
    Say(program, "ask\r");
    EXPECT_EQ(Read(program, 7).toStdString(), "answer\r");
    ASSERT_TRUE(device.WaitForOutput("said"));
    device.Finish();
    EXPECT_EQ(device.ExitCode(), 0);
    EXPECT_TRUE(device.Output().contains(Text(R"({"connection":1,"line":2,"received":"ask\r"})")))
        << device.Output().toStdString();
    EXPECT_TRUE(device.Output().contains(Text(R"({"connection":1,"said":"answer\r"})")));
}

TEST_F(TrafficCommands, AnUnknownRequestIsToldWithTheNearestAndIsAFailureAtTheEnd) {
    BeginToReplay(kAsk);
    QTcpSocket program;
    Connect(program, PortOf(device));
    Say(program, "axe\r");
    ASSERT_TRUE(device.WaitForOutput("unknown"));
    device.Finish();
    EXPECT_EQ(device.ExitCode(), 1);
    EXPECT_TRUE(device.Output().contains(
        Text(R"({"connection":1,"expected":"ask\\r","line":2,"nearest":"ask\\r","unknown":"axe\\r"})")))
        << device.Output().toStdString();
}

TEST_F(TrafficCommands, PeopleSeeTheNearestAndWhereItStands) {
    file = device.File(Text("some.traffic"), "{\"traffic\":1,\"kind\":\"tcp\",\"device\":\"127.0.0.1:1\"}\n"
                                             R"({"connection":1,"from":"program","text":"%1POWR 1\r"})");
    device.Begin({Text("replay"), file});
    ASSERT_TRUE(device.WaitForOutput("Ctrl-C ends it.\n"));
    QTcpSocket program;
    Connect(program, device.Output().section(QLatin1Char(' '), 0, 0).section(QLatin1Char(':'), 1).toInt());
    Say(program, "%1PWOR 1\r");
    ASSERT_TRUE(device.WaitForErrors(".traffic:2)\n"));
    device.Interrupt();
    device.Finish();
    EXPECT_EQ(device.ExitCode(), 1);
    EXPECT_EQ(device.Errors().toStdString(),
              "1 ? %1PWOR 1\\r\n    expected:    %1POWR 1\\r\n    the nearest: %1POWR 1\\r   (" + file.toStdString() +
                  ":2)\n");
}

TEST_F(TrafficCommands, ReplayHearsWhatAShowSays) {
    BeginToReplay(kAsk, {Text("--any-order"), Text("--fast")});
    const int port = PortOf(device);
    QTcpSocket program;
    Connect(program, port);
    device.Say(R"({"do":"lie","with":"repeat"})");
    device.Say(R"({"do":"dance"})");
    ASSERT_TRUE(device.WaitForOutput("a replay cannot do \\\"dance\\\"")) << device.Output().toStdString();
    Say(program, "ask\r");
    EXPECT_EQ(Read(program, 14).toStdString(), "answer\ranswer\r");
    device.Say(R"({"do":"obey"})");
    device.Say(R"({"do":"leave"})");
    while (program.state() == QAbstractSocket::ConnectedState && program.waitForReadyRead(kDeadline)) {
    }
    EXPECT_EQ(program.error(), QAbstractSocket::RemoteHostClosedError);
    do { // the listener goes a moment behind the connections
        program.abort();
        program.connectToHost(Text("127.0.0.1"), static_cast<quint16>(port));
    } while (program.waitForConnected(kDeadline));
    EXPECT_EQ(program.error(), QAbstractSocket::ConnectionRefusedError);
    device.Say(R"({"do":"return"})");
    device.Say(R"({"do":"dance"})");
    ASSERT_TRUE(device.WaitForOutput("dance\\\"\"}\n"));
    QTcpSocket again;
    again.connectToHost(Text("127.0.0.1"), static_cast<quint16>(port));
    while (!again.waitForConnected(kDeadline) && again.error() == QAbstractSocket::ConnectionRefusedError)
        again.connectToHost(Text("127.0.0.1"), static_cast<quint16>(port)); // it has not read so far
    Say(again, "ask\r");
    EXPECT_EQ(Read(again, 7).toStdString(), "answer\r");
    device.Finish();
    EXPECT_EQ(device.ExitCode(), 0) << device.Output().toStdString();
}

TEST_F(TrafficCommands, ARecordingThatCannotBeginLeavesTheFileThatIsThere) {
    GivenDevice();
    const QByteArray kept =
        "{\"traffic\":1,\"kind\":\"tcp\",\"device\":\"127.0.0.1:1\"}\n{\"at\":1,\"event\":\"end\"}\n";
    file = line.File(Text("kept.traffic"), kept);
    const QString absent = line.Folder() + Text("/absent.traffic");
    for (const QString& name : {file, absent}) {
        line.Run({Text("record"), Text("--tcp"), Text("127.0.0.1:%1").arg(server.serverPort()), Text("--listen"),
                  Text("127.0.0.1:%1").arg(server.serverPort()), name});
        EXPECT_EQ(line.ExitCode(), 2);
        EXPECT_TRUE(line.Errors().contains(Text("in use"))) << line.Errors().toStdString();
    }
    EXPECT_EQ(ReadAll(file).toStdString(), kept.toStdString());
    EXPECT_FALSE(QFile::exists(absent));
}

TEST_F(TrafficCommands, ASecondRecordingIntoTheSameFileIsRefused) {
    GivenDevice();
    BeginToRecord();
    device.Run({Text("record"), Text("--tcp"), Text("127.0.0.1:%1").arg(server.serverPort()), file});
    EXPECT_EQ(device.ExitCode(), 2);
    EXPECT_TRUE(device.Errors().contains(Text("another recording is being written into it")))
        << device.Errors().toStdString();
    line.Interrupt();
    line.Finish();
    EXPECT_EQ(line.ExitCode(), 0) << line.Errors().toStdString();
    EXPECT_TRUE(ReadAll(file).startsWith("{\"began\"")) << ReadAll(file).toStdString();
}

TEST_F(TrafficCommands, ARecordingThatMayNotGrowEndsAndTheTrafficGoesOn) {
    GivenDevice();
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small{4096, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0); // for the program, which inherits it
    BeginToRecord();
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
    QTcpSocket program;
    Connect(program, PortOf(line));
    ASSERT_TRUE(server.waitForNewConnection(kDeadline));
    QTcpSocket* ours = server.nextPendingConnection();
    const QByteArray piece(8000, 'x');
    Say(program, piece.constData());
    EXPECT_EQ(Read(*ours, piece.size()).size(), piece.size());
    ASSERT_TRUE(line.WaitForErrors("the recording has ended")) << line.Errors().toStdString();
    Say(*ours, "answer\r");
    EXPECT_EQ(Read(program, 7).toStdString(), "answer\r");
    line.Interrupt();
    line.Finish();
    EXPECT_EQ(line.ExitCode(), 2) << line.Errors().toStdString();
    EXPECT_TRUE(ReadAll(file).endsWith("}\n"));
}

TEST_F(TrafficCommands, WhatCannotBeIsToldBeforeAnythingBegins) {
    const std::pair<QStringList, const char*> wrong[] = {
        {{Text("record"), Text("x.traffic")}, "record needs one of --tcp, --udp and --serial"},
        {{Text("record"), Text("--tcp"), Text("1:2"), Text("--udp"), Text("1:2"), Text("x.traffic")}, "needs one of"},
        {{Text("record"), Text("--tcp"), Text("beamer"), Text("x.traffic")}, "\"beamer\" is no [LISTEN:]HOST:PORT"},
        {{Text("record"), Text("--serial"), Text("/dev/null"), Text("--line"), Text("fast"), Text("x.traffic")},
         "\"fast\" is no BAUD[,BITS][,rts]"},
        {{Text("record"), Text("--tcp"), Text("127.0.0.1:1"), Text("--mischief"), Text("1"), Text("--pranks"),
          Text("slit"), Text("x.traffic")},
         "there is no prank \"slit\"; did you mean \"split\"?"},
        {{Text("record"), Text("--tcp"), Text("127.0.0.1:1"), Text("--mischief"), Text("some"), Text("x.traffic")},
         "--mischief needs a whole number"},
        {{Text("record"), Text("--tcp"), Text("127.0.0.1:1"), Text("/nowhere/x.traffic")}, "No such file"},
        {{Text("record"), Text("--tcp"), Text("127.0.0.1:1"), line.File(Text("notes"), "dear")},
         "notes: is there, and is no recording"},
        {{Text("record"), Text("--tcp"), Text("127.0.0.1:0"), Text("x.traffic")},
         "127.0.0.1:0: a device has no port 0"},
        {{Text("replay"), Text("/nowhere/x.traffic")}, "/nowhere/x.traffic"},
        {{Text("replay"), line.File(Text("letters"), "dear")}, "letters:1: "},
    };
    line.SetWorkingFolder(line.Folder());
    for (const auto& [words, problem] : wrong) {
        line.Run(words);
        EXPECT_EQ(line.ExitCode(), 2) << problem;
        EXPECT_TRUE(line.Errors().contains(Text(problem))) << problem << ": " << line.Errors().toStdString();
    }
}

namespace {

/// An evening that was recorded against the real program, played again without it.
struct Evening {
    const char* name;
    const char* driver; ///< path below the root of the sources
    const char* show;
    const char* device; ///< in the show
    const char* kind;
    bool anyOrder;        ///< the driver polls
    const char* settings; ///< further ones
};

constexpr Evening kEvenings[] = {
    {"pjlink", "examples/projector/pjlink.js", "tests/StageHost/lines/evenings/pjlink.json", "beamer", "tcp", true,
     "poll=200"},
    {"mpd", "tests/StageHost/lines/evenings/mpd.js", "tests/StageHost/lines/evenings/mpd.json", "player", "tcp", true,
     ""},
    {"osc", "tests/StageHost/lines/evenings/osc.js", "tests/StageHost/lines/evenings/osc.json", "desk", "udp", false,
     ""},
};

/// What is wrong with a driver, and how that shows.
struct Break {
    const char* evening;
    const char* right;
    const char* wrong;
    const char* shows; ///< in what the replay or the show tells
};

constexpr Break kBreaks[] = {
    {"pjlink", "\"%1\" + name + \" ?\"", "\"%1\" + name + \"?\"", R"("nearest":"%1NAME ?\\r","unknown":"%1NAME?\\r")"},
    {"pjlink", "\"picture on\": \"11\"", "\"picture on\": \"12\"",
     R"("nearest":"%1AVMT 11\\r","unknown":"%1AVMT 12\\r")"},
    {"pjlink", "current.line + \"\\r\"", "current.line + \"\\n\"", R"("unknown":"%1NAME ?\\n")"},
    {"pjlink", "[\"off\", \"on\", \"cooling\", \"warming up\"]", "[\"off\", \"on\", \"warming up\", \"cooling\"]",
     "wait until beamer.Power is warming up"},
    {"pjlink", "cannot do that now\"", "cannot do this now\"", "Select input"},
    {"mpd", "\"random \" + (random === \"on\" ? 1 : 0)", "\"random \" + random",
     R"("nearest":"random 1\\n","unknown":"random on\\n")"},
    {"mpd", "\"setvol \" +", "\"volume \" +", R"("nearest":"setvol 40\\n","unknown":"volume 40\\n")"},
    {"mpd", "line + \"\\n\"", "line + \"\\r\\n\"", R"("unknown":"status\\r\\n")"},
    {"mpd", "driver.Device.Volume = Number(value)", "driver.Device.Volume = Number(value) + 1",
     "wait until player.Volume is 40"},
    {"mpd", "answer.substr(0, 3) === \"ACK\"", "answer.substr(0, 3) === \"NAK\"", "There is no such song"},
    {"osc", "while (text.length % 4)", "while (text.length % 8)", R"("unknown":"/ch/1/fader)"},
    {"osc", "number >>> 24", "number >>> 25", R"("unknown":"/ch/1/fader)"},
    {"osc", "\"/mute\", \"i\"", "\"/mute\", \"f\"", R"("unknown":"/ch/12/mute)"},
    {"osc", "on === \"on\" ? 1 : 0", "on === \"off\" ? 1 : 0", R"("unknown":"/ch/12/mute)"},
    {"osc", "this._connection.say(message(address", "if (address !== \"/scene\") this._connection.say(message(address",
     R"("nearest":"/ch/1/fader)"},
};

class ReplayedEvenings : public testing::Test {
protected:
    /// Plays one. @param change of the driver. @return what the show and the replay tell.
    QString Play(const Evening& evening, const Break* change = nullptr) {
        QByteArray driver = ReadAll(Text(STAGEHOST_ROOT "/") + Text(evening.driver));
        if (change != nullptr) {
            EXPECT_TRUE(driver.contains(change->right)) << change->right;
            driver.replace(change->right, change->wrong);
        }
        const QString name = Text(evening.driver).section(QLatin1Char('/'), -1);
        host.File(name, driver);
        host.File(Text("connection.js"), ReadAll(Text(STAGEHOST_ROOT "/templates/connection.js")));
        QByteArray show = ReadAll(Text(STAGEHOST_ROOT "/") + Text(evening.show));
        if (change != nullptr) // what never comes needs not be waited for any longer
            show.replace("\"within\": 60000", "\"within\": 2000").replace("\"within\": 20000", "\"within\": 2000");
        QStringList words{Text("replay"), Text("--json"), Text("--fast"),
                          Text(STAGEHOST_ROOT "/tests/StageHost/lines/evenings/%1.traffic").arg(Text(evening.name))};
        if (evening.anyOrder)
            words += Text("--any-order");
        device.Begin(words);
        EXPECT_TRUE(device.WaitForOutput("}\n")) << device.Errors().toStdString();
        QStringList run{Text("run"), host.File(Text("show.json"), show), Text("--set"),
                        Text("%1.port=%2").arg(Text(evening.device)).arg(PortOf(device, evening.kind))};
        if (*evening.settings != '\0')
            run += {Text("--set"), Text("%1.%2").arg(Text(evening.device), Text(evening.settings))};
        host.Run(run);
        device.Finish();
        return host.Output() + device.Output();
    }

    QString Told() const {
        return QStringList(device.Output().split(QLatin1Char('\n')).filter(Text("unknown"))).join(QLatin1Char('\n'));
    }

    StageHostProcess host;
    StageHostProcess device;
};

} // namespace

TEST_F(ReplayedEvenings, GoWellEachTimeWithTheSameResults) {
    const int rounds =
        qEnvironmentVariableIsSet("REPLAYED_EVENINGS") ? qEnvironmentVariableIntValue("REPLAYED_EVENINGS") : 3;
    for (const Evening& evening : kEvenings) {
        QString first;
        for (int round = 0; round < rounds; ++round) {
            Play(evening);
            EXPECT_EQ(host.ExitCode(), 0) << evening.name << host.Output().toStdString() << host.Errors().toStdString();
            EXPECT_EQ(device.ExitCode(), 0) << evening.name << Told().toStdString();
            QString steps = host.Output();
            steps.replace(QRegularExpression(Text("[0-9.]+ ms")), Text("ms"));
            if (round == 0)
                first = steps;
            ASSERT_EQ(steps.toStdString(), first.toStdString()) << evening.name << " in round " << round;
        }
    }
}

TEST_F(ReplayedEvenings, FailWhenTheDriverIsBrokenAndSayWhere) {
    for (const Break& change : kBreaks) {
        for (const Evening& evening : kEvenings) {
            if (Text(evening.name) != Text(change.evening))
                continue;
            const QString told = Play(evening, &change);
            EXPECT_TRUE(host.ExitCode() != 0 || device.ExitCode() != 0) << change.wrong;
            EXPECT_TRUE(told.contains(Text(change.shows))) << change.wrong << "\n" << told.toStdString();
        }
    }
}
