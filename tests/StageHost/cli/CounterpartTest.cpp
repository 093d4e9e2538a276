#include <fcntl.h>
#include <sys/socket.h>

#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUdpSocket>

#include "StageHostProcess.h"

/// "stagehost counterpart": a device that a script plays, as a driver and as a show meet it.

namespace {

constexpr int kLongest = 60000; // ms

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

class Counterpart : public testing::Test {
protected:
    /// Starts a script. @return its ready line.
    QJsonObject Given(const char* script, const QStringList& more = {}) {
        host.SetWorkingFolder(host.Folder());
        host.File(Text("fake.js"), script);
        host.Begin(QStringList{Text("counterpart"), Text("--json"), Text("fake.js")} + more);
        EXPECT_TRUE(host.WaitForOutput("\n")) << host.Errors().toStdString();
        return QJsonDocument::fromJson(host.Output().section(QLatin1Char('\n'), 0, 0).toUtf8()).object();
    }

    void GivenTcp(const char* script, const QStringList& more = {}) {
        const int port = Given(script, more).value(Text("tcp")).toInt();
        Connect(port);
    }

    /// One that leaves and comes back may be away for a moment.
    void Connect(int port) {
        const QDeadlineTimer deadline(kLongest);
        do {
            socket.abort();
            socket.connectToHost(QStringLiteral("127.0.0.1"), static_cast<quint16>(port));
        } while (!socket.waitForConnected(kLongest) && !deadline.hasExpired());
        ASSERT_EQ(socket.state(), QAbstractSocket::ConnectedState) << host.Output().toStdString();
    }

    /// Waits for so many bytes. @return what has come.
    QByteArray Read(int size) {
        QByteArray bytes = socket.readAll();
        while (bytes.size() < size && socket.waitForReadyRead(kLongest))
            bytes += socket.readAll();
        return bytes;
    }

    QByteArray Ask(const QByteArray& bytes, int size) {
        socket.write(bytes);
        return Read(size);
    }

    bool IsSentAway() {
        return socket.state() == QAbstractSocket::UnconnectedState || socket.waitForDisconnected(kLongest);
    }

    /// Runs a script that does not get ready. @return what is said of it.
    QString Complaint(const char* script, const QStringList& more = {}) {
        host.SetWorkingFolder(host.Folder());
        host.File(Text("fake.js"), script);
        host.Run(QStringList{Text("counterpart"), Text("fake.js")} + more);
        EXPECT_NE(host.ExitCode(), 0);
        EXPECT_EQ(host.Output(), QString());
        return host.Errors().trimmed();
    }

    /// Plays with this standard input. @param form an option.
    void ExpectToPlayOn(const char* input, const char* form);

    StageHostProcess host;
    QTcpSocket socket;
};

constexpr const char* kEcho = "var d = Counterpart.tcp({ lines: '\\r' });\n"
                              "d.onOpen = function (c) { c.say('HELLO\\r'); };\n"
                              "d.onLine = function (c, line) { c.say(line + '!\\r'); };\n";

void Counterpart::ExpectToPlayOn(const char* input, const char* form) {
    SCOPED_TRACE(std::string(input) + ' ' + form);
    host.SetWorkingFolder(host.Folder());
    host.File(Text("fake.js"), kEcho);
    host.BeginWithInput(input, {Text("counterpart"), Text(form), Text("fake.js")});
    ASSERT_TRUE(host.WaitForOutput("\n")) << host.Errors().toStdString();
    static const QRegularExpression port(Text("tcp\":(\\d+)|127\\.0\\.0\\.1:(\\d+)"));
    const auto match = port.match(host.Output());
    Connect((match.captured(1) + match.captured(2)).toInt());
    EXPECT_EQ(Read(6), "HELLO\r");
    for (int turn = 0; turn < 50; ++turn) // an end that is read is met within a few of them
        ASSERT_EQ(Ask("a\r", 3), "a!\r") << turn;
    host.Interrupt();
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 0);
}

} // namespace

TEST_F(Counterpart, SpeaksFirstAndAnswersLines) {
    GivenTcp(kEcho);
    EXPECT_EQ(Read(6), "HELLO\r");
    EXPECT_EQ(Ask("a\rb\r", 6), "a!\rb!\r");
    EXPECT_TRUE(host.WaitForOutput("\"received\":\"b\"")) << host.Output().toStdString();
    EXPECT_TRUE(host.WaitForOutput("\"said\":\"b!\\r\"")) << host.Output().toStdString();
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 0);
}

TEST_F(Counterpart, TellsPeopleTheSameFacts) {
    host.SetWorkingFolder(host.Folder());
    host.File(Text("fake.js"), kEcho);
    host.Begin({Text("counterpart"), Text("fake.js"), Text("--seed"), Text("5")});
    ASSERT_TRUE(host.WaitForOutput("(seed 5)\n"));
    const QString ready = host.Output();
    EXPECT_TRUE(ready.startsWith(Text("fake.js plays at tcp 127.0.0.1:"))) << ready.toStdString();
    Connect(ready.section(QLatin1Char(':'), 1).section(QLatin1Char(' '), 0, 0).toInt());
    Ask("a\r", 9);
    EXPECT_TRUE(host.WaitForOutput("1 > a\n")) << host.Output().toStdString();
    EXPECT_TRUE(host.WaitForOutput("1 < a!\\r\n")) << host.Output().toStdString();
    host.Finish();
}

TEST_F(Counterpart, IsReachedWhereItIsTold) {
    QTcpSocket any;
    ASSERT_TRUE(any.bind(QHostAddress(QHostAddress::LocalHost))); // a port that is free a moment later
    const quint16 port = any.localPort();
    any.abort();
    GivenTcp(kEcho, {Text("--listen"), Text("127.0.0.1:%1").arg(port)});
    EXPECT_EQ(socket.peerPort(), port);
    EXPECT_EQ(Read(6), "HELLO\r");
}

TEST_F(Counterpart, TellsThePortThatItCannotHave) {
    QTcpServer taken;
    ASSERT_TRUE(taken.listen(QHostAddress(QHostAddress::LocalHost)));
    const QString place = Text("127.0.0.1:%1").arg(taken.serverPort());
    EXPECT_TRUE(Complaint(kEcho, {Text("--listen"), place})
                    .startsWith(Text("fake.js:1: Error: %1: Address already in use").arg(place)))
        << host.Errors().toStdString();
}

TEST_F(Counterpart, WhatItPrintsIsANoteAndNoSignOfReadiness) {
    Given("print('warm', 3);\nCounterpart.tcp();");
    EXPECT_TRUE(host.WaitForOutput("\"ready\"")) << host.Output().toStdString();
    EXPECT_TRUE(host.Output().startsWith(Text("{\"note\":\"warm 3\"}\n"))) << host.Output().toStdString();
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 0);
}

TEST_F(Counterpart, CutsFramesAsItIsTold) {
    GivenTcp("var d = Counterpart.tcp({ prefix: 2, whole: true });\n"
             "d.onFrame = function (c, f) { c.say(f.length + f + bytes(0xFF, 0)); };");
    EXPECT_EQ(Ask(QByteArray("\x00\x05"
                             "abc",
                             5),
                  6),
              QByteArray("3abc\xFF\x00", 6));
    host.Finish();
    GivenTcp("var d = Counterpart.tcp({ frame: function (b) { return Number(b.charAt(0)); } });\n"
             "d.onFrame = function (c, f) { c.say('[' + f + ']'); };");
    EXPECT_EQ(Ask("2a3bc", 9), "[2a][3bc]");
    host.Finish();
    GivenTcp("var d = Counterpart.tcp();\nd.onBytes = function (c, b) { c.say('<' + b + '>'); };");
    EXPECT_EQ(Ask("raw", 5), "<raw>");
}

TEST_F(Counterpart, AnswersDatagrams) {
    const int port = Given("var d = Counterpart.udp();\nd.onDatagram = function (c, t) { c.say(t + t); };")
                         .value(Text("udp"))
                         .toInt();
    QUdpSocket udp;
    ASSERT_TRUE(udp.bind(QHostAddress(QHostAddress::LocalHost)));
    udp.writeDatagram("ab", QHostAddress(QHostAddress::LocalHost), static_cast<quint16>(port));
    ASSERT_TRUE(udp.waitForReadyRead(kLongest));
    char answer[16] = {};
    EXPECT_EQ(udp.readDatagram(answer, sizeof answer), 4);
    EXPECT_STREQ(answer, "abab");
}

TEST_F(Counterpart, MakesASerialLineOfItsOwn) {
    const QString path = Given("var d = Counterpart.serial({ lines: '\\x03', start: '\\x02' });\n"
                               "d.onLine = function (c, t) { c.say('\\x02OK ' + t + '\\x03'); };")
                             .value(Text("serial"))
                             .toString();
    // Without O_NOCTTY the line would become the terminal of a leader of a session, and its end a SIGHUP to these
    // tests.
    const int port = open(path.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    QFile line;
    ASSERT_TRUE(line.open(port, QIODevice::ReadWrite | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle))
        << path.toStdString();
    line.write("\x02IN?\x03");
    QByteArray answer;
    char character = 0;
    while (!answer.endsWith('\x03') && line.read(&character, 1) == 1)
        answer += character;
    EXPECT_EQ(answer, "\x02OK IN?\x03");
}

TEST_F(Counterpart, OfSeveralEndpointsEachHasItsName) {
    const QJsonObject ready = Given("var a = Counterpart.tcp({ name: 'control', lines: '\\r' });\n"
                                    "var b = Counterpart.udp({ name: 'meter' });\n"
                                    "a.onLine = function (c, t) { c.say(a.port + ' ' + b.port + '\\r'); };");
    const QJsonObject ends = ready.value(Text("endpoints")).toObject();
    const int control = ends.value(Text("control")).toObject().value(Text("tcp")).toInt();
    const int meter = ends.value(Text("meter")).toObject().value(Text("udp")).toInt();
    Connect(control);
    EXPECT_EQ(Ask("x\r", 4).trimmed(), QByteArray::number(control) + ' ' + QByteArray::number(meter));
}

TEST_F(Counterpart, HasTimersThatCanBeCancelled) {
    GivenTcp("var d = Counterpart.tcp(), beats = 0;\n"
             "d.onOpen = function (c) {\n"
             "    var never = after(20, function () { c.say('never'); });\n"
             "    cancel(never);\n"
             "    var id = every(5, function () { c.say('.'); if (++beats === 3) { cancel(id); after(30, function () { "
             "c.say('end'); }); } });\n"
             "};");
    EXPECT_EQ(Read(6), "...end");
}

TEST_F(Counterpart, ClosesInOrderBehindWhatItSays) {
    GivenTcp("var d = Counterpart.tcp();\nd.onOpen = function (c) { c.say('bye'); c.close(); c.say('lost'); };");
    EXPECT_EQ(Read(3), "bye");
    EXPECT_TRUE(IsSentAway());
    EXPECT_EQ(socket.readAll(), "");
}

TEST_F(Counterpart, HearsOfLinesThatAPrankHasEndedAndOfNoneThatItHasClosedItself) {
    const char* script =
        "var d = Counterpart.tcp();\n"
        "d.onClose = function (c) { note('closed ' + c.id + ' ' + c.isOpen + ' ' + d.lines().length); };\n"
        "d.onBytes = function (c, b) { if (b === 'close') c.close(); else c.say('text'); };\n"
        "d.misbehave('cut');";
    GivenTcp(script);
    const quint16 port = socket.peerPort();
    socket.write("close");
    EXPECT_TRUE(IsSentAway());
    Connect(port);
    socket.write("say");
    socket.flush();
    EXPECT_TRUE(host.WaitForOutput("closed 2 false 0")) << host.Output().toStdString();
    EXPECT_FALSE(host.Output().contains(Text("closed 1")));
}

TEST_F(Counterpart, ClosesBehindAProgramThatHasEndedAndHearsOfThat) {
    GivenTcp("var closed = 0, d = Counterpart.tcp({ lines: '\\r' });\n"
             "d.onClose = function (c, why) { ++closed; note('closed ' + c.id + why); };\n"
             "d.onLine = function (c, t) { c.say(d.lines().length + ' open, ' + closed + ' closed\\r'); };");
    EXPECT_EQ(Ask("q\r", 17), "1 open, 0 closed\r");
    const quint16 port = socket.peerPort();
    socket.disconnectFromHost();
    ASSERT_TRUE(IsSentAway());
    ASSERT_TRUE(host.WaitForOutput("closed 1\""));
    Connect(port);
    EXPECT_EQ(Ask("q\r", 17), "1 open, 1 closed\r");
}

TEST_F(Counterpart, SpeaksOnBehindAnEndOfTheProgramWhenItsScriptWantsTo) {
    GivenTcp("var d = Counterpart.tcp({ lines: '\\r' });\n"
             "d.onEnd = function (c) { after(20, function () { c.say('late\\r'); c.close(); }); };");
    ASSERT_EQ(::shutdown(static_cast<int>(socket.socketDescriptor()), SHUT_WR), 0);
    EXPECT_EQ(Read(5), "late\r");
    EXPECT_TRUE(IsSentAway());
}

TEST_F(Counterpart, TellsNothingAsSaidBehindTheEndOfALine) {
    GivenTcp("var d = Counterpart.tcp({ lines: '\\r' });\n"
             "d.onOpen = function (c) { c.say('bye\\r'); c.close(); c.say('after\\r'); note('over'); };");
    EXPECT_EQ(Read(4), "bye\r");
    ASSERT_TRUE(host.WaitForOutput("\"over\""));
    EXPECT_TRUE(host.Output().contains(Text("\"said\":\"bye"))) << host.Output().toStdString();
    EXPECT_FALSE(host.Output().contains(Text("\"said\":\"after"))) << host.Output().toStdString();
}

TEST_F(Counterpart, MayLeaveFromInsideItsOwnFraming) {
    GivenTcp("var d = Counterpart.tcp({ frame: function (b) { d.leave(); d.comeBack(); return b.length; } });\n"
             "d.onFrame = function () { note('never'); };");
    const quint16 port = socket.peerPort();
    socket.write("x");
    EXPECT_TRUE(IsSentAway());
    Connect(port);
    host.Say("call none");
    EXPECT_TRUE(host.WaitForOutput("refused"));
}

TEST_F(Counterpart, TakesOptionsByTheKindOfTheirDefaults) {
    const char* script = "var d = Counterpart.tcp(), n = option('count', 2), w = option('word', 'x'), t = "
                         "option('sure', false);\n"
                         "d.onOpen = function (c) { c.say((n + 1) + w + (t ? 'yes' : 'no')); };";
    GivenTcp(script, {Text("count=4"), Text("sure=true")});
    EXPECT_EQ(Read(5), "5xyes");
    host.Finish();
    EXPECT_EQ(
        Complaint(script, {Text("cuont=4")}),
        Text("fake.js: the script has no option \"cuont\"; did you mean \"count\"? There are: count, word, sure"));
    EXPECT_TRUE(Complaint(script, {Text("count=x")})
                    .startsWith(Text("fake.js:1: Error: the option \"count\" takes a number, not \"x\"")));
    EXPECT_EQ(Complaint(script, {Text("count")}), Text("expected NAME=VALUE, not \"count\""));
}

TEST_F(Counterpart, IsToldWhatItHasDoneWrong) {
    EXPECT_EQ(Complaint("var d = Counterpart.tcp({ lines: '\\r' };").toStdString(),
              "fake.js:1:40: SyntaxError: expected \",\" or \")\" before \";\"\n"
              "    | var d = Counterpart.tcp({ lines: '\\r' };\n"
              "    |                                        ^");
    EXPECT_EQ(Complaint("1;"),
              Text("fake.js: opens nothing: a counterpart begins with Counterpart.tcp, udp or serial"));
    EXPECT_TRUE(
        Complaint("\nCounterpart.tcp({ line: 'x' });")
            .startsWith(Text("fake.js:2: Error: Counterpart.tcp: there is no \"line\"; did you mean \"lines\"?")));
    EXPECT_EQ(Complaint("var d = Counterpart.tcp({ lines: 'x' });\nd.onFrame = function () {};"),
              Text("fake.js: nothing calls \"onFrame\" of tcp; there are: onOpen, onEnd, onClose, onLine"));
    EXPECT_EQ(Complaint("var d = Counterpart.tcp();\nd.onBytes = 3;"),
              Text("fake.js: \"onBytes\" of tcp is no function"));
    EXPECT_TRUE(
        Complaint("Counterpart.tcp({ port: 99999 });")
            .startsWith(Text("fake.js:1: Error: Counterpart.tcp: \"port\" takes a whole number from 0 to 65535, "
                             "not 99999")))
        << host.Errors().toStdString();
    EXPECT_TRUE(Complaint("Counterpart.tcp({ most: 1e12 });")
                    .startsWith(Text("fake.js:1: Error: Counterpart.tcp: \"most\" takes a whole number from 1 to ")))
        << host.Errors().toStdString();
    EXPECT_TRUE(
        Complaint("Counterpart.udp(5);").startsWith(Text("fake.js:1: Error: Counterpart.udp takes an object, not 5")))
        << host.Errors().toStdString();
    EXPECT_TRUE(Complaint("Counterpart.tcp({ lines: '\\n', length: 3 });")
                    .startsWith(Text("fake.js:1: Error: Counterpart.tcp takes one of \"lines\" and \"length\"")))
        << host.Errors().toStdString();
    EXPECT_TRUE(Complaint("Counterpart.tcp(); Counterpart.udp();")
                    .startsWith(Text("fake.js:1: Error: of several endpoints each needs a \"name\", but for one")));
    EXPECT_TRUE(Complaint("Counterpart.tcp().misbehave([]);")
                    .startsWith(Text("fake.js:1: Error: misbehave takes a word at least; obey ends it")));
    EXPECT_TRUE(Complaint("function f() { every(0, f); }\nf();")
                    .endsWith(Text("at f (fake.js:1)\n    at the top level (fake.js:2)")))
        << host.Errors().toStdString();
    host.Run({Text("counterpart"), Text("none.js")});
    EXPECT_EQ(host.ExitCode(), 2);
}

TEST_F(Counterpart, AFailureInAHandlerIsToldWithItsPlaceAndTheDeviceGoesOn) {
    GivenTcp("var d = Counterpart.tcp({ lines: '\\r' });\n"
             "d.onLine = function (c, t) {\n"
             "    if (t === 'bad') nothing(1);\n"
             "    if (t === 'wide') c.say('\\u20AC');\n"
             "    c.say('ok');\n};");
    EXPECT_EQ(Ask("bad\rwide\rgood\r", 2), "ok");
    EXPECT_TRUE(host.WaitForOutput("fake.js:3: ReferenceError: Can't find variable: nothing"));
    EXPECT_TRUE(host.WaitForOutput("| if (t === 'bad') nothing(1);"));
    EXPECT_TRUE(host.WaitForOutput("fake.js:4: Error: say: the character U+20ac is no byte"))
        << host.Output().toStdString();
}

TEST_F(Counterpart, AnEndlessLoopIsBrokenOffAndTold) {
    GivenTcp("var d = Counterpart.tcp({ lines: '\\r' });\n"
             "d.onLine = function (c, t) {\n    while (t === 'loop') {}\n    c.say('ok');\n};");
    EXPECT_EQ(Ask("loop\rgood\r", 2), "ok");
    EXPECT_TRUE(host.WaitForOutput("fake.js:3: Error: the script does not come back within 3000 ms"))
        << host.Output().toStdString();
}

TEST_F(Counterpart, ALoopThatNothingBreaksOffEndsWithStandardInput) {
    GivenTcp("var d = Counterpart.tcp({ lines: '\\r' });\n"
             "d.onLine = function (c, t) { note('begun'); new Array(400000000).join(','); };");
    socket.write("x\r");
    socket.flush();
    ASSERT_TRUE(host.WaitForOutput("begun"));
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 3) << host.Errors().toStdString();
}

TEST_F(Counterpart, LeavesAndReturnsToItsPort) {
    GivenTcp(kEcho);
    const quint16 port = socket.peerPort();
    Read(6);
    host.Say(R"({"do":"leave"})");
    ASSERT_TRUE(host.WaitForOutput("{\"done\":\"leave\"}"));
    EXPECT_TRUE(IsSentAway());
    socket.connectToHost(QStringLiteral("127.0.0.1"), port);
    EXPECT_FALSE(socket.waitForConnected(kLongest));
    host.Say(R"({"do":"return"})");
    ASSERT_TRUE(host.WaitForOutput("{\"done\":\"return\"}"));
    Connect(port);
    EXPECT_EQ(Read(6), "HELLO\r");
}

TEST_F(Counterpart, NeitherReadsNorSpeaksWhileItIsStalled) {
    GivenTcp(kEcho);
    Read(6);
    host.Say("stall");
    ASSERT_TRUE(host.WaitForOutput("{\"done\":\"stall\"}"));
    socket.write("a\r");
    socket.flush();
    host.Say("call none");
    ASSERT_TRUE(host.WaitForOutput("\"refused\""));
    EXPECT_FALSE(host.Output().contains(Text("\"received\""))) << "it is read afterwards";
    host.Say("resume");
    EXPECT_EQ(Read(3), "a!\r");
}

TEST_F(Counterpart, LiesInEachOfItsWaysAndObeysAgain) {
    GivenTcp("var d = Counterpart.tcp({ lines: '\\r' });\nd.onLine = function (c, t) { c.say('truth'); };");
    const quint16 port = socket.peerPort();
    const auto lie = [&](const char* how) {
        host.Say(qPrintable(Text(R"({"do":"lie","with":"%1"})").arg(Text(how))));
        host.Say(qPrintable(Text("call %1").arg(Text(how)))); // its refusal comes behind the lie
        ASSERT_TRUE(host.WaitForOutput(qPrintable(Text("function \\\"%1\\\"").arg(Text(how)))));
    };
    lie("repeat");
    EXPECT_EQ(Ask("?\r", 10), "truthtruth");
    lie("late");
    EXPECT_EQ(Ask("?\r", 5), "truth");
    lie("nonsense");
    const QByteArray nonsense = Ask("?\r", 5);
    EXPECT_EQ(nonsense.size(), 5);
    EXPECT_NE(nonsense, "truth");
    lie("silence");
    socket.write("?\r");
    socket.flush();
    ASSERT_TRUE(host.WaitForOutput("\"prank\":\"silence\""));
    host.Say("obey");
    ASSERT_TRUE(host.WaitForOutput("{\"done\":\"obey\"}"));
    EXPECT_EQ(Ask("?\r", 5), "truth") << "nothing came of the silence";
    lie("cut");
    EXPECT_EQ(Ask("?\r", 2), "tr");
    EXPECT_TRUE(IsSentAway());
    Connect(port);
    lie("reset");
    socket.write("?\r");
    EXPECT_TRUE(IsSentAway());
    EXPECT_EQ(socket.error(), QAbstractSocket::RemoteHostClosedError);
    host.Say(R"({"do":"lie","with":"nonsens"})");
    EXPECT_TRUE(host.WaitForOutput("did you mean \\\"nonsense\\\"?")) << host.Output().toStdString();
}

TEST_F(Counterpart, TheSameSeedGivesTheSameNonsense) {
    QByteArray said[2];
    for (QByteArray& bytes : said) {
        GivenTcp("var d = Counterpart.tcp();\nd.misbehave(['nonsense', 'repeat'], 2);\n"
                 "d.onOpen = function (c) { for (var i = 0; i < 20; ++i) c.say('text' + Math.random()); c.say('.'); "
                 "d.obey(); c.say('end'); };",
                 {Text("--seed"), Text("7")});
        while (!bytes.endsWith("end") && socket.waitForReadyRead(kLongest))
            bytes += socket.readAll();
        host.Finish();
    }
    EXPECT_EQ(said[0], said[1]);
    EXPECT_GT(said[0].size(), 100);
}

TEST_F(Counterpart, LoadedAnewItGoesOnAtTheSamePlaces) {
    const char* kThree = "Counterpart.tcp();\nCounterpart.udp({ name: 'u' });\nCounterpart.serial({ name: 's' });\n";
    const QJsonObject before = Given(kThree);
    Connect(before.value(Text("tcp")).toInt());
    host.File(Text("fake.js"), QByteArray(kThree) + "Counterpart.tcp({ name: 'more' });\n");
    host.Say(R"({"do":"load"})");
    ASSERT_TRUE(host.WaitForOutput("\"done\":\"load\"")) << host.Output().toStdString();
    EXPECT_TRUE(IsSentAway());
    const QByteArray line = host.Output().split(QLatin1Char('\n')).filter(Text("\"ready\"")).value(1).toUtf8();
    QJsonObject after = QJsonDocument::fromJson(line).object();
    QJsonObject places = after.value(Text("endpoints")).toObject();
    EXPECT_GT(places.take(Text("more")).toObject().value(Text("tcp")).toInt(), 0) << line.toStdString();
    after.insert(Text("endpoints"), places);
    EXPECT_EQ(after, before) << line.toStdString();
    EXPECT_TRUE(QFile::exists(places.value(Text("s")).toObject().value(Text("serial")).toString()));
    Connect(before.value(Text("tcp")).toInt());
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 0);
}

TEST_F(Counterpart, PlaysAgainBeforeItTellsThatAnEditionDoesNotLoad) {
    GivenTcp(kEcho);
    host.File(Text("fake.js"), QByteArray(kEcho) + "missing();\n");
    host.Say(R"({"do":"load"})");
    ASSERT_TRUE(host.WaitForOutput("\"refused\"")) << host.Output().toStdString();
    QTcpSocket again;
    again.connectToHost(socket.peerAddress(), socket.peerPort());
    EXPECT_TRUE(again.waitForConnected(kLongest)) << again.errorString().toStdString();
    host.Finish();
}

TEST_F(Counterpart, IsCalledByItsShow) {
    Given("var d = Counterpart.tcp();\nfunction add(a, b) { return a + b; }\nfunction fail() { nothing(); }");
    host.Say(R"({"do":"call","function":"add","args":[2,3]})");
    EXPECT_TRUE(host.WaitForOutput(R"({"done":"call","result":"5"})")) << host.Output().toStdString();
    host.Say("call fail");
    EXPECT_TRUE(host.WaitForOutput(R"("refused":"fake.js:3: ReferenceError: Can't find variable: nothing"})"));
    host.Say("call every");
    EXPECT_TRUE(host.WaitForOutput(R"(the script has no function \"every\")"));
    host.Say("fly");
    EXPECT_TRUE(host.WaitForOutput(R"(a counterpart knows no \"fly\")"));
}

TEST_F(Counterpart, PlaysOnWhereNobodyIsAtTheOtherEndOfStandardInput) {
    for (const char* input : kInputsOfNobody) {
        for (const char* form : {"--json", "--seed=7"})
            ExpectToPlayOn(input, form);
    }
    ExpectToPlayOn(kPipeLeft, "--seed=7");
}

TEST_F(Counterpart, EndsForAProgramThatHasLeftStandardInputAlready) {
    host.SetWorkingFolder(host.Folder());
    host.File(Text("fake.js"), kEcho);
    host.BeginWithInput(kPipeLeft, {Text("counterpart"), Text("--json"), Text("fake.js")});
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 0);
}

TEST_F(Counterpart, GivesObjectsAndListsAsJson) {
    Given("Counterpart.tcp();\n"
          "function lamps() { return { on: [1, 2], name: 'a \\u00E9' }; }\n"
          "function list() { return [1, 'x']; }\n"
          "function nothing() { return null; }\n"
          "function own() { return { toString: function () { return 'its own'; } }; }\n"
          "function error() { return new Error('late'); }\n"
          "function round() { var a = {}; a.a = a; return a; }\n");
    const std::pair<const char*, const char*> results[] = {
        {"lamps", R"("result":"{\"on\":[1,2],\"name\":\"a é\"}")"},
        {"list", R"("result":"[1,\"x\"]")"},
        {"nothing", R"("result":"null")"},
        {"own", R"("result":"its own")"},
        {"error", R"("result":"Error: late")"},
    };
    for (const auto& [function, result] : results) {
        host.Say(qPrintable(Text("call ") + Text(function)));
        EXPECT_TRUE(host.WaitForOutput(result)) << function << host.Output().toStdString();
    }
    host.Say("call round");
    EXPECT_TRUE(host.WaitForOutput("\"refused\":\"fake.js: Error: what it returns is no JSON: "))
        << host.Output().toStdString();
}

TEST_F(Counterpart, AnOrderThatIsTooLongIsRefusedAndTheNextOneDone) {
    Given("Counterpart.tcp();\nfunction size(text) { return text.length; }");
    const QByteArray text(1024 * 1024, 'x');
    host.Say(R"({"do":"call","function":"size","args":[")" + text + "\"]}");
    EXPECT_TRUE(host.WaitForOutput(R"("refused":"an order of 1048619 bytes is too long; 1048576 are the most")"))
        << host.Output().toStdString();
    host.Say("call size four");
    EXPECT_TRUE(host.WaitForOutput(R"({"done":"call","result":"4"})")) << host.Output().toStdString();
}

TEST_F(Counterpart, NamesFunctionsByWhatTheyAreKeptAsOrCalledBy) {
    GivenTcp("var d = Counterpart.tcp({ lines: '\\r' });\n"
             "d.onLine = function (c, line) {\n"
             "    [1].forEach(function (x) { lamp.dim(x); });\n"
             "};\n"
             "var lamp = { level: 0,\n"
             "    dim: function(x)\n"
             "    {\n"
             "        var low = function () { return missing(x) }\n"
             "        low()\n"
             "    },\n"
             "    off: function () { absent(); } };\n"
             "var go = function () { after(1, function () { none(); }); lamp.off(); };\n");
    socket.write("x\r");
    socket.flush();
    EXPECT_TRUE(
        host.WaitForOutput("\"at a function without a name (fake.js:8)\",\"at a function without a name (fake.js:9)\","
                           "\"at forEach's function (fake.js:3)\",\"at onLine (fake.js:3)\"]"))
        << host.Output().toStdString();
    host.Say("call go");
    EXPECT_TRUE(host.WaitForOutput("\"at lamp.off (fake.js:11)\",\"at go (fake.js:12)\"]"))
        << host.Output().toStdString();
    EXPECT_TRUE(host.WaitForOutput("\"at after's function (fake.js:12)\"]")) << host.Output().toStdString();
}

TEST_F(Counterpart, EndsWithASignalWithoutComplaint) {
    Given(kEcho);
    host.Interrupt();
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 0);
    EXPECT_EQ(host.Errors(), QString());
}
