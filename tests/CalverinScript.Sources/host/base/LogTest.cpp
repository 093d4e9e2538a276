#include "Log.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <thread>
#include <vector>

#include "Deadline.h"
#include "LogFixture.h"
#include "LogLibrary.h"

namespace {

class Log : public LogFixture {};

TEST_F(Log, StaysOffWithoutAModuleOrAHost) {
    GivenLibrary(RECORDING_LOGS);
    GivenConfig("OutputLogFile=2");
    EXPECT_FALSE(OpenLog(nullptr, "program", host.Root()));
    EXPECT_FALSE(OpenLog(folder.Module(), "program", nullptr));
    EXPECT_FALSE(IsLogOn(false));
}

TEST_F(Log, OfItsOwnStandsBesideTheModuleWithWriterZero) {
    GivenLibrary(RECORDING_LOGS);
    GivenConfig("OutputLogFile=2");
    ASSERT_TRUE(Open());
    EXPECT_EQ(Recorded().programName, "program");
    EXPECT_EQ(Recorded().recordSize, 1048u);
    EXPECT_EQ(Recorded().path, folder.PathOf("kxpTest.log"));
    EXPECT_EQ(Recorded().writerId, 0u);
    EXPECT_EQ(Recorded().option1, 0u);
    EXPECT_EQ(Recorded().option2, 0u);
    EXPECT_EQ(Recorded().reserved, 0u);
}

TEST_F(Log, OfItsOwnIsPreferredToTheHosts) {
    GivenLibrary(RECORDING_LOGS);
    GivenConfig("OutputLogFile=2");
    GivenHostLog(0x80, false);
    ASSERT_TRUE(Open());
    EXPECT_EQ(Recorded().path, folder.PathOf("kxpTest.log"));
    EXPECT_EQ(Recorded().writerId, 0u);
    EXPECT_FALSE(IsLevelOn(1));
}

TEST_F(Log, OfTheHostTakesItsWriterPathAndOptions) {
    GivenLibrary(RECORDING_LOGS);
    GivenHostLog(0x80);
    ASSERT_TRUE(Open());
    EXPECT_EQ(Recorded().path, folder.PathOf("host.log"));
    EXPECT_EQ(Recorded().writerId, 17u);
    EXPECT_EQ(Recorded().option1, 0x80u);
    EXPECT_EQ(Recorded().option2, 23u);
}

TEST_F(Log, OfTheHostIsTheFileThatItsTextNames) {
    GivenLibrary(RECORDING_LOGS);
    GivenHostLog();
    host.logPath = folder.PathOf("f\xE9.log");
    ASSERT_TRUE(Open());
    EXPECT_EQ(Recorded().path, folder.PathOf("f\xC3\xA9.log"));
}

TEST_F(Log, OfItsOwnAndTheConfigurationMayLieBesideAModuleWithAnAccent) {
    const ModuleFolder accented("f\xC3\xA9.kxp6");
    accented.Copy(REAL_LOGS, "logsE.so");
    accented.Write("f\xC3\xA9.cfg", "[LOGSE]\nOutputLogFile=2");
    ASSERT_TRUE(OpenLog(accented.Module(), "program", host.Root()));
    WriteLog(LogHandle(), 0, "hello");
    CloseLog();
    EXPECT_NE(accented.Read("f\xC3\xA9.log").find("hello"), std::string::npos);
}

TEST_F(Log, OfTheHostKeepsTheHostsOptionWhenTheFileAddsLevels) {
    GivenLibrary(RECORDING_LOGS);
    GivenConfig("LogFileLogLevel=lightdebug");
    GivenHostLog(0x10);
    ASSERT_TRUE(Open());
    EXPECT_EQ(Recorded().option1, 0x10u);
    EXPECT_TRUE(IsLevelOn(2));
}

/// One answer of configuration file and host to the question whether there is a log.
struct OnCase {
    const char* sentence;
    const char* config;
    bool offersRuntimeInfo;
    bool givesLog;
    bool hostEnabled;
    std::uint32_t hostBits;
    bool on;
};

constexpr OnCase kOnCases[] = {
    {"a host without a log and nothing in the file: off", "", true, false, false, 0, false},
    {"a host without a log and its own file asked for: on", "OutputLogFile=2", true, false, false, 0, true},
    {"a host without a log and the host's file asked for: off", "OutputLogFile=1", true, false, false, 0, false},
    {"a host with a log and nothing in the file: on", "", true, true, true, 0, true},
    {"a host whose log is switched off: off", "", true, true, false, 0, false},
    {"a host whose log is switched off and the own file: on", "OutputLogFile=2", true, true, false, 0, true},
    {"no output: off, whatever the host says", "OutputLogFile=0", true, true, true, 0, false},
    {"no output and no log of the host: off", "OutputLogFile=0", true, false, false, 0, false},
    {"an unknown output leaves it to the host", "OutputLogFile=7", true, true, true, 0, true},
    {"an unknown output without a host's log: off", "OutputLogFile=7", true, false, false, 0, false},
    {"an output that is no number is none", "OutputLogFile=no", true, true, true, 0, false},
    {"the lowest bit of the host silences", "", true, true, true, 0xF1, false},
    {"the lowest bit does not silence the own file", "OutputLogFile=2", true, true, true, 0xF1, true},
    {"the second bit does not silence", "", true, true, true, 0x02, true},
    {"a host that tells nothing of itself: off", "OutputLogFile=2", false, false, false, 0, false},
};

TEST_F(Log, IsOnWhenFileAndHostSaySo) {
    GivenLibrary(RECORDING_LOGS);
    for (const OnCase& row : kOnCases) {
        GivenConfig(row.config);
        GivenHostLog(row.hostBits, row.hostEnabled);
        host.offerRuntimeInfo = row.offersRuntimeInfo;
        host.givesLog = row.givesLog;
        EXPECT_EQ(Open(), row.on) << row.sentence;
        EXPECT_EQ(IsLogOn(false), row.on) << row.sentence;
        EXPECT_EQ(IsLevelOn(0), row.on) << row.sentence;
        EXPECT_EQ(LogHandle() != nullptr, row.on) << row.sentence;
        CloseLog();
        EXPECT_FALSE(IsLogOn(false)) << row.sentence;
    }
}

TEST_F(Log, WithNoOutputKeepsTheLibraryUnloaded) {
    GivenLibrary(RECORDING_LOGS);
    GivenConfig("OutputLogFile=0");
    GivenHostLog();
    EXPECT_FALSE(Open());
    EXPECT_FALSE(IsLibraryMapped());
}

/// Level bits of file and host, and the highest of the levels 0 to 3 that is on.
struct LevelCase {
    const char* config;
    std::uint32_t hostBits;
    int highest;
};

constexpr LevelCase kLevelCases[] = {
    {"", 0, 0},
    {"", 0x0E, 0},
    {"", 0x10, 1},
    {"", 0x7E, 1},
    {"", 0x80, 2},
    {"", 0xEE, 2},
    {"", 0xF0, 3},
    {"", 0x100, 3},
    {"", 0x80000000, 3},
    {"LogFileLogLevel=normal", 0, 0},
    {"LogFileLogLevel=normal", 0x10, 1},
    {"LogFileLogLevel=cmdactivity", 0, 1},
    {"LogFileLogLevel=CmdActivity", 0, 1},
    {"LogFileLogLevel=lightdebug", 0, 2},
    {"LogFileLogLevel=LIGHTDEBUG", 0, 2},
    {"LogFileLogLevel=strongdebug", 0, 3},
    {"LogFileLogLevel=\"StrongDebug\"", 0, 3},
    {"LogFileLogLevel=strongdebug ", 0, 3},
    {"LogFileLogLevel=lightdebug", 0x70, 3},
    {"LogFileLogLevel=nonsense", 0, 0},
    {"LogFileLogLevel=debug", 0, 0},
    {"LogFileLogCommands=1", 0, 1},
    {"LogFileLogCommands=5", 0, 1},
    {"LogFileLogCommands=0", 0, 0},
    {"LogFileLogCommands=1\nLogFileLogLevel=normal", 0, 0},
    {"LogFileLogCommands=1\nLogFileLogLevel=nonsense", 0, 0},
    {"LogFileLogCommands=1\nLogFileLogLevel=", 0, 1},
};

TEST_F(Log, WantsTheLevelsThatItsLevelBitsReach) {
    GivenLibrary(RECORDING_LOGS);
    for (const LevelCase& row : kLevelCases) {
        GivenConfig(row.config);
        GivenHostLog(row.hostBits);
        ASSERT_TRUE(Open()) << row.config;
        for (int level = 0; level <= 3; ++level)
            EXPECT_EQ(IsLevelOn(level), level <= row.highest) << row.config << " " << row.hostBits << " " << level;
        CloseLog();
    }
}

TEST_F(Log, WantsNoLevelBeyondTheFour) {
    GivenLibrary(RECORDING_LOGS);
    GivenHostLog(0xF0);
    ASSERT_TRUE(Open());
    for (const int level : {-1, 4, 5, 7, 1000, -2147483647})
        EXPECT_FALSE(IsLevelOn(level)) << level;
}

TEST_F(Log, WantsNothingWhileItIsOff) {
    for (int level = 0; level <= 3; ++level)
        EXPECT_FALSE(IsLevelOn(level)) << level;
    EXPECT_FALSE(IsLogOn(false));
    EXPECT_FALSE(IsLogOn(true));
}

TEST_F(Log, IsOnForCommandsOnlyWhenTheFileSaysSo) {
    GivenLibrary(RECORDING_LOGS);
    GivenHostLog(0xF0);
    ASSERT_TRUE(Open());
    EXPECT_TRUE(IsLogOn(false));
    EXPECT_FALSE(IsLogOn(true));
    GivenConfig("LogFileLogCommands=1");
    ASSERT_TRUE(Open());
    EXPECT_TRUE(IsLogOn(true));
}

TEST_F(Log, IsSilentlyOffWithoutTheLibrary) {
    GivenConfig("OutputLogFile=2");
    EXPECT_FALSE(Open());
    EXPECT_FALSE(IsLogOn(false));
    EXPECT_EQ(WriteLog(LogHandle(), 0, "nobody %s", "hears"), -7);
    CloseLog();
    EXPECT_FALSE(folder.Has("kxpTest.log"));
}

TEST_F(Log, IsSilentlyOffWithALibraryThatLacksAnObligatoryEntry) {
    GivenLibrary(INCOMPLETE_LOGS);
    GivenConfig("OutputLogFile=2");
    EXPECT_FALSE(Open());
    EXPECT_FALSE(IsLogOn(false));
    EXPECT_FALSE(IsLibraryMapped());
}

TEST_F(Log, IsSilentlyOffWithALibraryThatIsNone) {
    folder.Write("logsE.so", "not a library");
    GivenConfig("OutputLogFile=2");
    EXPECT_FALSE(Open());
    EXPECT_FALSE(IsLogOn(false));
}

TEST_F(Log, IsOffAndItsLibraryUnloadedWhenTheLibraryRefuses) {
    GivenLibrary(RECORDING_LOGS);
    GivenConfig("OutputLogFile=2");
    Recorded().refuse = true;
    EXPECT_FALSE(Open());
    EXPECT_FALSE(IsLogOn(false));
    EXPECT_EQ(LogHandle(), nullptr);
    Recorded().refuse = false;
    EXPECT_TRUE(Open());
}

TEST_F(Log, UnloadsTheLibraryWithTheLastWriter) {
    GivenLibrary(RECORDING_LOGS);
    GivenHostLog();
    ASSERT_TRUE(Open());
    EXPECT_TRUE(IsLibraryMapped());
    CloseLog();
    EXPECT_FALSE(IsLibraryMapped());
}

TEST_F(Log, KeepsTheLibraryWhileAnotherModuleWrites) {
    GivenLibrary(RECORDING_LOGS);
    GivenHostLog();
    ASSERT_TRUE(Open());
    Recorded().otherWriters = 1;
    CloseLog();
    EXPECT_EQ(Recorded().writers, 0);
    EXPECT_TRUE(IsLibraryMapped());
    EXPECT_FALSE(IsLogOn(false));
    ASSERT_TRUE(Open());
    EXPECT_EQ(Recorded().writers, 1);
}

TEST_F(Log, OpenedTwiceHasOneWriter) {
    GivenLibrary(RECORDING_LOGS);
    GivenHostLog();
    ASSERT_TRUE(Open());
    ASSERT_TRUE(Open());
    EXPECT_EQ(Recorded().writers, 1);
    CloseLog();
    EXPECT_EQ(Recorded().writers, 0);
    CloseLog();
    EXPECT_EQ(Recorded().writers, 0);
}

TEST_F(Log, HandsLevelTextAndAnswerThrough) {
    GivenLibrary(RECORDING_LOGS);
    GivenHostLog();
    ASSERT_TRUE(Open());
    EXPECT_EQ(WriteLog(LogHandle(), 7, "[%s] %d %s", "Desk", -3, "100 %"), 5);
    ASSERT_EQ(Recorded().lines.size(), 1u);
    EXPECT_EQ(Recorded().lines[0].level, 7);
    EXPECT_EQ(Recorded().lines[0].text, "[Desk] -3 100 %");
}

TEST_F(Log, CutsALineAtItsSize) {
    GivenLibrary(RECORDING_LOGS);
    GivenHostLog();
    ASSERT_TRUE(Open());
    for (const std::size_t length : {1022u, 1023u, 1024u, 1025u, 100000u}) {
        WriteLog(LogHandle(), 0, "%s", std::string(length, 'x').c_str());
        EXPECT_EQ(Recorded().lines.back().text, std::string(std::min<std::size_t>(length, kLogLineSize - 1), 'x'));
    }
}

TEST_F(Log, DropsLinesForAHandleThatIsNotItsOwn) {
    GivenLibrary(RECORDING_LOGS);
    GivenHostLog();
    ASSERT_TRUE(Open());
    void* handle = LogHandle();
    int other = 0;
    EXPECT_EQ(WriteLog(nullptr, 0, "%s", "x"), LogLibrary::kAbsent);
    EXPECT_EQ(WriteLog(&other, 0, "%s", "x"), LogLibrary::kAbsent);
    EXPECT_TRUE(Recorded().lines.empty());
    CloseLog();
    EXPECT_EQ(WriteLog(handle, 0, "%s", "x"), LogLibrary::kAbsent);
    EXPECT_TRUE(Recorded().lines.empty());
}

TEST_F(Log, CutsAPathOfTheHostThatHasNoEnd) {
    GivenLibrary(RECORDING_LOGS);
    GivenHostLog();
    host.logPath = std::string(2000, 'p');
    ASSERT_TRUE(Open());
    EXPECT_EQ(Recorded().path, std::string(1023, 'p'));
}

TEST_F(Log, WritesTimeLevelProgramAndTextIntoTheFileOfTheRealLibrary) {
    GivenLibrary(REAL_LOGS);
    GivenConfig("OutputLogFile=2\nLogFileLogLevel=strongdebug");
    ASSERT_TRUE(Open());
    EXPECT_EQ(WriteLog(LogHandle(), 5, "kxpTest [%s] %s", "Desk", "hello"), 0);
    CloseLog();
    const std::string text = folder.Read("kxpTest.log");
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1);
    EXPECT_NE(text.find(" [5] program: kxpTest [Desk] hello\n"), std::string::npos) << text;
}

TEST_F(Log, OfTheRealLibraryGoesOnInTheSameFileAfterItWasClosed) {
    GivenLibrary(REAL_LOGS);
    GivenHostLog();
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(Open());
        WriteLog(LogHandle(), 0, "line %d", i);
        CloseLog();
    }
    const std::string text = folder.Read("host.log");
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3);
    EXPECT_NE(text.find("line 2"), std::string::npos);
}

TEST_F(Log, MayBeClosedAndOpenedWhileOthersWrite) {
    GivenLibrary(REAL_LOGS);
    GivenHostLog(0xF0);
    ASSERT_TRUE(Open());
    std::atomic<bool> over{false};
    std::atomic<int> written{0};
    std::vector<std::thread> writers;
    writers.reserve(3);
    for (int i = 0; i < 3; ++i)
        writers.emplace_back([&, i] {
            for (int line = 0; !over; ++line) // lines of one text would be folded
                if (IsLevelOn(3) && WriteLog(LogHandle(), 3, "writer %d, line %d", i, line) == 0)
                    ++written;
        });
    for (int i = 0; i < 50; ++i) {
        const int before = written;
        EXPECT_TRUE(Eventually([&] { return written != before; }));
        CloseLog();
        EXPECT_TRUE(Open());
    }
    over = true;
    for (std::thread& writer : writers)
        writer.join();
    CloseLog();
    const std::string text = folder.Read("host.log");
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), written);
}

} // namespace
