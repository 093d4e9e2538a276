#include <map>

#include <gtest/gtest.h>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

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

    /// Plays an evening through a line with that seed; what it tells is left in `told`.
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
        told.clear();
        for (const QString& text : host.Output().split(QLatin1Char('\n'), Qt::SkipEmptyParts))
            told.push_back(QJsonDocument::fromJson(text.toUtf8()).object());
    }

    ProjectorProcess projector;
    StageHostProcess line;
    StageHostProcess host;
    QString show;
    std::vector<QJsonObject> told;
};

} // namespace

/// With BAD_LINES so many seeds are played instead of two.
TEST_F(BehindABadLine, EachCommandEndsOnceNothingIsToldTwiceAndTheDriverComesBack) {
    const int seeds = qEnvironmentVariableIsSet("BAD_LINES") ? qEnvironmentVariableIntValue("BAD_LINES") : 2;
    for (int seed = 1; seed <= seeds; ++seed) {
        Play(seed);
        int ended = 0;
        bool isBack = false;
        std::map<QString, QString> last;
        for (const QJsonObject& one : told) {
            const QString text = one.value(Text("line")).toString();
            const QString object = one.value(Text("object")).toString();
            if (text.startsWith(Text("send"))) {
                ++ended;
                EXPECT_NE(one.value(Text("exitCode")).toInt(), 3)
                    << "seed " << seed << ": no answer to " << text.toStdString();
            }
            isBack = isBack || (text.startsWith(Text("wait")) && one.value(Text("ok")).toBool());
            if (one.value(Text("property")).toString() != Text("Value"))
                continue;
            const QString value = one.value(Text("value")).toVariant().toString();
            EXPECT_TRUE(last.find(object) == last.end() || last[object] != value)
                << "seed " << seed << ": " << object.toStdString() << " is told twice: " << value.toStdString();
            last[object] = value;
        }
        EXPECT_EQ(ended, 5) << "seed " << seed << "\n" << host.Output().toStdString() << host.Errors().toStdString();
        EXPECT_TRUE(isBack) << "seed " << seed << "\n" << host.Output().toStdString() << host.Errors().toStdString();
        EXPECT_FALSE(last.empty());
        EXPECT_EQ(line.ExitCode(), 0) << line.Errors().toStdString();
    }
}
