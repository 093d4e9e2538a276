#include <algorithm>
#include <utility>

#include <gtest/gtest.h>

#include <QDateTime>
#include <QRegularExpression>

#include "StageHostProcess.h"

/// Shows whose time runs faster than the computer's, with the real module.

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

class Clock : public testing::Test {
protected:
    /// What the scripts have printed, in its order, without the times.
    QStringList Printed() const {
        QStringList texts;
        const QRegularExpression line(Text(R"(^(\d\d:\d\d:\d\d)\.\d+ +\S+ +NORMAL +(.*)$)"));
        for (const QString& one : host.Errors().split(QLatin1Char('\n'))) {
            const auto match = line.match(one);
            if (match.hasMatch())
                texts += match.captured(2);
        }
        return texts;
    }

    StageHostProcess host;
};

constexpr const char* kTicker = R"(({
    Device: { Count: 0 },
    _mStart: function () {
        var device = this;
        this._begin = new Date();
        QCalverin.SetInterval(function () {
            device.Device.Count = Number(device.Device.Count) + 1;
            print("tick " + device.Device.Count + " at " + device._place());
        }, 10000);
    },
    _place: function () {
        return Math.floor((new Date() - this._begin) / 10000);
    },
    _mStop: function () {
        for (var end = new Date().getTime() + 5; new Date().getTime() < end;) ;
        print("stopped at " + this._place());
    }
}))";

TEST_F(Clock, TimersPausesAndWaitsFollowTheTimeOfTheShow) {
    host.File(Text("ticker.js"), kTicker);
    const QString show = host.File(Text("show.json"), R"({"name":"Ticks","devices":[{"name":"t","driver":"ticker.js"}],
        "steps":[{"wait":{"until":"t.Count >= 3","within":3600000}},{"pause":600000}]})");
    host.Run({Text("run"), Text("--speed"), Text("300"), show});
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_LT(host.Milliseconds(), 55000) << "ten minutes and a half";
    const QRegularExpression tick(Text("^tick (\\d+) at (\\d+)$"));
    int ticks = 0;
    int place = 0; // in tens of seconds; a busy computer leaves some of them out, at 33 ms each
    for (auto match = tick.match(Printed().value(0)); match.hasMatch(); match = tick.match(Printed().value(ticks))) {
        EXPECT_EQ(match.captured(1).toInt(), ++ticks);
        EXPECT_GE(match.captured(2).toInt(), std::max(place, ticks)) << "not before its time";
        place = match.captured(2).toInt();
    }
    EXPECT_GE(ticks, 10) << host.Errors().toStdString();
    EXPECT_GE(place, 30) << "they go on: a busy computer is not late by half of the show";
    const auto stopped = QRegularExpression(Text("^stopped at (\\d+)$")).match(Printed().last());
    EXPECT_TRUE(stopped.hasMatch()) << "the end of a show has the computer's time";
    EXPECT_GE(stopped.captured(1).toInt(), 60) << host.Errors().toStdString();
}

TEST_F(Clock, EveryWayToWaitOfAPeerFollows) {
    const QString show =
        host.File(Text("show.json"), "{\"name\":\"Waits\",\"devices\":[{\"name\":\"d\"}],\"peers\":[{\"name\":"
                                     "\"waits\",\"run\":[\"" STAGEHOST_BIN "/clockwaits\",\"600000\"]}]}");
    host.Begin({Text("watch"), Text("--speed"), Text("600"), show});
    EXPECT_TRUE(host.WaitForErrors("done\n")) << host.Errors().toStdString();
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 0);
    const QRegularExpression line(Text("waited (\\d+) (\\d+) (.*)"));
    int count = 0;
    for (auto match = line.globalMatch(host.Errors()); match.hasNext(); ++count) {
        const auto waited = match.next();
        EXPECT_GE(waited.captured(1).toLongLong(), 600000) << waited.captured(0).toStdString();
        EXPECT_NEAR(waited.captured(1).toDouble(), waited.captured(2).toDouble(), 600)
            << waited.captured(0).toStdString();
    }
    EXPECT_EQ(count, 17) << host.Errors().toStdString();
}

TEST_F(Clock, BeginsWhenTheUserSaysForPeersAsWell) {
    host.File(Text("hour.js"), "({ _mStart: function () { var d = new Date(); print('it is ' + d.getFullYear() + ' ' "
                               "+ d.getHours() + ':' + d.getMinutes()); } })");
    const QString show = host.File(Text("show.json"), R"({"devices":[{"name":"d","driver":"hour.js"}],
        "peers":[{"name":"date","run":["sh","-c","date '+here %Y %H:%M' >&2; echo ready; cat >/dev/null"]}]})");
    host.Run({Text("run"), Text("--clock"), Text("2031-12-24 19:30"), show});
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_TRUE(host.Errors().contains(Text("it is 2031 19:30"))) << host.Errors().toStdString();
    EXPECT_TRUE(host.Errors().contains(Text("here 2031 19:30"))) << host.Errors().toStdString();
}

TEST_F(Clock, AScriptThatWorksHasTwoSecondsOfTheComputerForItsAnswer) {
    host.File(Text("work.js"), "({ Work: function (ms) { for (var end = new Date().getTime() + Number(ms); new "
                               "Date().getTime() < end;) ; return 'done'; } })");
    const auto show = [&](const char* ms) {
        return host.File(Text("show.json"), QByteArray(R"({"devices":[{"name":"d","driver":"work.js"}],
            "steps":[{"device":"d","command":"Work","params":{"ms":")") +
                                                ms + "\"},\"expect\":{\"result\":\"done\"}}]}");
    };
    host.Run({Text("run"), Text("--speed"), Text("1000"), show("100000")});
    EXPECT_EQ(host.ExitCode(), 0) << "a tenth of a second: " << host.Errors().toStdString();
    host.Run({Text("run"), Text("--speed"), Text("1000"), show("1000000000")});
    EXPECT_EQ(host.ExitCode(), 3) << host.Errors().toStdString();
}

TEST_F(Clock, IsOfShowsAloneAndSaysWhatItTakes) {
    const std::pair<QStringList, const char*> rows[] = {
        {{Text("--speed"), Text("0"), Text("run"), Text("x.json")},
         "--speed needs a whole number from 1 to 3600, not \"0\""},
        {{Text("--speed"), Text("fast"), Text("run"), Text("x.json")}, "--speed needs a whole number"},
        {{Text("--speed"), Text("2"), Text("check"), Text("x.js")}, "--speed is for run, watch and test"},
        {{Text("--clock"), Text("25:00"), Text("run"), Text("x.json")},
         "--clock needs a time of the years 1970 to 2199 as 19:30"},
        {{Text("--clock"), Text("2300-01-01 10:00"), Text("run"), Text("x.json")}, "--clock needs a time of the years"},
        {{Text("--clock"), Text("1600-01-01 00:00"), Text("run"), Text("x.json")}, "--clock needs a time of the years"},
        {{Text("--clock"), Text("2026-02-30 10:00"), Text("run"), Text("x.json")},
         "--clock needs a time of the years 1970 to 2199 as 19:30"},
        {{Text("--clock"), Text("10:00"), Text("schema")}, "--clock is for run, watch and test"},
    };
    for (const auto& [words, told] : rows) {
        host.Run(words);
        EXPECT_EQ(host.ExitCode(), 2) << words.join(QLatin1Char(' ')).toStdString();
        EXPECT_TRUE(host.Errors().contains(Text(told))) << host.Errors().toStdString();
    }
}

/// Thirty-eight minutes of ten rooms in ten seconds: each has work of its own every 20 minutes, one room a minute
/// behind the other. A busy computer may be two seconds, which are eight minutes here, late for one of them.
TEST_F(Clock, AMorningOfAMuseumKeepsTheTimesOfEachRoom) {
    host.File(Text("room.js"), R"(({
        Setup: { minute: 0 },
        Info: { Setup: { minute: { Type: "Integer", MinValue: 0, MaxValue: 59 } } },
        _mStart: function () {
            var due = Number(this.Setup.minute) + 1, begin = new Date();
            function tell() {
                print("due " + due + " late " + Math.floor((new Date() - begin) / 60000 - due));
                due += 20;
            }
            QCalverin.SetTimeout(function () { tell(); QCalverin.SetInterval(tell, 20 * 60000); }, due * 60000);
        }
    }))");
    constexpr int kRooms = 10;
    QByteArray devices;
    QStringList expected;
    for (int room = 0; room < kRooms; ++room) {
        devices += (room > 0 ? "," : "") + ("{\"name\":\"r" + QByteArray::number(room)) +
                   "\",\"driver\":\"room.js\",\"settings\":{\"minute\":" + QByteArray::number(room) + "}}";
        expected += {Text("due %1").arg(room + 1), Text("due %1").arg(room + 21)};
    }
    const QString show =
        host.File(Text("show.json"), "{\"devices\":[" + devices + "],\"steps\":[{\"pause\":2280000}]}");
    host.Run({Text("run"), Text("--speed"), Text("240"), Text("--clock"), Text("09:00"), show});
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    QStringList told;
    for (const QString& line : Printed()) {
        const int late = line.section(QLatin1Char(' '), -1).toInt();
        EXPECT_TRUE(late >= 0 && late < 8) << line.toStdString();
        told += line.section(QLatin1Char(' '), 0, 1);
    }
    told.sort();
    expected.sort();
    EXPECT_EQ(told.join(QLatin1Char('\n')).toStdString(), expected.join(QLatin1Char('\n')).toStdString());
}

} // namespace
