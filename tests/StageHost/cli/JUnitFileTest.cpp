#include "JUnitFile.h"

#include <csignal>

#include <sys/resource.h>

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace stagehost {
namespace {

/// While it stands, no file grows beyond so many bytes: as on a disk that is full.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, SIG_DFL);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit m_before{};
};

QByteArray ContentOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

TEST(JUnitFile, StaysAsItWasWhenTheNewOneDoesNotFitOnTheDisk) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("steps.xml"));
    const QByteArray old = "<testsuites>the last one</testsuites>\n";
    ASSERT_FALSE(KeepJUnitFile(path, old));
    for (const int size : {1000, 100000}) { // what is written at the end at once, and in between
        const FullDisk disk(100);
        const auto failure = KeepJUnitFile(path, "<testsuites>" + QByteArray(size, 'x') + "</testsuites>\n");
        ASSERT_TRUE(failure) << size;
        EXPECT_TRUE(failure->text.contains(QStringLiteral("steps.xml: cannot be written")))
            << failure->text.toStdString();
        EXPECT_EQ(ContentOf(path).toStdString(), old.toStdString());
    }
    ASSERT_FALSE(KeepJUnitFile(path, "<testsuites/>\n"));
    EXPECT_EQ(ContentOf(path).toStdString(), "<testsuites/>\n");
}

} // namespace
} // namespace stagehost
