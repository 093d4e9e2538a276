#include "ShowFile.h"

#include <csignal>

#include <sys/resource.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "ExitCodes.h"

/// A show file that is written: nothing of it is ever lost.

using namespace stagehost;

namespace {

constexpr const char* kOldText = "{ \"devices\": [{ \"name\": \"desk\" }] }\n";
constexpr const char* kNewText = "{ \"devices\": [{ \"name\": \"desk\", \"setup\": \"new\" }] }\n";

/// Files grow no more in this process while this stands, as on a full disk.
class FullDisk {
public:
    FullDisk() {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit none{0, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &none);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_signal);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    void (*const m_signal)(int) = std::signal(SIGXFSZ, SIG_IGN);
    rlimit m_before{};
};

class ShowFiles : public testing::Test {
protected:
    void GivenAChangedShow(const QString& name = QStringLiteral("show.json")) {
        path = folder.filePath(name);
        Write(kOldText);
        const auto failure = file.Open(path);
        ASSERT_FALSE(failure.has_value()) << failure->text.toStdString();
        file.SetSetup(QStringLiteral("desk"), QStringLiteral("new"));
    }
    void Write(const char* text) const {
        QFile target(path);
        ASSERT_TRUE(target.open(QIODevice::WriteOnly));
        target.write(text);
    }
    std::string Text() const {
        QFile source(path);
        return source.open(QIODevice::ReadOnly) ? source.readAll().toStdString() : "cannot be read";
    }
    /// @return what the failure says behind the file's name; "written" and "nothing to write" without one.
    std::string Save() {
        bool written = true;
        const auto failure = file.Save(&written);
        if (!failure)
            return written ? "written" : "nothing to write";
        EXPECT_FALSE(written);
        EXPECT_EQ(failure->exitCode, kExitBadUse);
        EXPECT_TRUE(failure->text.contains(path)) << failure->text.toStdString();
        return failure->text.mid(failure->text.indexOf(path) + path.size()).toStdString();
    }
    QStringList Entries() const { return QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot); }

    QTemporaryDir folder;
    QString path;
    ShowFile file;
};

TEST_F(ShowFiles, HoldTheChangeOnceTheyAreWritten) {
    GivenAChangedShow();
    EXPECT_EQ(Save(), "written");
    EXPECT_EQ(Text(), kNewText);
    EXPECT_EQ(Entries().size(), 1);
}

TEST_F(ShowFiles, AreNotWrittenWithoutAChange) {
    GivenAChangedShow();
    ASSERT_EQ(Save(), "written");
    ShowFile again;
    ASSERT_FALSE(again.Open(path).has_value());
    again.SetSetup(QStringLiteral("desk"), QStringLiteral("new"));
    bool written = true;
    EXPECT_FALSE(again.Save(&written).has_value());
    EXPECT_FALSE(written);
}

TEST_F(ShowFiles, ThatSomebodyElseHasChangedMeanwhileAreLeftAsTheyAre) {
    GivenAChangedShow();
    Write("{ \"name\": \"from another editor\" }");
    EXPECT_EQ(Save(), " has changed meanwhile and is left as it is");
    EXPECT_EQ(Text(), "{ \"name\": \"from another editor\" }");
    EXPECT_EQ(Entries().size(), 1) << "nothing of the new text stays behind";
}

TEST_F(ShowFiles, ThatAreGoneMeanwhileAreNotMadeAnew) {
    GivenAChangedShow();
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_EQ(Save().find(": it was there, but now: cannot read "), 0U);
    EXPECT_TRUE(Entries().isEmpty());
}

TEST_F(ShowFiles, WithAFolderInTheirPlaceAreNotWritten) {
    GivenAChangedShow();
    ASSERT_TRUE(QFile::remove(path));
    ASSERT_TRUE(QDir().mkdir(path));
    EXPECT_EQ(Save(), ": Filename refers to a directory");
    EXPECT_TRUE(QDir(path).isEmpty());
}

TEST_F(ShowFiles, StayAsTheyWereWhenTheDiskIsFull) {
    GivenAChangedShow();
    {
        const FullDisk full;
        EXPECT_EQ(Save(), ": File too large");
    }
    EXPECT_EQ(Text(), kOldText);
    EXPECT_EQ(Entries().size(), 1);
}

TEST_F(ShowFiles, StayAsTheyWereWhenNothingCanBeWrittenBesideThem) {
    constexpr int kLongestName = 255; // what stands beside it has a longer one
    GivenAChangedShow(QString(kLongestName - 5, QLatin1Char('a')) + QStringLiteral(".json"));
    EXPECT_EQ(Save().find(": "), 0U) << "the reason is in the toolkit's words";
    EXPECT_EQ(Text(), kOldText);
}

TEST_F(ShowFiles, KeepTheMarkOfUtf8ThatAnEditorHasWritten) {
    path = folder.filePath(QStringLiteral("show.json"));
    Write((std::string("\xEF\xBB\xBF") + kOldText).c_str());
    ASSERT_FALSE(file.Open(path).has_value());
    file.SetSetup(QStringLiteral("desk"), QStringLiteral("new"));
    EXPECT_EQ(Save(), "written");
    EXPECT_EQ(Text(), std::string("\xEF\xBB\xBF") + kNewText);
}

TEST_F(ShowFiles, TellAChangeThatFindsNoPlace) {
    GivenAChangedShow();
    file.SetSetup(QStringLiteral("nobody"), QStringLiteral("new"));
    EXPECT_EQ(Save(), ": its text cannot be changed");
    EXPECT_EQ(Text(), kOldText);
}

} // namespace
