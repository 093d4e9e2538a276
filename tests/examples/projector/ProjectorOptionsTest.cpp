#include "ProjectorOptions.h"

#include <gtest/gtest.h>

namespace {

projector::Options Read(const QString& words) {
    return projector::ReadOptions(QStringList{QStringLiteral("projector")} +
                                  words.split(QLatin1Char(' '), Qt::SkipEmptyParts));
}

} // namespace

TEST(ProjectorOptions, HaveDefaultsThatNeedNoWords) {
    const projector::Options options = Read({});
    EXPECT_EQ(options.problem, QString());
    EXPECT_EQ(options.port, 0);
    EXPECT_EQ(options.password, QByteArray());
    EXPECT_EQ(options.description.lampHours, QList<int>{0});
    EXPECT_FALSE(options.split || options.trace || options.help || options.description.broken);
}

TEST(ProjectorOptions, AreTakenFromTheCommandLine) {
    const projector::Options options = Read(
        QStringLiteral("--port 4352 --password secret1 --warm-up 5 --cool-down 6 --name Stage --inputs 11,59 "
                       "--lamps 7,99999 --errors 012012 --broken --idle 8 --drop-after 2 --slow 9 --split --trace"));
    EXPECT_EQ(options.problem, QString());
    EXPECT_EQ(options.port, 4352);
    EXPECT_EQ(options.password, "secret1");
    EXPECT_EQ(options.description.warmUp, 5);
    EXPECT_EQ(options.description.coolDown, 6);
    EXPECT_EQ(options.description.name, QStringLiteral("Stage"));
    EXPECT_EQ(options.description.inputs, (QStringList{QStringLiteral("11"), QStringLiteral("59")}));
    EXPECT_EQ(options.description.lampHours, (QList<int>{7, 99999}));
    EXPECT_EQ(options.description.errors, QStringLiteral("012012"));
    EXPECT_EQ(options.idle, 8);
    EXPECT_EQ(options.dropAfter, 2);
    EXPECT_EQ(options.slow, 9);
    EXPECT_TRUE(options.split && options.trace && options.description.broken);
}

TEST(ProjectorOptions, KnowAProjectorWithoutLamps) {
    EXPECT_TRUE(Read(QStringLiteral("--lamps none")).description.lampHours.isEmpty());
}

TEST(ProjectorOptions, AreRefusedWithTheNameOfWhatIsWrong) {
    const char* wrong[] = {"--port 65536", "--port -1",       "--port x",       "--password a-b", "--warm-up -1",
                           "--inputs 10",  "--inputs 11,",    "--inputs 61",    "--lamps 1,x",    "--lamps 100000",
                           "--errors 01",  "--errors 000003", "--drop-after 0", "--slow soon",    "--idle 1.5"};
    for (const char* words : wrong) {
        const QString text = QString::fromLatin1(words);
        EXPECT_EQ(Read(text).problem,
                  QStringLiteral("%1 does not take \"%2\"")
                      .arg(text.section(QLatin1Char(' '), 0, 0), text.section(QLatin1Char(' '), 1)));
    }
    EXPECT_EQ(projector::ReadOptions(
                  {QStringLiteral("projector"), QStringLiteral("--password"), QString(33, QLatin1Char('a'))})
                  .problem.left(10),
              QStringLiteral("--password"));
    EXPECT_EQ(projector::ReadOptions({QStringLiteral("projector"), QStringLiteral("--name"), QStringLiteral("a\rb")})
                  .problem.left(6),
              QStringLiteral("--name"));
    EXPECT_FALSE(Read(QStringLiteral("--fly")).problem.isEmpty());
    EXPECT_EQ(Read(QStringLiteral("4352")).problem, QStringLiteral("unexpected: 4352"));
}

TEST(ProjectorOptions, AreAllToldByTheHelp) {
    for (const char* name :
         {"--port", "--password", "--warm-up", "--cool-down", "--name", "--inputs", "--lamps", "--errors", "--broken",
          "--idle", "--drop-after", "--slow", "--split", "--trace", "--help"})
        EXPECT_TRUE(projector::HelpText().contains(QLatin1String(name))) << name;
}
