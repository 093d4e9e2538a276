#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>

#include "StageHostProcess.h"

/// Every operation of QCalverin that reaches the host, from a script through the module to the show and back, on both
/// links and without one.

namespace {

constexpr qint64 kSoon = 5000; // ms

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

/// A script expression and what it gives on each link.
struct Expression {
    const char* expression;
    const char* newer;
    const char* older;
    const char* none;
};

constexpr Expression kExpressions[] = {
    // variables do not need a link
    {"QCalverin.SetValue('Level', '9')", "0", "0", "0"},
    {"QCalverin.GetValueAsInteger('Level')", "9", "9", "9"},
    {"QCalverin.SetValueAsInteger('Level', '12abc')", "0", "0", "0"},
    {"QCalverin.GetValueAsString('Level')", "0", "0", "0"},
    {"QCalverin.SetValue('Gain', '2.5') + QCalverin.GetValueAsReal('Gain')", "2.5", "2.5", "2.5"},
    {"QCalverin.SetValue('Nothing', '1')", "48", "48", "48"},
    {"QCalverin.SetValueAsInteger('Nothing', '1')", "48", "48", "48"},
    {"QCalverin.GetValueAsString('Nothing') + QCalverin.GetValueAsReal('Nothing')", "0", "0", "0"},
    {"QCalverin.GetValueAsString('other.Status')", "Ready", "Ready", "Ready"},
    // changes
    {"QCalverin.OnVariableChange(function () {})", "0", "19", "19"},
    {"QCalverin.OnVariableChange(5)", "19", "19", "19"},
    {"QCalverin.RegisterGroup('House')", "0", "0", "19"},
    {"QCalverin.RegisterGroup('House', true)", "0", "0", "19"},
    {"QCalverin.RegisterGroup('Nowhere')", "64", "64", "19"},
    {"QCalverin.RegisterGroup('Closed')", "72", "72", "19"},
    {"QCalverin.UnregisterGroup('House')", "0", "0", "19"},
    {"QCalverin.UnregisterGroup()", "0", "0", "19"},
    // user screens
    {"QCalverin.OpenUserScreen('Panel', 1, 20, 30)", "0", "0", "19"},
    {"QCalverin.GetProperty('Panel', 'Left')", "20", "20", ""},
    {"QCalverin.OpenUserScreen('Panel', 2)", "19", "19", "19"},
    {"QCalverin.OpenUserScreen('Nothing')", "64", "64", "19"},
    {"QCalverin.GotoPage('Panel', 2)", "0", "0", "19"},
    {"QCalverin.GetProperty('Panel', 'PageName')", "Lights", "Lights", ""},
    {"QCalverin.GotoPage('Panel', 3)", "69", "69", "19"},
    {"QCalverin.CloseUserScreen('Panel')", "0", "0", "19"},
    {"QCalverin.CloseUserScreen('Panel')", "74", "74", "19"},
    // tasks
    {"QCalverin.StartTask('Overture')", "0", "0", "19"},
    {"QCalverin.GetProperty('Overture', 'Status')", "Running", "Running", ""},
    {"QCalverin.PauseTask('Overture')", "0", "0", "19"},
    {"QCalverin.GotoTime('Overture', 1500)", "0", "0", "19"},
    {"QCalverin.GetPropertyAsInt('Overture', 'Time')", "1500", "1500", "0"},
    {"QCalverin.GotoLine('Overture', 2)", "0", "0", "19"},
    {"QCalverin.GotoLine('Overture', 3)", "69", "69", "19"},
    {"QCalverin.GotoLabel('Overture', 'begin')", "0", "0", "19"},
    {"QCalverin.GotoLabel('Overture', 'nowhere')", "69", "69", "19"},
    {"QCalverin.GetPropertyAsInt('Overture', 'Time')", "0", "0", "0"},
    {"QCalverin.StopTask('Overture')", "0", "0", "19"},
    {"QCalverin.StopTask('Overture', 7)", "68", "68", "19"},
    {"QCalverin.PauseTask('Overture')", "74", "74", "19"},
    {"QCalverin.StartTask()", "64", "64", "19"},
    {"QCalverin.StartTask('Stubborn')", "72", "72", "19"},
    {"QCalverin.LoadShow('Matinee', 700)", "0", "0", "19"},
    {"QCalverin.GetProperty('Matinee', 'Time')", "700", "700", ""},
    {"QCalverin.LoadShow('Nothing')", "64", "64", "19"},
    // objects
    {"QCalverin.GetObjectList('House', 3)",
     "<Objects Parent=\"House\" Type=\"3\"><Object Name=\"Overture\" Type=\"Task\" Value=\"\"/></Objects>",
     "<Objects Parent=\"House\" Type=\"3\"><Object Name=\"Overture\" Type=\"Task\" Value=\"\"/></Objects>", ""},
    {"QCalverin.GetObjectList('', 31) + QCalverin.GetObjectList('', 99)", "", "", ""},
    {"QCalverin.GetObjectList('', 30)", "<Objects Parent=\"\" Type=\"30\"/>", "<Objects Parent=\"\" Type=\"30\"/>", ""},
    {"QCalverin.GetObjectList('Nothing')", "", "", ""},
    {"QCalverin.GetObject('Hall')",
     "<Object Name=\"Hall\" Type=\"Object\" Value=\"\"><Properties><Property Name=\"Warm\" Value=\"yes\"/></Properties>"
     "</Object>",
     "<Object Name=\"Hall\" Type=\"Object\" Value=\"\"><Properties><Property Name=\"Warm\" Value=\"yes\"/></Properties>"
     "</Object>",
     ""},
    {"QCalverin.GetObject('other').indexOf('Execute Function With Params') > 0", "true", "true", "false"},
    {"QCalverin.GetObject('Nothing')", "", "", ""},
    {"QCalverin.SetProperty('Hall', 'Warm', 'no')", "0", "0", "19"},
    {"QCalverin.GetProperty('Hall', 'Warm')", "no", "no", ""},
    {"QCalverin.GetPropertyAsInt('Hall', 'Warm')", "0", "0", "0"},
    {"QCalverin.SetPropertyAsInt('Hall', 'Warm', 21)", "0", "0", "19"},
    {"QCalverin.GetPropertyAsInt('Hall', 'Warm')", "21", "21", "0"},
    {"QCalverin.SetProperty('Hall', 'Colour', 'red')", "66", "66", "19"},
    {"QCalverin.SetProperty('Overture', 'Status', 'Running')", "67", "67", "19"},
    {"QCalverin.SetProperty('Level', 'Value', 'many')", "68", "68", "19"},
    {"QCalverin.SetProperty('Nothing', 'a', 'b')", "64", "64", "19"},
    // actions
    {"QCalverin.Perform('other', 'Execute Function With Params', 'LIST', 'Script Function Name=greet', 'Param1=Ada=B')",
     "Hello, Ada=B", "Hello, Ada=B", ""},
    {"QCalverin.Perform('other', '3', 'xml', \"<parameters><parameter name='Script Function Name' value='greet'/>"
     "<parameter name='Param1' value='&lt;Bo&gt;'/></parameters>\")",
     "Hello, <Bo>", "Hello, <Bo>", ""},
    {"QCalverin.Perform('other', '3', 'LIST', 'Script Function Name=later', 'Param1=10')", "late", "late", ""},
    {"QCalverin.Perform('other', '3', 'LIST', 'Script Function Name=boom')", "", "", ""},
    {"QCalverin.Perform('other', '3', 'LIST', 'Script Function Name=none')", "", "", ""},
    {"QCalverin.Perform('other', 'Fly')", "", "", ""},
    {"QCalverin.Perform('other', '3', 'XML', 'no list')", "", "", ""},
    {"QCalverin.Perform()", "", "", ""},
    {"QCalverin.Perform('Thunder', 'Go') + QCalverin.GetValueAsString('Mood')", "thunder", "thunder", "noon"},
    {"QCalverin.Perform('Overture', 'GotoLine', 'LIST', 'Line=2')", "Stopped", "Stopped", ""},
    {"QCalverin.Perform('Stubborn', 'Start')", "", "", ""},
    {"QCalverin.PerformAsync(function () {}, 'Overture', 'Stop')", "21", "16", "16"},
    {"QCalverin.PerformAsync(function () {}, 'Nothing', 'Stop')", "64", "16", "16"},
    {"QCalverin.PerformAsync(function () {}, 'Stubborn', 'Stop')", "72", "16", "16"},
    {"QCalverin.PerformAsync(5, 'Overture', 'Stop')", "19", "16", "16"},
};

/// A show with an object of each kind and two devices, "main" and "other", whose scripts a test may choose.
class QCalverin : public testing::Test {
protected:
    QCalverin() {
        GivenMainScript("({ run: function (text) { return String(eval(text)); } })");
        host.File(Text("other.js"), R"js(({
            greet: function (name) { return "Hello, " + name; },
            boom: function () { throw new Error("bad thing"); },
            later: function (ms) {
                var id = QCalverin.PostponeResult();
                QCalverin.SetTimeout(function () { QCalverin.SetResult(id, "late"); }, Number(ms));
            },
            set: function (name, value) { QCalverin.SetValue(name, value); },
            never: function () { QCalverin.PostponeResult(); }
        }))js");
    }

    void GivenMainScript(const char* text) { host.File(Text("main.js"), text); }

    static QByteArray Call(const char* device, const QByteArray& function, const QByteArray& param = {},
                           const QByteArray& rest = {}) {
        QJsonObject params{{Text("Script Function Name"), QString::fromUtf8(function)},
                           {Text("Param1"), QString::fromUtf8(param)}};
        return QByteArray("{\"device\":\"") + device +
               "\",\"command\":3,\"params\":" + QJsonDocument(params).toJson(QJsonDocument::Compact) + rest + "}";
    }

    QString Show(const QByteArray& steps) {
        return host.File(Text("show.json"), R"({
            "variables": [ {"name":"Level","type":"Integer","value":5}, {"name":"Gain","type":"Real","precision":1},
                           {"name":"Mood","value":"noon"}, {"name":"Note"} ],
            "devices": [ {"name":"main","script":"main.js"}, {"name":"other","script":"other.js"} ],
            "groups": [ {"name":"House","members":["Level","Overture"]}, {"name":"Closed","requests":"refused"} ],
            "screens": [ {"name":"Panel","pages":["Main","Lights"]} ],
            "cues": [ {"name":"Thunder","set":{"Mood":"thunder"}} ],
            "shows": [ {"name":"Matinee","set":{"Mood":"noon"}} ],
            "objects": [ {"name":"Hall","properties":{"Warm":"yes"}} ],
            "tasks": [ {"name":"Overture","lines":[{"label":"begin"},{"at":86400000}]},
                       {"name":"Stubborn","requests":"refused"}, {"name":"Endless","requests":"neverEnd"} ],
            "steps": [)" + steps + "]}");
    }

    /// Plays steps; they have to go well.
    void Play(const QByteArray& steps, const char* link = "both") {
        host.Run({Text("run"), Text("--link"), Text(link), Text("--json"), Show(steps)});
        EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    }

    std::string ResultOfStep(int index) {
        const QJsonArray steps = host.Json().value(Text("steps")).toArray();
        return steps.at(index).toObject().value(Text("result")).toString().toStdString();
    }

    StageHostProcess host;
};

QByteArray Wait(const QByteArray& variable, const QByteArray& value) {
    return R"({"wait":{"variable":")" + variable + R"(","value":")" + value + "\"}}";
}

QByteArray Joined(const std::vector<QByteArray>& steps) {
    QByteArray all;
    for (const auto& step : steps)
        all += (all.isEmpty() ? "" : ",") + step;
    return all;
}

} // namespace

TEST_F(QCalverin, GivesWhatTheShowAnswersOnEachLink) {
    std::vector<QByteArray> steps;
    for (const auto& row : kExpressions)
        steps.push_back(Call("main", "run", row.expression));
    constexpr const char* kLinks[] = {"newer", "older", "none", "both"};
    for (int link = 0; link < 4; ++link) {
        Play(Joined(steps), kLinks[link]);
        int index = 0;
        for (const auto& row : kExpressions) {
            const char* const expected[] = {row.newer, row.older, row.none, row.newer};
            EXPECT_EQ(ResultOfStep(index++), expected[link]) << kLinks[link] << ": " << row.expression;
        }
    }
}

TEST_F(QCalverin, BringsTheResultOfAnAsynchronousRequestToItsFunction) {
    GivenMainScript(R"js(({
        ask: function (name) {
            return QCalverin.PerformAsync(function (text) { QCalverin.SetValue("Note", arguments.length + ":" + text); },
                "other", "3", "LIST", "Script Function Name=" + name, "Param1=5");
        }
    }))js");
    Play(Joined({Call("main", "ask", "greet"), Wait("Note", "1:Hello, 5"), Call("main", "ask", "later"),
                 Wait("Note", "1:late")}));
    EXPECT_EQ(ResultOfStep(0), "21");
}

TEST_F(QCalverin, CallsTheFunctionWithoutArgumentsWhenAnAsynchronousRequestFails) {
    GivenMainScript(R"js(({
        ask: function (name) {
            return QCalverin.PerformAsync(function (text) { QCalverin.SetValue("Note", name + arguments.length); },
                "other", "3", "LIST", "Script Function Name=" + name);
        }
    }))js");
    Play(Joined(
        {Call("main", "ask", "boom"), Wait("Note", "boom0"), Call("main", "ask", "none"), Wait("Note", "none0")}));
    EXPECT_EQ(ResultOfStep(0), "21");
}

TEST_F(QCalverin, KeepsTheOrderOfAsynchronousRequests) {
    GivenMainScript(R"js(({
        got: [],
        ask: function () {
            var me = this;
            for (var n = 0; n < 50; n++)
                QCalverin.PerformAsync(function (text) {
                    me.got.push(text.substr(7));
                    if (me.got.length === 50) QCalverin.SetValue("Note", "all");
                }, "other", "3", "LIST", "Script Function Name=greet", "Param1=" + n);
        },
        inOrder: function () { return this.got.every(function (text, n) { return Number(text) === n; }); }
    }))js");
    Play(Joined(
        {Call("main", "ask"), Wait("Note", "all"), Call("main", "inOrder", {}, R"(,"expect":{"result":"true"})")}));
}

TEST_F(QCalverin, HearsWhatAnotherDeviceAndTheUserChange) {
    GivenMainScript(R"js(({
        heard: [],
        _mStart: function () {
            var me = this;
            QCalverin.RegisterGroup("House", true);
            QCalverin.OnVariableChange(function (name, value) {
                me.heard.push(name + "=" + value + "/" + arguments.length);
                if (value === "42") QCalverin.SetValue("Note", me.heard.join(" "));
            });
        }
    }))js");
    const QByteArray set = R"({"device":"other","command":3,"params":{"Script Function Name":"set",)";
    Play(Joined({R"({"set":{"Level":7,"Mood":"not of the group"}})", set + R"("Param1":"Level","Param2":8}})",
                 R"({"set":{"Level":8}})", set + R"("Param1":"Level","Param2":42}})",
                 Wait("Note", "Level=7/2 Level=8/2 Level=42/2")}));
}

TEST_F(QCalverin, HearsNothingWithTheOlderLink) {
    GivenMainScript(R"js(({
        heard: 0,
        listen: function () {
            var me = this;
            return QCalverin.RegisterGroup("House", true) + "," + QCalverin.OnVariableChange(function () { me.heard++; });
        },
        count: function () { return this.heard; }
    }))js");
    Play(Joined({Call("main", "listen", {}, R"(,"expect":{"result":"0,19"})"), R"({"set":{"Level":7}})",
                 Call("main", "count", {}, R"(,"expect":{"result":"0"})")}),
         "older");
}

TEST_F(QCalverin, StartsATaskThatPlaysAndPerformsOnOtherDevices) {
    host.File(Text("main.js"), "({ go: function () { return QCalverin.StartTask('Play'); } })");
    const QString show = host.File(Text("play.json"), R"({
        "variables": [{"name":"Note"}, {"name":"Answer"}],
        "devices": [{"name":"main","script":"main.js"},{"name":"other","script":"other.js"}],
        "tasks": [{"name":"Play","lines":[
            {"set":{"Note":"first"}},
            {"at":20,"device":"other","command":3,
             "params":{"Script Function Name":"greet","Param1":{"variable":"Note"},"Result":{"variable":"Answer"}}}]}],
        "steps": [{"device":"main","command":3,"params":{"Script Function Name":"go"},"expect":{"result":"0"}},
                  {"wait":{"variable":"Answer","value":"Hello, first"}}]})");
    for (const char* link : {"newer", "older"}) {
        host.Run({Text("run"), Text("--link"), Text(link), show});
        EXPECT_EQ(host.ExitCode(), 0) << link << host.Errors().toStdString();
    }
}

TEST_F(QCalverin, LoadsAShowBesideTheOneThatRunsAndSaysSo) {
    host.SetInput("send main 3 \"Script Function Name=run\" \"Param1=QCalverin.LoadShow('Matinee', 700)\"\n"
                  "get Level\n");
    host.Run({Text("watch"), Show({}), Text("Matinee")});
    EXPECT_TRUE(host.Output().contains(
        Text("  Show Matinee: Loaded = 700 (its entry is played, the show that runs goes on)\n0\n5\n")))
        << host.Output().toStdString();
}

TEST_F(QCalverin, IsFreedFromARequestThatNeverEndsWhenTheShowEnds) {
    for (const char* link : {"newer", "older"}) {
        host.Run({Text("run"), Text("--timeout"), Text("1000"), Text("--link"), Text(link),
                  Show(Call("main", "run", "QCalverin.StartTask('Endless')"))});
        EXPECT_EQ(host.ExitCode(), 3) << link;
        EXPECT_TRUE(host.Errors().contains(Text("no answer to \"3\" within 1000 ms"))) << host.Errors().toStdString();
        EXPECT_FALSE(host.Errors().contains(Text("does not come back"))) << host.Errors().toStdString();
        EXPECT_LT(host.Milliseconds(), host.Soon(2 * kSoon)) << link;
    }
}

TEST_F(QCalverin, EndsWithAsynchronousRequestsUnderWay) {
    Play(Joined({Call("main", "run", "QCalverin.PerformAsync(function () {}, 'Endless', 'Start')"),
                 Call("main", "run",
                      "for (var n = 0; n < 20; n++) QCalverin.PerformAsync(function () {}, 'other', '3', 'LIST', "
                      "'Script Function Name=never')"),
                 R"({"task":"Overture"})"}));
    EXPECT_EQ(ResultOfStep(0), "21");
    EXPECT_LT(host.Milliseconds(), host.Soon(kSoon));
}

TEST_F(QCalverin, EndsWhileScriptsWaitForEachOther) {
    GivenMainScript(R"js(({
        _mStart: function () { QCalverin.OnVariableChange(this._changed); QCalverin.RegisterGroup("House", true); },
        _changed: function () {
            QCalverin.SetValue("Note", "waiting");
            QCalverin.Perform("other", "3", "LIST", "Script Function Name=never");
        }
    }))js");
    Play(Joined({R"({"set":{"Level":7}})", Wait("Note", "waiting")}));
    EXPECT_LT(host.Milliseconds(), host.Soon(kSoon));
}
