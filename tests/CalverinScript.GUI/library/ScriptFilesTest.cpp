#include <fstream>
#include <iterator>
#include <tuple>

#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "ScriptFiles.h"

namespace {

/// Until its end the process is a user without privileges, for whom permissions count. Does nothing for one who has none.
class WithoutPrivileges {
public:
    WithoutPrivileges()
        : m_wasRoot(getuid() == 0) {
        m_done = !m_wasRoot || setresuid(kNobody, kNobody, 0) == 0;
    }
    ~WithoutPrivileges() {
        if (m_wasRoot && m_done)
            m_done = setresuid(0, 0, 0) == 0;
    }
    WithoutPrivileges(const WithoutPrivileges&) = delete;
    WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;
    static constexpr uid_t kNobody = 65534;

private:
    const bool m_wasRoot;
    bool m_done;
};

class ScriptFilesOnDisk : public testing::Test {
protected:
    void SetUp() override { Give(folder.path()); }
    QString Path(const char* name) const { return folder.filePath(QLatin1String(name)); }
    QString Given(const char* name, const std::string& content, mode_t mode = 0644) const {
        const QString path = Path(name);
        std::ofstream(path.toStdString(), std::ios::binary) << content;
        chmod(path.toLocal8Bit().constData(), mode);
        Give(path);
        return path;
    }
    static std::string Content(const QString& path) {
        std::ifstream file(path.toStdString(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    QStringList Files() const { return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name); }
    /// To the user that a privileged process becomes; others have it already.
    static void Give(const QString& path) {
        std::ignore = chown(path.toLocal8Bit().constData(), WithoutPrivileges::kNobody, 0);
    }

    QTemporaryDir folder;
};

TEST_F(ScriptFilesOnDisk, AreReadAsUtf8OrElseAsLatin1) {
    EXPECT_EQ(ReadScriptFile(Given("a.js", "\xc3\xbc")), QStringLiteral("\u00fc"));
    EXPECT_EQ(ReadScriptFile(Given("b.js", "\xfc")), QStringLiteral("\u00fc"));
    EXPECT_FALSE(ReadScriptFile(Path("none.js")));
    EXPECT_FALSE(ReadScriptFile(QString()));
}

TEST_F(ScriptFilesOnDisk, AreReplacedAndLeaveNothingBeside) {
    const QString path = Given("a.js", "old");
    EXPECT_TRUE(WriteScriptFile(path, QStringLiteral("n\u00e4u")));
    EXPECT_EQ(Content(path), "n\xc3\xa4u");
    EXPECT_EQ(Files(), QStringList{QStringLiteral("a.js")});
}

TEST_F(ScriptFilesOnDisk, KeepTheirPermissions) {
    const QString path = Given("a.js", "old", 0640);
    ASSERT_TRUE(WriteScriptFile(path, QStringLiteral("new")));
    struct stat info = {};
    ASSERT_EQ(stat(path.toLocal8Bit().constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0640u);
}

TEST_F(ScriptFilesOnDisk, ALinkStaysOne) {
    const QString path = Given("real.js", "old");
    ASSERT_TRUE(QFile::link(path, Path("link.js")));
    ASSERT_TRUE(WriteScriptFile(Path("link.js"), QStringLiteral("new")));
    EXPECT_EQ(Content(path), "new");
    EXPECT_TRUE(QFileInfo(Path("link.js")).isSymLink());
}

TEST_F(ScriptFilesOnDisk, AnUnreadableFileIsNone) {
    const QString path = Given("a.js", "secret", 0);
    const WithoutPrivileges now;
    EXPECT_FALSE(ReadScriptFile(path));
    EXPECT_FALSE(CopyScriptFile(path, Path("b.js")));
    EXPECT_FALSE(QFile::exists(Path("b.js")));
}

TEST_F(ScriptFilesOnDisk, AReadOnlyFileIsNotWritableButMayBeReplacedWhenAskedFor) {
    const QString path = Given("a.js", "old", 0444);
    const WithoutPrivileges now;
    EXPECT_FALSE(CanWriteScriptFile(path));
    EXPECT_TRUE(WriteScriptFile(path, QStringLiteral("new")));
    EXPECT_EQ(Content(path), "new");
}

TEST_F(ScriptFilesOnDisk, AReadOnlyFolderTakesNothing) {
    const QString path = Given("a.js", "old");
    chmod(folder.path().toLocal8Bit().constData(), 0555);
    {
        const WithoutPrivileges now;
        EXPECT_FALSE(CanWriteScriptFile(Path("new.js")));
        QString failure;
        EXPECT_FALSE(WriteScriptFile(Path("new.js"), QStringLiteral("x"), &failure));
        EXPECT_FALSE(failure.isEmpty());
    }
    chmod(folder.path().toLocal8Bit().constData(), 0755);
    EXPECT_EQ(Content(path), "old");
}

TEST_F(ScriptFilesOnDisk, AMissingFolderIsMade) {
    EXPECT_TRUE(WriteScriptFile(Path("deep/er/a.js"), QStringLiteral("x")));
    EXPECT_EQ(Content(Path("deep/er/a.js")), "x");
}

TEST_F(ScriptFilesOnDisk, AFolderOfTheSameNameIsLeftAlone) {
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("a.js")));
    EXPECT_FALSE(CanWriteScriptFile(Path("a.js")));
    EXPECT_FALSE(WriteScriptFile(Path("a.js"), QStringLiteral("x")));
    EXPECT_FALSE(CopyScriptFile(Given("b.js", "x"), Path("a.js")));
    EXPECT_TRUE(QFileInfo(Path("a.js")).isDir());
}

TEST_F(ScriptFilesOnDisk, ACopyHasTheSameBytes) {
    const std::string bytes("\xff\x00\r\n\xc3", 5);
    EXPECT_TRUE(CopyScriptFile(Given("a.js", bytes), Given("b.js", "older and longer")));
    EXPECT_EQ(Content(Path("b.js")), bytes);
}

TEST_F(ScriptFilesOnDisk, AFullDiskLeavesTheOldScriptWhole) {
    const QString small = QString::fromLocal8Bit(qgetenv("CALVERIN_SMALL_DISK"));
    if (small.isEmpty())
        GTEST_SKIP() << "needs a small disk, which small_disk.sh gives";
    const QString path = QDir(small).filePath(QStringLiteral("a.js"));
    ASSERT_TRUE(WriteScriptFile(path, QStringLiteral("the old script")));
    const QString tooLong(1024 * 1024, QLatin1Char('x'));
    QString failure;
    EXPECT_FALSE(WriteScriptFile(path, tooLong, &failure));
    EXPECT_FALSE(failure.isEmpty());
    ASSERT_TRUE(WriteScriptFile(Path("big.js"), tooLong));
    EXPECT_FALSE(CopyScriptFile(Path("big.js"), path));
    EXPECT_EQ(Content(path), "the old script");
    EXPECT_EQ(QDir(small).entryList(QDir::Files | QDir::Hidden).size(), 1) << "nothing is left beside it";
}

TEST(LineEnds, AreThoseOfTheModelWhereItHasNoOthers) {
    const QString text = QStringLiteral("a\nb\n");
    EXPECT_EQ(WithLineEndsOf(QStringLiteral("x\r\ny\r\n"), text), QStringLiteral("a\r\nb\r\n"));
    EXPECT_EQ(WithLineEndsOf(QStringLiteral("x\r\ny\n"), text), text);
    EXPECT_EQ(WithLineEndsOf(QString(), text), text);
    EXPECT_EQ(WithPlainLineEnds(QStringLiteral("a\r\nb\rc\n")), QStringLiteral("a\nb\nc\n"));
}

} // namespace
