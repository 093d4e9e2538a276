#include "TextFile.h"

#include <sys/stat.h>

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

using namespace stagehost;

namespace {

class TextFileTest : public testing::Test {
protected:
    /// @return what is wrong with the file, without its name.
    QString Problem() {
        QString problem;
        EXPECT_FALSE(ReadTextBytes(path, &problem));
        return problem.replace(path, QStringLiteral("F"));
    }

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a"));
};

} // namespace

TEST_F(TextFileTest, OpensNoPipeAndNoDeviceSinceTheyMayNeverEnd) {
    ASSERT_EQ(mkfifo(path.toLocal8Bit().constData(), 0600), 0);
    EXPECT_EQ(Problem(), QStringLiteral("F is no regular file"));
    EXPECT_EQ(WhyNotAppendable(path), QStringLiteral("it is no regular file"));
    QString problem;
    EXPECT_FALSE(ReadTextBytes(QStringLiteral("/dev/zero"), &problem));
    EXPECT_EQ(problem, QStringLiteral("/dev/zero is no regular file"));
    EXPECT_EQ(WhyNotAppendable(QStringLiteral("/dev/full")), QStringLiteral("it is no regular file"));
    EXPECT_EQ(WhyNotAppendable(folder.path()), QStringLiteral("it is a folder"));
}

TEST_F(TextFileTest, ReadsUpTo64MegabytesAndNoMore) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(file.resize(qint64{64} << 20));
    QString problem;
    const auto bytes = ReadTextBytes(path, &problem);
    ASSERT_TRUE(bytes);
    EXPECT_EQ(bytes->size(), 64 << 20);
    ASSERT_TRUE(file.resize((qint64{64} << 20) + 1));
    EXPECT_EQ(Problem(), QStringLiteral("F is larger than 64 MB"));
}

TEST_F(TextFileTest, MakesAFileThatIsToBeAppendedTo) {
    EXPECT_EQ(WhyNotAppendable(path), QString());
    EXPECT_TRUE(QFile::exists(path));
    EXPECT_EQ(WhyNotAppendable(folder.filePath(QStringLiteral("no/such"))),
              QStringLiteral("No such file or directory"));
}
