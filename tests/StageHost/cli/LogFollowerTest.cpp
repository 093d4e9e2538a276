#include "LogFollower.h"

#include <thread>

#include <sys/stat.h>

#include <gtest/gtest.h>

#include <QStringList>
#include <QTemporaryDir>

using namespace stagehost;

namespace {

class LogFollowerTest : public testing::Test {
protected:
    void Append(const QByteArray& text) const {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::Append));
        file.write(text);
    }
    /// Bytes that the file takes on the disk, whatever its size.
    qint64 RoomOnDisk() const {
        struct stat file {};
        EXPECT_EQ(stat(path.toLocal8Bit().constData(), &file), 0);
        return file.st_blocks * 512;
    }
    LogFollower::Show Note() {
        return [this](const QString& line) { lines += line; };
    }

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.log"));
    QStringList lines;
};

TEST_F(LogFollowerTest, HandsOnWholeLinesThatComeFromNowOn) {
    Append("of yesterday\n");
    LogFollower follower(path, LogFollower::Keep::All, Note());
    Append("one\ntwo\nthr");
    follower.Look();
    EXPECT_EQ(lines.join(QLatin1Char('|')).toStdString(), "one|two");
    Append("ee\n");
    follower.Look();
    EXPECT_EQ(lines.join(QLatin1Char('|')).toStdString(), "one|two|three");
}

TEST_F(LogFollowerTest, HandsOnWhatIsLeftAtItsEnd) {
    {
        const LogFollower follower(path, LogFollower::Keep::All, Note());
        Append("last\n");
    }
    EXPECT_EQ(lines.join(QLatin1Char('|')).toStdString(), "last");
}

TEST_F(LogFollowerTest, KeepsALogOfItsOwnSmallAndLosesNoLine) {
    LogFollower follower(path, LogFollower::Keep::Little, Note());
    const QByteArray line = QByteArray(999, 'x') + '\n';
    for (int count = 0; count < 3000; ++count) {
        Append(line);
        follower.Look();
        ASSERT_LE(RoomOnDisk(), 1024 * 1024 + 64 * 1024);
    }
    EXPECT_EQ(lines.size(), 3000);
}

TEST_F(LogFollowerTest, HandsOnEveryLineOfAWriterThatNeverRests) {
    constexpr int kLines = 200000;
    LogFollower follower(path, LogFollower::Keep::Little, Note());
    std::thread writer([this] {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::Append | QIODevice::Unbuffered));
        for (int number = 0; number < kLines; ++number)
            file.write(QByteArray::number(number) + '\n');
    });
    while (lines.size() < kLines / 2)
        follower.Look(); // comes back each time, though there is always more
    writer.join();
    follower.Look();
    ASSERT_EQ(lines.size(), kLines);
    for (int number = 0; number < kLines; ++number)
        ASSERT_EQ(lines.at(number).toInt(), number);
}

TEST_F(LogFollowerTest, LeavesOutWhatIsNotWanted) {
    LogFollower follower(path, LogFollower::Keep::All, Note(),
                         [](const QByteArray& line) { return line.startsWith("no"); });
    Append("one\nno two\nthree\n");
    follower.Look();
    EXPECT_EQ(lines.join(QLatin1Char('|')).toStdString(), "one|three");
}

TEST_F(LogFollowerTest, LeavesALogThatSomebodyKeepsAsItIs) {
    LogFollower follower(path, LogFollower::Keep::All, Note());
    Append(QByteArray(2 * 1024 * 1024, 'x') + '\n');
    follower.Look();
    EXPECT_EQ(lines.size(), 1);
    EXPECT_EQ(QFile(path).size(), 2 * 1024 * 1024 + 1);
}

} // namespace
