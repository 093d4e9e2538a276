#include "DownloadFile.h"

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QFileInfo>
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

    static DownloadFile::End Download(const QString& path, const QByteArray& bytes) {
        DownloadFile file(path);
        return file.Write(bytes) ? file.Finish() : DownloadFile::End::Refused;
    }
    /// All that lies in the folder, hidden files too.
    QStringList Names() const {
        return QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
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

    using End = DownloadFile::End;
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
    EXPECT_EQ(Download(path, "a long first take"), End::Written);
    EXPECT_EQ(Download(path, "take 2"), End::Written);
    EXPECT_EQ(Content(path), "take 2");
    EXPECT_EQ(Download(path, QByteArray()), End::Written);
    EXPECT_EQ(Content(path), "");
    EXPECT_EQ(Names(), QStringList{QStringLiteral("film.mpg")});
}

TEST_F(Downloads, TakeTheirPlaceOnlyWhenAllIsThere) {
    Download(In("film"), "an old film");
    DownloadFile file(In("film"));
    EXPECT_TRUE(file.Write("a new "));
    EXPECT_EQ(Content(In("film")), "an old film");
    EXPECT_TRUE(file.Write("film"));
    EXPECT_EQ(file.Finish(), End::Written);
    EXPECT_EQ(Content(In("film")), "a new film");
}

TEST_F(Downloads, ThatBreakOffLeaveNothingBehind) {
    Download(In("film"), "an old film");
    {
        DownloadFile file(In("film"));
        DownloadFile fresh(In("fresh"));
        EXPECT_TRUE(file.Write("half"));
        EXPECT_TRUE(fresh.Write("half"));
    }
    EXPECT_EQ(Content(In("film")), "an old film");
    EXPECT_EQ(Names(), QStringList{QStringLiteral("film")});
}

TEST_F(Downloads, MayBeginAnew) {
    DownloadFile file(In("film"));
    EXPECT_TRUE(file.Write("another one"));
    file.Restart();
    EXPECT_TRUE(file.Write("film"));
    EXPECT_EQ(file.Finish(), End::Written);
    EXPECT_EQ(Content(In("film")), "film");
    EXPECT_EQ(Names(), QStringList{QStringLiteral("film")});
}

TEST_F(Downloads, KeepThePermissionsOfTheFileAndTheLinkThatLeadsToIt) {
    Download(In("film"), "old");
    ASSERT_TRUE(QFile::setPermissions(In("film"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    const QFile::Permissions before = QFile::permissions(In("film"));
    ASSERT_TRUE(QFile::link(In("film"), In("link")));
    EXPECT_EQ(Download(In("link"), "new"), End::Written);
    EXPECT_TRUE(QFileInfo(In("link")).isSymLink());
    EXPECT_EQ(Content(In("film")), "new");
    EXPECT_EQ(QFile::permissions(In("film")), before);
}

TEST_F(Downloads, MayHaveTheLongestNameThereIs) {
    const QString name(255, QLatin1Char('n'));
    EXPECT_EQ(Download(folder.filePath(name), "x"), End::Written);
    EXPECT_EQ(Names(), QStringList{name});
}

TEST_F(Downloads, AreRefusedWhereNoFileCanBe) {
    EXPECT_EQ(Download(In("missing/film.mpg"), "x"), End::Refused);
    EXPECT_EQ(Download(In("missing/film.mpg"), QByteArray()), End::Refused);
    EXPECT_EQ(Download(folder.path(), "x"), End::Refused);
    EXPECT_EQ(Download(QStringLiteral("/dev/null"), "x"), End::Refused);
}

TEST_F(Downloads, NeverWaitAtAPipeThatNobodyReads) {
    const QString pipe = In("pipe");
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_EQ(Download(pipe, "x"), End::Refused);
}

TEST_F(Downloads, NeverGoToADevice) {
    ASSERT_TRUE(QFile::link(QStringLiteral("/dev/full"), In("full")));
    EXPECT_EQ(Download(In("full"), "x"), End::Refused);
}

TEST_F(Downloads, ThatDoNotFitLeaveNoHalfOfAFileAndTheOldOneAsItWas) {
    const Limited files(RLIMIT_FSIZE, 1000);
    ASSERT_EQ(Download(In("old"), "it fits"), End::Written);
    for (const char* name : {"new", "old"})
        EXPECT_EQ(Download(In(name), QByteArray(100000, 'x')), End::Refused) << name;
    EXPECT_EQ(Content(In("old")), "it fits");
    EXPECT_EQ(Names(), QStringList{QStringLiteral("old")});
}

TEST_F(Downloads, CountAsDoneOverAFileThatCannotBeOpenedAsItIsMeant) {
    ASSERT_EQ(Download(In("old"), "an old film"), End::Written);
    {
        const Limited descriptors(RLIMIT_NOFILE, 0);
        EXPECT_EQ(Download(In("old"), "a new film"), End::KeptOld);
        EXPECT_EQ(Download(In("new"), "a new film"), End::Refused);
    }
    EXPECT_EQ(Content(In("old")), "an old film");
}
