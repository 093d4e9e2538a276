#include "BadLine.h"

#include <QFile>

#include "ProjectorProcess.h"
#include "StageHostProcess.h"
#include "Waits.h"

/// The driver behind a line that misbehaves on purpose: late, cut, twice, reset, stalled, half closed, nonsense,
/// silence.

namespace {

QByteArray ExampleFile(const char* name) {
    QFile file(Text(PROJECTOR_EXAMPLE "/") + Text(name));
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

class BehindABadLine : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(projector.Start({Text("--warm-up"), Text("300"), Text("--cool-down"), Text("300")}));
        host.File(Text("pjlink.js"), ExampleFile("pjlink.js"));
        show = host.File(Text("show.json"), R"({"devices":[{"name":"beamer","driver":"pjlink.js"}]})");
    }

    /// Plays an evening through a line with that seed.
    void Play(int seed) {
        line.Begin({Text("record"), Text("--json"), Text("--mischief"), QString::number(seed), Text("--tcp"),
                    Text("127.0.0.1:%1").arg(projector.Port()), line.Folder() + Text("/some.traffic")});
        ASSERT_TRUE(line.WaitForOutput("}\n")) << line.Errors().toStdString();
        const int port = QJsonDocument::fromJson(line.Output().toUtf8()).object().value(Text("tcp")).toInt();
        host.SetInput("send beamer \"Power on\"\n"
                      "send beamer Mute \"what=picture on\"\n"
                      "send beamer \"Select input\" \"input=Digital 1\"\n"
                      "send beamer Mute \"what=all off\"\n"
                      "send beamer \"Power off\"\n"
                      "wait beamer.Online yes 60000\n");
        host.Run({Text("watch"), Text("--json"), show, Text("--set"), Text("beamer.port=%1").arg(port), Text("--set"),
                  Text("beamer.poll=200")});
        line.Interrupt();
        line.Finish();
    }

    ProjectorProcess projector;
    StageHostProcess line;
    StageHostProcess host;
    QString show;
};

} // namespace

/// With BAD_LINES so many seeds are played instead of two.
TEST_F(BehindABadLine, EachCommandEndsOnceNothingIsToldTwiceAndTheDriverComesBack) {
    for (int seed = 1; seed <= BadLineSeeds(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Play(seed);
        ExpectAllEndedNothingTwiceAndBack(host.Output(), 5);
        EXPECT_EQ(line.ExitCode(), 0) << line.Errors().toStdString();
    }
}
