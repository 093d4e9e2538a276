#include "logsE.h"

#include <chrono>
#include <cstring>
#include <ctime>
#include <thread>

#include <gtest/gtest.h>

#include <QDateTime>
#include <QFile>
#include <QLibrary>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace {

/// The library as a module finds it: by the names of its entry points.
class LogsE : public testing::Test {
protected:
    template <typename Function>
    Function Entry(const char* name) {
        const auto function = reinterpret_cast<Function>(library.resolve(name));
        EXPECT_NE(function, nullptr) << name;
        return function;
    }

    void SetUp() override { ASSERT_TRUE(library.load()) << library.errorString().toStdString(); }

    LogsERecord RecordFor(const QString& path) {
        LogsERecord record{};
        record.size = sizeof(record);
        std::strncpy(record.path, path.toLatin1().constData(), sizeof(record.path) - 1);
        record.writerId = 42;
        return record;
    }

    QStringList Lines() {
        QFile file(Path());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return QString::fromLatin1(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

    QString Path() { return folder.filePath(QStringLiteral("show.log")); }

    QTemporaryDir folder;
    QLibrary library{QStringLiteral(STAGEHOST_BIN "/logsE.so")};
    decltype(&logsEInitializeLibrary) initialize = Entry<decltype(&logsEInitializeLibrary)>("logsEInitializeLibrary");
    decltype(&logsEFinalizeLibrary) finalize = Entry<decltype(&logsEFinalizeLibrary)>("logsEFinalizeLibrary");
    decltype(&logsEWriteMessage) write = Entry<decltype(&logsEWriteMessage)>("logsEWriteMessage");
    decltype(&logsEFlush) flush = Entry<decltype(&logsEFlush)>("logsEFlush");
    decltype(&logsEGetWriterCounter) counter = Entry<decltype(&logsEGetWriterCounter)>("logsEGetWriterCounter");
    decltype(&logsEWriteMessage2) write2 = Entry<decltype(&logsEWriteMessage2)>("logsEWriteMessage2");
    decltype(&logsEGetWriterName) writerName = Entry<decltype(&logsEGetWriterName)>("logsEGetWriterName");
    decltype(&logsEGetWriterID) writerId = Entry<decltype(&logsEGetWriterID)>("logsEGetWriterID");
    decltype(&logsEGetEngineStatus) status = Entry<decltype(&logsEGetEngineStatus)>("logsEGetEngineStatus");
    decltype(&logsEGetEngineStatusEx) statusEx = Entry<decltype(&logsEGetEngineStatusEx)>("logsEGetEngineStatusEx");
};

} // namespace

TEST_F(LogsE, WritesLinesWithTimeLevelAndSource) {
    const LogsERecord record = RecordFor(Path());
    void* handle = initialize("prog", &record);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(write(handle, 5, "first\nline"), 0);
    EXPECT_EQ(write2(handle, 7, "part", "second"), 0);
    EXPECT_EQ(write(handle, 1, nullptr), 0);
    EXPECT_EQ(flush(handle), 0);
    const QStringList lines = Lines();
    ASSERT_EQ(lines.size(), 3);
    const QString time = QStringLiteral(R"(^20\d\d-\d\d-\d\d \d\d:\d\d:\d\d\.\d\d\d [+-]\d{4} )");
    EXPECT_TRUE(QRegularExpression(time + QStringLiteral(R"(\[5\] prog: first line$)")).match(lines[0]).hasMatch())
        << lines[0].toStdString();
    EXPECT_TRUE(QRegularExpression(time + QStringLiteral(R"(\[7\] part: second$)")).match(lines[1]).hasMatch());
    EXPECT_TRUE(lines[2].endsWith(QLatin1String("[1] prog: ")));
    EXPECT_EQ(finalize(handle), 0);
}

TEST_F(LogsE, HasTheTimeOfTheUser) {
    qputenv("TZ", "XXX-05:30");
    tzset();
    const LogsERecord record = RecordFor(Path());
    void* handle = initialize("prog", &record);
    const QString before =
        QDateTime::currentDateTimeUtc().addSecs(5 * 3600 + 30 * 60).toString(QStringLiteral("yyyy-MM-dd HH:mm"));
    write(handle, 5, "x");
    finalize(handle);
    qunsetenv("TZ");
    tzset();
    EXPECT_TRUE(Lines().first().contains(QLatin1String(" +0530 "))) << Lines().first().toStdString();
    EXPECT_LE(before, Lines().first().left(before.size()));
}

TEST_F(LogsE, FoldsALineThatComesAgainAndAgain) {
    const LogsERecord record = RecordFor(Path());
    void* handle = initialize("prog", &record);
    for (int round = 0; round < 413; ++round)
        EXPECT_EQ(write(handle, 2, "kxpModule [desk] the door is open"), 0);
    write(handle, 2, "kxpModule [desk] the door is shut");
    write(handle, 2, "kxpModule [desk] the door is shut");
    finalize(handle);
    QStringList texts;
    for (const QString& line : Lines())
        texts += line.mid(line.indexOf(QLatin1Char('[')));
    EXPECT_EQ(texts.join(QLatin1Char('|')).toStdString(),
              "[2] prog: kxpModule [desk] the door is open|[2] prog: kxpModule [desk] ... 412 times more|"
              "[2] prog: kxpModule [desk] the door is shut|[2] prog: kxpModule [desk] ... once more");
}

TEST_F(LogsE, TellsOfAFoldedLineInTimeWhenNothingElseComes) {
    const LogsERecord record = RecordFor(Path());
    void* handle = initialize("prog", &record);
    for (int round = 0; round < 5; ++round)
        write(handle, 2, "m [desk] again");
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (Lines().size() < 2 && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_TRUE(Lines().last().endsWith(QLatin1String("m [desk] ... 4 times more")));
    EXPECT_EQ(finalize(handle), 0);
    EXPECT_EQ(Lines().size(), 2);
}

TEST_F(LogsE, KeepsEachDevicesLinesInOrderWhileOthersComeBetween) {
    const LogsERecord record = RecordFor(Path());
    void* handle = initialize("prog", &record);
    for (int round = 0; round < 3; ++round) {
        write(handle, 2, "m [a] tick");
        write(handle, 2, "m [b] tock");
    }
    write(handle, 3, "m [a] tick");
    flush(handle);
    QStringList texts;
    for (const QString& line : Lines())
        texts += line.mid(line.indexOf(QLatin1Char('[')));
    EXPECT_EQ(texts.join(QLatin1Char('|')).toStdString(),
              "[2] prog: m [a] tick|[2] prog: m [b] tock|[2] prog: m [a] ... 2 times more|[3] prog: m [a] tick|"
              "[2] prog: m [b] ... 2 times more");
    finalize(handle);
}

TEST_F(LogsE, FoldsNoLineThatContinuesAnother) {
    const LogsERecord record = RecordFor(Path());
    void* handle = initialize("prog", &record);
    for (int round = 0; round < 3; ++round)
        write(handle, 5, "m [a]     at f (x.js:1)");
    finalize(handle);
    EXPECT_EQ(Lines().size(), 3);
}

TEST_F(LogsE, AppendsToWhatIsThere) {
    for (int round = 0; round < 2; ++round) {
        const LogsERecord record = RecordFor(Path());
        void* handle = initialize("prog", &record);
        write(handle, 5, "again");
        finalize(handle);
    }
    EXPECT_EQ(Lines().size(), 2);
}

TEST_F(LogsE, CountsItsUsers) {
    const LogsERecord record = RecordFor(Path());
    EXPECT_EQ(counter(), 0);
    void* first = initialize("a", &record);
    void* second = initialize("b", &record);
    EXPECT_EQ(counter(), 2);
    EXPECT_EQ(finalize(first), 0);
    EXPECT_EQ(finalize(first), LOGSE_BAD_HANDLE);
    EXPECT_EQ(counter(), 1);
    EXPECT_EQ(write(first, 5, "x"), LOGSE_BAD_HANDLE);
    EXPECT_EQ(write(second, 5, "x"), 0);
    EXPECT_EQ(finalize(second), 0);
    EXPECT_EQ(counter(), 0);
}

TEST_F(LogsE, IsSilentAndSaysSoWhenTheFileCannotBeWritten) {
    const LogsERecord record = RecordFor(QStringLiteral("/nowhere/at/all.log"));
    void* handle = initialize("prog", &record);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(status(handle), LOGSE_NO_FILE);
    EXPECT_EQ(write(handle, 5, "x"), LOGSE_NO_FILE);
    EXPECT_EQ(flush(handle), LOGSE_NO_FILE);
    char text[64] = {};
    EXPECT_EQ(statusEx(handle, text, sizeof(text)), LOGSE_NO_FILE);
    EXPECT_STREQ(text, "cannot write /nowhere/at/all.log");
    EXPECT_EQ(finalize(handle), 0);
}

TEST_F(LogsE, SaysSoWhenTheDiskIsFull) {
    const LogsERecord record = RecordFor(QStringLiteral("/dev/full"));
    void* handle = initialize("prog", &record);
    EXPECT_EQ(status(handle), 0);
    EXPECT_EQ(write(handle, 5, "x"), LOGSE_NO_FILE);
    EXPECT_EQ(status(handle), LOGSE_NO_FILE);
    finalize(handle);
}

TEST_F(LogsE, RefusesRecordsOfAnotherForm) {
    LogsERecord record = RecordFor(Path());
    record.size = 1047;
    EXPECT_EQ(initialize("prog", &record), nullptr);
    EXPECT_EQ(initialize("prog", nullptr), nullptr);
    record = RecordFor(Path());
    std::memset(record.path, 'x', sizeof(record.path));
    EXPECT_EQ(initialize("prog", &record), nullptr);
    EXPECT_EQ(counter(), 0);
}

TEST_F(LogsE, TellsNameAndNumberOfAWriter) {
    const LogsERecord record = RecordFor(Path());
    void* handle = initialize("a long name", &record);
    EXPECT_EQ(writerId(handle), 42);
    char name[7] = {};
    EXPECT_EQ(writerName(handle, name, sizeof(name)), 0);
    EXPECT_STREQ(name, "a long");
    EXPECT_EQ(writerName(handle, nullptr, 5), LOGSE_BAD_ARGUMENT);
    EXPECT_EQ(writerName(handle, name, 0), LOGSE_BAD_ARGUMENT);
    EXPECT_EQ(statusEx(handle, nullptr, 5), LOGSE_BAD_ARGUMENT);
    EXPECT_EQ(status(handle), 0);
    finalize(handle);
    EXPECT_EQ(writerId(handle), -1);
    EXPECT_EQ(status(handle), LOGSE_BAD_HANDLE);
    EXPECT_EQ(writerName(handle, name, sizeof(name)), LOGSE_BAD_HANDLE);
}

TEST_F(LogsE, KeepsLinesOfManyThreadsWhole) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 200;
    const LogsERecord record = RecordFor(Path());
    std::vector<std::thread> writers;
    writers.reserve(kThreads);
    for (int number = 0; number < kThreads; ++number) {
        writers.emplace_back([&] {
            void* handle = initialize("prog", &record);
            for (int round = 0; round < kRounds; ++round)
                write(handle, 5, round % 2 == 0 ? "0123456789 0123456789 even" : "0123456789 0123456789 odds");
            finalize(handle);
        });
    }
    for (auto& writer : writers)
        writer.join();
    const QStringList lines = Lines();
    EXPECT_EQ(lines.size(), kThreads * kRounds);
    for (const QString& line : lines)
        EXPECT_TRUE(
            line.contains(QRegularExpression(QStringLiteral("\\[5\\] prog: 0123456789 0123456789 (even|odds)$"))))
            << line.toStdString();
}
