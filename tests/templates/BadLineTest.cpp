#include "BadLine.h"

#include <QFile>

#include "StageHostProcess.h"

/// Drivers behind a line that misbehaves on purpose: late, cut, twice, reset, stalled, half closed, nonsense, silence.
/// With BAD_LINES so many seeds are played instead of two.

namespace {

QString Text(const char* text) {
    return QString::fromUtf8(text);
}

QByteArray SourceFile(const QString& name) {
    QFile file(Text(STAGEHOST_ROOT "/") + name);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

/// A driver, and what is asked of it.
struct BadLineDriver {
    const char* name;  ///< of a template, or of one of the recorded evenings
    bool isTemplate;   ///< its fake device is there; an evening is replayed
    const char* place; ///< where the device is reached: "tcp", "udp" or "serial"
    const char* show;  ///< what stands in the show beside the driver; %1 is the place
    std::vector<const char*> commands;
    const char* end; ///< what has to come at last
};

constexpr const char* kHostAndPort = R"("settings":{"host":"127.0.0.1","port":%1}}])";
constexpr const char* kOnline = "wait demo.Online yes 60000";

const BadLineDriver kDrivers[] = {
    {"tcp",
     true,
     "tcp",
     kHostAndPort,
     {R"("Set power" power=on)", R"("Set level" level=40)", R"("Set power" power=off)", R"("Set level" level=70)"},
     kOnline},
    {"udp", true, "udp", kHostAndPort, {R"("Set level" level=40)", R"("Set level" level=10)"}, kOnline},
    {"http",
     true,
     "tcp",
     R"("settings":{"address":"http://127.0.0.1:%1"}}])",
     {R"("Set power" power=on)", R"("Set level" level=40)", R"("Set power" power=off)"},
     kOnline},
    {"serial",
     true,
     "serial",
     R"("settings":{}}],"resources":[{"id":1,"name":"Line","serial":{"port":"%1","baudRate":9600}}])",
     {R"("Select input" input=3)", R"("Select input" input=5)", R"("Select input" input=1)"},
     kOnline},
    {"mpd",
     false,
     "tcp",
     kHostAndPort,
     {R"("Set random" random=on)", "Outputs", "Play song=7", R"("Set random" random=off)"},
     kOnline},
    {"osc",
     false,
     "udp",
     kHostAndPort,
     {"Fader channel=1 level=0.75", "Mute channel=12 on=on", "Label channel=3 text=Hamlet", "Scene number=65536"},
     "wait demo.Sent 4 60000"},
};

class EachDriver : public testing::TestWithParam<BadLineDriver> {
protected:
    void SetUp() override {
        host.SetWorkingFolder(host.Folder());
        const BadLineDriver& driver = GetParam();
        if (!driver.isTemplate) {
            host.File(Text("demo.js"), SourceFile(Evening(".js")));
            host.File(Text("connection.js"), SourceFile(Text("templates/connection.js")));
            return Begin(device, {Text("replay"), Text("--json"), Text("--fast"), Text("--any-order"),
                                  Text(STAGEHOST_ROOT "/") + Evening(".traffic")});
        }
        host.Run({Text("new"), Text(driver.name), Text("demo")});
        Begin(device, {Text("counterpart"), Text("--json"), host.Folder() + Text("/demo/fake.js")});
    }

    void TearDown() override {
        device.Interrupt();
        device.Finish();
    }

    /// Begins one that prints where it is reached.
    static void Begin(StageHostProcess& program, const QStringList& words) {
        program.Begin(words);
        ASSERT_TRUE(program.WaitForOutput("}\n")) << program.Errors().toStdString();
    }

    static QString Evening(const char* end) {
        return Text("tests/StageHost/lines/evenings/") + Text(GetParam().name) + Text(end);
    }

    static QString PlaceOf(const StageHostProcess& program) {
        const QByteArray ready = program.Output().section(QLatin1Char('\n'), 0, 0).toUtf8();
        return QJsonDocument::fromJson(ready).object().value(Text(GetParam().place)).toVariant().toString();
    }

    void Play(int seed) {
        const BadLineDriver& driver = GetParam();
        const QString before = Text(driver.place) == Text("serial") ? QString() : Text("127.0.0.1:");
        StageHostProcess line;
        Begin(line, {Text("record"), Text("--json"), Text("--mischief"), QString::number(seed),
                     Text("--") + Text(driver.place), before + PlaceOf(device), line.Folder() + Text("/some.traffic")});
        const QString script = Text(driver.isTemplate ? "demo/demo.js" : "demo.js");
        const QString show = Text(R"({"devices":[{"name":"demo","driver":"%1",)").arg(script) +
                             Text(driver.show).arg(PlaceOf(line)) + QLatin1Char('}');
        QByteArray input;
        for (const char* command : driver.commands)
            input += QByteArray("send demo ") + command + '\n';
        host.SetInput(input + driver.end + '\n');
        host.Run({Text("watch"), Text("--json"), host.File(Text("show.json"), show.toUtf8())});
        line.Interrupt();
        line.Finish();
        EXPECT_EQ(line.ExitCode(), 0) << line.Errors().toStdString();
    }

    StageHostProcess host;
    StageHostProcess device;
};

} // namespace

TEST_P(EachDriver, BehindABadLineEndsEachCommandOnceTellsNothingTwiceAndComesBack) {
    for (int seed = 1; seed <= BadLineSeeds(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Play(seed);
        ExpectAllEndedNothingTwiceAndBack(host.Output(), static_cast<int>(GetParam().commands.size()));
    }
}

INSTANTIATE_TEST_SUITE_P(BadLine, EachDriver, testing::ValuesIn(kDrivers),
                         [](const auto& made) { return std::string(made.param.name); });
