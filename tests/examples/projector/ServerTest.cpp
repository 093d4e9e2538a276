#include <gtest/gtest.h>

#include <QElapsedTimer>

#include "ProjectorProcess.h"
#include "Protocol.h"

namespace {

class ProjectorAtWork : public testing::Test {
protected:
    void Given(const char* words) {
        ASSERT_TRUE(projector.Start(QString::fromLatin1(words).split(QLatin1Char(' '), Qt::SkipEmptyParts)));
    }

    ProjectorProcess projector;
};

QByteArray RandomOf(const QByteArray& greeting) {
    EXPECT_EQ(greeting.left(9), "PJLINK 1 ");
    EXPECT_EQ(greeting.size(), 17);
    return greeting.mid(9);
}

} // namespace

TEST_F(ProjectorAtWork, GreetsAndAnswersSeveralClients) {
    Given("");
    ProjectorClient first(projector.Port());
    ProjectorClient second(projector.Port());
    EXPECT_EQ(first.Line(), "PJLINK 0");
    EXPECT_EQ(second.Line(), "PJLINK 0");
    EXPECT_EQ(first.Ask("%1POWR 1"), "%1POWR=OK");
    EXPECT_EQ(second.Ask("%1POWR ?"), "%1POWR=3");
}

TEST_F(ProjectorAtWork, AnswersCommandsThatComeTogetherAndInPieces) {
    Given("");
    ProjectorClient client(projector.Port());
    client.Line();
    client.Say("%1CLSS ?\r%1POWR ?\r%1PO");
    EXPECT_EQ(client.Line(), "%1CLSS=1");
    EXPECT_EQ(client.Line(), "%1POWR=0");
    EXPECT_EQ(client.Ask("WR ?"), "%1POWR=0");
}

TEST_F(ProjectorAtWork, PassesOverWhatIsNoCommand) {
    Given("");
    ProjectorClient client(projector.Port());
    client.Line();
    client.Say("hello\r\r%1\r");
    EXPECT_EQ(client.Ask("%1CLSS ?"), "%1CLSS=1");
}

TEST_F(ProjectorAtWork, LetsAClientInThatKnowsThePassword) {
    Given("--password secret");
    ProjectorClient client(projector.Port());
    const QByteArray digest = projector::Digest(RandomOf(client.Line()), "secret");
    EXPECT_EQ(client.Ask(digest + "%1POWR ?"), "%1POWR=0");
    EXPECT_EQ(client.Ask("%1CLSS ?"), "%1CLSS=1");
}

TEST_F(ProjectorAtWork, SendsAClientAwayThatDoesNotKnowThePassword) {
    Given("--password secret");
    ProjectorClient wrong(projector.Port());
    const QByteArray digest = projector::Digest(RandomOf(wrong.Line()), "Secret");
    EXPECT_EQ(wrong.Ask(digest + "%1POWR 1"), "PJLINK ERRA");
    EXPECT_TRUE(wrong.IsSentAway());
    ProjectorClient without(projector.Port());
    without.Line();
    EXPECT_EQ(without.Ask("%1POWR 1"), "PJLINK ERRA");
    EXPECT_TRUE(without.IsSentAway());
    ProjectorClient client(projector.Port());
    EXPECT_EQ(client.Ask(projector::Digest(RandomOf(client.Line()), "secret") + "%1POWR ?"), "%1POWR=0");
}

TEST_F(ProjectorAtWork, GreetsEachClientWithANumberOfItsOwn) {
    Given("--password secret");
    ProjectorClient first(projector.Port());
    ProjectorClient second(projector.Port());
    EXPECT_NE(first.Line(), second.Line());
}

TEST_F(ProjectorAtWork, DropsAConnectionAfterTheAnswersThatItWasTold) {
    Given("--drop-after 2");
    ProjectorClient client(projector.Port());
    client.Line();
    EXPECT_EQ(client.Ask("%1CLSS ?"), "%1CLSS=1");
    EXPECT_EQ(client.Ask("%1CLSS ?"), "%1CLSS=1");
    EXPECT_TRUE(client.IsSentAway());
}

TEST_F(ProjectorAtWork, SendsByteByByteWhenItIsTold) {
    Given("--split");
    ProjectorClient client(projector.Port());
    EXPECT_EQ(client.Line(), "PJLINK 0");
    EXPECT_EQ(client.Ask("%1INF1 ?"), "%1INF1=House technics");
    EXPECT_GT(client.Pieces(), 1);
}

TEST_F(ProjectorAtWork, TakesItsTimeWhenItIsTold) {
    Given("--slow 100");
    ProjectorClient client(projector.Port());
    client.Line();
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(client.Ask("%1CLSS ?"), "%1CLSS=1");
    EXPECT_GE(clock.elapsed(), 90);
}

TEST_F(ProjectorAtWork, SendsSilentClientsAndEndlessLinesAway) {
    Given("--idle 50");
    ProjectorClient silent(projector.Port());
    EXPECT_TRUE(silent.IsSentAway());
    ProjectorProcess other;
    ASSERT_TRUE(other.Start({}));
    ProjectorClient endless(other.Port());
    endless.Say(QByteArray(100000, 'x'));
    EXPECT_TRUE(endless.IsSentAway());
}

TEST_F(ProjectorAtWork, PrintsCommandsWhenItIsTold) {
    Given("--trace");
    ProjectorClient client(projector.Port());
    client.Line();
    client.Ask("%1POWR 1");
    EXPECT_TRUE(projector.Output().endsWith("\n%1POWR 1\n"));
}

TEST_F(ProjectorAtWork, SaysItsExitCodes) {
    EXPECT_EQ(projector.Run({QStringLiteral("--help")}), 0);
    EXPECT_TRUE(projector.Output().contains("Exit codes"));
    EXPECT_EQ(projector.Run({QStringLiteral("--port"), QStringLiteral("no")}), 2);
    EXPECT_EQ(projector.Errors(), "projector: --port does not take \"no\"\n");
    Given("");
    ProjectorProcess second;
    EXPECT_EQ(second.Run({QStringLiteral("--port"), QString::number(projector.Port())}), 3);
    EXPECT_TRUE(second.Errors().startsWith("projector: port "));
    EXPECT_EQ(projector.Terminate(), 0);
}
