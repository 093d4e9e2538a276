#include <gtest/gtest.h>

#include <QFile>

#include "ProjectorProcess.h"
#include "StageHostProcess.h"
#include "Waits.h"

/// The driver in the host, the projector beside it: three programs' worth of work as it is at the desk.

namespace {

QString TextOf(const char* name) {
    QFile file(Text(PROJECTOR_EXAMPLE "/") + Text(name));
    file.open(QIODevice::ReadOnly);
    return QString::fromUtf8(file.readAll());
}

class ProjectorInAShow : public testing::Test {
protected:
    void GivenProjector(const char* words = "--warm-up 300 --cool-down 300") {
        ASSERT_TRUE(projector.Start(Text(words).split(QLatin1Char(' '), Qt::SkipEmptyParts)));
        port = projector.Port();
    }

    /// The show of the example, with what a user enters in the setup of its device.
    void GivenShow(const char* password = "") {
        for (const char* script : {"pjlink.js", "fake-pjlink.js"})
            host.File(Text(script), TextOf(script).toUtf8());
        show = host.File(Text("show.json"), TextOf("show.json").toUtf8());
        host.Run({Text("setup"), show, Text("beamer"), Text("port=%1").arg(port), Text("poll=200"),
                  Text("password=%1").arg(Text(password))});
        ASSERT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    }

    /// @param exitCode of the first line that went wrong.
    void Say(const char* lines, int exitCode = 0) {
        host.SetInput(lines);
        host.Run({Text("watch"), show});
        EXPECT_EQ(host.ExitCode(), exitCode) << host.Errors().toStdString() << host.Output().toStdString();
    }

    /// @return the values that a variable of the device took, in their order.
    QStringList Changes(const char* variable) const {
        QStringList values;
        const QString before = Text("  beamer.%1 = ").arg(Text(variable));
        for (const QString& line : host.Output().split(QLatin1Char('\n')))
            if (line.contains(before))
                values += line.section(before, 1);
        return values;
    }

    /// The same, less the first one where it is this. The driver may have told it before the host began to print.
    QStringList ChangesAfter(const char* first, const char* variable) const {
        QStringList values = Changes(variable);
        if (!values.isEmpty() && values.first() == Text(first))
            values.removeFirst();
        return values;
    }

    int Problems(const char* problem) const { return host.Errors().split(QLatin1Char('\n')).count(Text(problem)); }

    int Results(const char* result) const { return host.Output().split(QLatin1Char('\n')).count(Text(result)); }

    ProjectorProcess projector;
    StageHostProcess host;
    QString show;
    int port = 0;
};

} // namespace

TEST_F(ProjectorInAShow, PlaysTheExampleWithAProjectorOfItsOwn) {
    host.Run({Text("run"), Text(PROJECTOR_EXAMPLE "/show.json")});
    EXPECT_EQ(host.ExitCode(), 0) << host.Output().toStdString() << host.Errors().toStdString();
    EXPECT_TRUE(host.Output().contains(Text("The show is over: all 22 steps went well.")));
}

TEST_F(ProjectorInAShow, IsSwitchedOnAndOffAndTellsEachState) {
    GivenProjector();
    GivenShow();
    Say("wait beamer.Power off\nsend beamer \"Power on\"\nwait beamer.Power on\nsend beamer \"Power off\"\n"
        "wait beamer.Power cooling\nwait beamer.Power off\n");
    EXPECT_EQ(ChangesAfter("off", "Power"),
              (QStringList{Text("warming up"), Text("on"), Text("cooling"), Text("off")}));
    EXPECT_EQ(Results("OK"), 2);
}

TEST_F(ProjectorInAShow, IsPolled) {
    GivenProjector("--lamps 1234 --errors 100002 --name Stage");
    GivenShow();
    Say("wait beamer.Online yes\nwait beamer.Name Stage\nwait beamer.LampHours 1234\nwait beamer.ErrorStatus \"fan "
        "warning, other error\"\n");
    EXPECT_EQ(ChangesAfter("yes", "Online"), QStringList());
    EXPECT_EQ(ChangesAfter("Stage", "Name"), QStringList());
}

TEST_F(ProjectorInAShow, TellsWhatTheProjectorRefuses) {
    GivenProjector();
    GivenShow();
    Say("wait beamer.Online yes\nsend beamer \"Select input\" \"input=Digital 1\"\nsend beamer Mute \"what=all on\"\n",
        1);
    EXPECT_EQ(Problems("the projector cannot do that now"), 2);
}

TEST_F(ProjectorInAShow, KnowsThePassword) {
    GivenProjector("--password JBMIAProjectorLink");
    GivenShow("JBMIAProjectorLink");
    Say("send beamer \"Power on\"\nwait beamer.Power \"warming up\"\n");
    EXPECT_EQ(Results("OK"), 1);
    EXPECT_EQ(ChangesAfter("connected", "Connection"), QStringList());
}

TEST_F(ProjectorInAShow, TellsThatThePasswordIsWrong) {
    GivenProjector("--password secret");
    GivenShow("wrong");
    Say("wait beamer.Connection \"password refused\"\nsend beamer \"Power on\"\n", 1);
    EXPECT_EQ(Problems("password refused"), 1);
    EXPECT_EQ(Changes("Online"), QStringList());
}

TEST_F(ProjectorInAShow, JoinsAnswersThatComeByteByByte) {
    GivenProjector("--split --warm-up 1");
    GivenShow();
    Say("send beamer \"Power on\"\nwait beamer.Power on\nsend beamer \"Select input\" \"input=Video 1\"\n"
        "wait beamer.Input \"Video 1\"\n");
    EXPECT_EQ(Results("OK"), 2);
}

TEST_F(ProjectorInAShow, SurvivesAProjectorThatIsKilledAndComesBack) {
    GivenProjector();
    GivenShow();
    host.Begin({Text("watch"), show});
    host.Say("wait beamer.Power off");
    host.Say("get beamer.Online");
    ASSERT_TRUE(host.WaitForOutput("yes\n"));
    projector.Kill();
    ASSERT_TRUE(host.WaitForOutput("beamer.Online = no\n"));
    GivenProjector(qPrintable(Text("--port %1 --warm-up 1").arg(port)));
    host.Say("send beamer \"Power on\"");
    host.Say("wait beamer.Power on");
    host.Finish();
    EXPECT_EQ(host.ExitCode(), 0) << host.Errors().toStdString();
    EXPECT_EQ(ChangesAfter("yes", "Online"), (QStringList{Text("no"), Text("yes")}));
    EXPECT_EQ(Results("OK"), 1);
}

TEST_F(ProjectorInAShow, AnswersACommandWithoutAProjector) {
    GivenProjector();
    GivenShow();
    projector.Kill();
    Say("send beamer \"Power on\"\nget beamer.Error\n", 1);
    EXPECT_TRUE(host.Errors().contains(Text("not connected: "))) << host.Errors().toStdString();
    EXPECT_EQ(Changes("Error"), QStringList());
}

TEST_F(ProjectorInAShow, EndsThoughACommandWaits) {
    GivenProjector("--slow 60000");
    GivenShow();
    QString patient = TextOf("pjlink.js");
    patient.replace(Text("ANSWER_TIME = 3000"), Text("ANSWER_TIME = 50000"));
    patient.replace(Text("COMMAND_TIME = 5000"), Text("COMMAND_TIME = 50000"));
    host.File(Text("pjlink.js"), patient.toUtf8());
    host.Run({Text("send"), Text("--timeout"), Text("500"), show, Text("beamer"), Text("Power on")});
    EXPECT_EQ(host.ExitCode(), 3) << host.Output().toStdString() << host.Errors().toStdString();
    EXPECT_LT(host.Milliseconds(), host.Soon(10000)); // the driver itself would answer after 50000
}
