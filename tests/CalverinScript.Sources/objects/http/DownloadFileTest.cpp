#include "DownloadFile.h"

#include <gtest/gtest.h>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

namespace {

class Downloads : public testing::Test {
protected:
    QString In(const char* name) const { return folder.filePath(QString::fromLatin1(name)); }
    static QByteArray Content(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
    }

    /// While it lives the system refuses more of something.
    class Limited {
    public:
        Limited(decltype(RLIMIT_FSIZE) what, rlim_t most)
            : m_what(what)
            , m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
            ::getrlimit(m_what, &m_before);
            const rlimit less{most, m_before.rlim_max};
            ::setrlimit(m_what, &less);
        }
        ~Limited() {
            ::setrlimit(m_what, &m_before);
            std::signal(SIGXFSZ, m_handler);
        }
        Limited(const Limited&) = delete;
        Limited& operator=(const Limited&) = delete;

    private:
        const decltype(RLIMIT_FSIZE) m_what;
        void (*const m_handler)(int);
        rlimit m_before{};
    };

    QTemporaryDir folder;
    const QUrl address{QStringLiteral("http://h/films/a%20film.mpg?take=2")};
};

} // namespace

TEST_F(Downloads, GoIntoAFolderUnderTheNameInTheAddress) {
    EXPECT_EQ(DownloadTarget(folder.path(), address), In("a film.mpg"));
    EXPECT_EQ(DownloadTarget(folder.path(), QUrl(QStringLiteral("http://h/x%2F..%2Fy"))), In("y"));
}

TEST_F(Downloads, GoToThePathWhenItIsNoFolder) {
    EXPECT_EQ(DownloadTarget(In("new.mpg"), address), In("new.mpg"));
    EXPECT_EQ(DownloadTarget(QStringLiteral("new.mpg"), address), QStringLiteral("new.mpg"));
}

TEST_F(Downloads, UnderstandBothSeparators) {
    EXPECT_EQ(DownloadTarget(folder.path() + QStringLiteral("\\new.mpg"), address), In("new.mpg"));
}

TEST_F(Downloads, NeedAFileName) {
    EXPECT_EQ(DownloadTarget(QString(), address), QString());
    EXPECT_EQ(DownloadTarget(In("missing/"), address), QString());
}

TEST_F(Downloads, ReplaceTheFile) {
    const QString path = In("film.mpg");
    EXPECT_TRUE(WriteDownload(path, "a long first take"));
    EXPECT_TRUE(WriteDownload(path, "take 2"));
    EXPECT_EQ(Content(path), "take 2");
    EXPECT_TRUE(WriteDownload(path, QByteArray()));
    EXPECT_EQ(Content(path), "");
}

TEST_F(Downloads, AreRefusedWhereNoFileCanBe) {
    EXPECT_FALSE(WriteDownload(In("missing/film.mpg"), "x"));
    EXPECT_FALSE(WriteDownload(folder.path(), "x"));
    EXPECT_FALSE(WriteDownload(QStringLiteral("/dev/null"), "x"));
}

TEST_F(Downloads, NeverWaitAtAPipeThatNobodyReads) {
    const QString pipe = In("pipe");
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_FALSE(WriteDownload(pipe, "x"));
}

TEST_F(Downloads, NeverGoToADevice) {
    ASSERT_TRUE(QFile::link(QStringLiteral("/dev/full"), In("full")));
    EXPECT_FALSE(WriteDownload(In("full"), "x"));
}

TEST_F(Downloads, ThatDoNotFitLeaveNoHalfOfAFile) {
    const Limited files(RLIMIT_FSIZE, 1000);
    ASSERT_TRUE(WriteDownload(In("old"), "it fits"));
    for (const char* name : {"new", "old"}) {
        EXPECT_FALSE(WriteDownload(In(name), QByteArray(100000, 'x'))) << name;
        EXPECT_FALSE(QFile::exists(In(name))) << name;
    }
}

TEST_F(Downloads, CountAsDoneOverAFileThatCannotBeOpenedAsItIsMeant) {
    ASSERT_TRUE(WriteDownload(In("old"), "an old film"));
    {
        const Limited descriptors(RLIMIT_NOFILE, 0);
        EXPECT_TRUE(WriteDownload(In("old"), "a new film"));
        EXPECT_FALSE(WriteDownload(In("new"), "a new film"));
    }
    EXPECT_EQ(Content(In("old")), "an old film");
}
