#pragma once

#include <csignal>

#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QFile>

#include "StageHostProcess.h"

/// Shows with peers, as tests play them.
namespace peershow {

inline QString Text(const char* text) {
    return QString::fromUtf8(text);
}

inline QByteArray TextOf(const char* path) {
    QFile file(Text(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline constexpr const char* kDriver = R"js(// @include connection.js
({
    Info: { Setup: { host: { Name: "Host" }, port: { Name: "Port", MinValue: 1, MaxValue: 65535 } },
            Variables: { Online: { Type: "Enum", Items: ["no", "yes"] } } },
    Setup: { host: "127.0.0.1", port: 1 },
    Device: { Online: "no", Last: "", Opens: 0 },
    _mStart: function () {
        var driver = this;
        this._connection = new Connection({
            transport: Connection.tcp(this.Setup.host, this.Setup.port),
            framing: Connection.lines("\r"),
            answerTime: 1000,
            status: function (word) {
                driver.Device.Online = word === "online" ? "yes" : "no";
                driver.Device.Opens = Number(driver.Device.Opens) + (word === "online" ? 1 : 0);
            },
            frame: function (line) { driver.Device.Last = line; }
        });
        this._connection.open();
    },
    _mStop: function () { this._connection.close(); },
    Ask: function (text) { this._connection.command(text, function (answer) { return answer; }); }
}))js";

inline constexpr const char* kFake = "var level = 1, d = Counterpart.tcp({ lines: '\\r' });\n"
                                     "d.onLine = function (c, t) { c.say(t + level + '\\r'); };\n"
                                     "function setLevel(l) { level = l + 1; return 'was set'; }\n"
                                     "function push(t) { d.say(t + '\\r'); }\n"
                                     "function die() { nothing(); }\n"
                                     "function loop() { for (;;) {} }\n";

inline constexpr const char* kObstinate =
    "trap : TERM HUP INT; setsid sh -c 'trap : TERM HUP; echo $$ > child; while :; do sleep 100; done' & "
    "echo $$ > program; while [ ! -s child ]; do sleep 0.01; done; echo ready; while :; do sleep 100; done";

class PeersOfAShow : public testing::Test {
protected:
    PeersOfAShow() {
        host.SetWorkingFolder(host.Folder());
        host.File(Text("connection.js"), TextOf(STAGEHOST_ROOT "/templates/connection.js"));
        host.File(Text("driver.js"), kDriver);
        host.File(Text("fake.js"), kFake);
    }

    /// A show with a driver and its peer, and these steps behind the one that finds it.
    QString Show(const QByteArray& steps) const {
        return host.File(Text("show.json"), R"({"peers":[{"name":"fake","script":"fake.js"}],
            "devices":[{"name":"dev","driver":"driver.js","settings":{"host":{"peer":"fake"},"port":{"peer":"fake"}}}],
            "steps":[{"wait":{"until":"dev.Online = yes","within":30000}})" +
                                                (steps.isEmpty() ? QByteArray() : "," + steps) + "]}");
    }

    void Play(const QByteArray& steps, const QStringList& options = {}) {
        host.Run(options + QStringList{Text("run"), Show(steps)});
    }

    void ExpectWell() const {
        EXPECT_EQ(host.ExitCode(), 0) << host.Output().toStdString() << host.Errors().toStdString();
    }

    /// A show of peers alone.
    void PlayPeers(const QByteArray& peers, const QByteArray& steps = {}, const QByteArray& more = {}) {
        host.Run({Text("run"),
                  host.File(Text("peers.json"), "{\"peers\":[" + peers + "],\"steps\":[" + steps + "]" + more + "}")});
    }

    static QByteArray Program(const char* name, const char* script) {
        return QByteArray("{\"name\":\"") + name + R"(","run":["sh","-c",")" + script + "\"]}";
    }

    static QByteArray Ask(const char* text, const char* answer) {
        return QByteArray(R"({"device":"dev","command":"Ask","params":{"text":")") + text +
               R"("},"expect":{"result":")" + answer + "\"}}";
    }

    static QByteArray Do(const char* deed) { return QByteArray("{\"peer\":\"fake\",") + deed + "}"; }

    static QByteArray Until(const char* condition) {
        return QByteArray("{\"wait\":{\"until\":\"") + condition + "\",\"within\":30000}}";
    }

    /// Waits until a process has gone.
    static bool HasEnded(qint64 process) {
        const QDeadlineTimer deadline(30000);
        while (QFile::exists(Text("/proc/%1/stat").arg(process)) && !deadline.hasExpired()) {
            QFile stat(Text("/proc/%1/stat").arg(process));
            if (stat.open(QIODevice::ReadOnly) && stat.readAll().contains(") Z "))
                return true;
        }
        return !deadline.hasExpired();
    }

    /// A program that asks for the hardest end: its child is in a session of its own and hears of nothing, and itself
    /// reads nothing. Begins a show of it, in which the only device never comes back.
    void BeginWithObstinateProgram() {
        host.File(Text("loop.js"), "({ Loop: function () { print(\"loops\"); for (;;) {} } })");
        host.Begin({Text("run"), host.File(Text("hard.json"), "{\"peers\":[" + Program("hard", kObstinate) + R"(],
            "devices":[{"name":"dev","driver":"loop.js"}],"steps":[{"device":"dev","command":"Loop"}]})")});
        ASSERT_TRUE(host.WaitForErrors("loops"));
        ASSERT_GT(ProcessIn("child"), 0);
    }
    /// Waits until the host does not hear SIGTERM any more: the next one ends it at once.
    bool HasNotedInterrupt() const {
        const quint64 bit = quint64(1) << (SIGTERM - 1);
        const QDeadlineTimer deadline(30000);
        quint64 caught = bit;
        while ((caught & bit) != 0 && !deadline.hasExpired()) {
            const QByteArray status = TextOf(Text("/proc/%1/status").arg(host.ProcessId()).toLatin1().constData());
            caught = status.mid(status.indexOf("SigCgt:") + 7, 17).trimmed().toULongLong(nullptr, 16);
        }
        return (caught & bit) == 0;
    }
    void ExpectObstinateHasEnded() const {
        EXPECT_TRUE(HasEnded(ProcessIn("child")));
        EXPECT_TRUE(HasEnded(ProcessIn("program")));
    }

    qint64 ProcessIn(const char* name) const {
        QFile file(host.Folder() + QLatin1Char('/') + Text(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().toLongLong() : 0;
    }

    StageHostProcess host;
};

} // namespace peershow
