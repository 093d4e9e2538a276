#include "ConfigFile.h"

#include <gtest/gtest.h>

#include "ModuleFile.h"
#include "ModuleFolder.h"

namespace {

constexpr const char* kFile = R"(; a comment
outside = 1
[LOGSE]
  OutputLogFile = 2
logfilelogcommands=1
; OutputLogFile = 7
Negative = -12
Text = "in quotes"
Single = 'in single quotes'
Lone = "half
Empty =
Mixed = 12abc
Words = abc
Twice = first
Twice = second
no equals sign
Hex = 0x10
[ DEBUGGER ]
enable = 1
[LOGSE
Cut = 3
)";

class ConfigFileReading : public testing::Test {
protected:
    void SetUp() override {
        folder.Write("test.cfg", kFile);
        path = folder.PathOf("test.cfg");
    }
    int Int(const char* section, const char* key) const { return ReadConfigInt(path, section, key, 99); }
    std::string Text(const char* section, const char* key) const {
        return ReadConfigText(path, section, key, "fallback");
    }

    ModuleFolder folder;
    std::string path;
};

TEST_F(ConfigFileReading, FindsAWholeNumber) {
    EXPECT_EQ(Int("LOGSE", "OutputLogFile"), 2);
    EXPECT_EQ(Int("LOGSE", "Negative"), -12);
}

TEST_F(ConfigFileReading, ComparesSectionsAndKeysWithoutRegardToCase) {
    EXPECT_EQ(Int("logse", "LOGFILELOGCOMMANDS"), 1);
    EXPECT_EQ(Int("Debugger", "ENABLE"), 1);
}

TEST_F(ConfigFileReading, GivesTheFallbackForAnythingMissing) {
    EXPECT_EQ(Int("LOGSE", "Missing"), 99);
    EXPECT_EQ(Int("MISSING", "OutputLogFile"), 99);
    EXPECT_EQ(Int("DEBUGGER", "OutputLogFile"), 99);
    EXPECT_EQ(Text("LOGSE", "Missing"), "fallback");
    EXPECT_EQ(ReadConfigInt(folder.PathOf("missing.cfg"), "LOGSE", "OutputLogFile", 7), 7);
    EXPECT_EQ(ReadConfigText("", "LOGSE", "OutputLogFile", "none"), "none");
}

TEST_F(ConfigFileReading, DoesNotSeeKeysBeforeTheFirstSection) {
    EXPECT_EQ(Int("", "outside"), 99);
    EXPECT_EQ(Int("LOGSE", "outside"), 99);
}

TEST_F(ConfigFileReading, TakesTheDigitsAtTheStartAndZeroWithoutAny) {
    EXPECT_EQ(Int("LOGSE", "Mixed"), 12);
    EXPECT_EQ(Int("LOGSE", "Words"), 0);
    EXPECT_EQ(Int("LOGSE", "Empty"), 0);
}

TEST_F(ConfigFileReading, TakesQuotesOffThatStandOnBothSides) {
    EXPECT_EQ(Text("LOGSE", "Text"), "in quotes");
    EXPECT_EQ(Text("LOGSE", "Single"), "in single quotes");
    EXPECT_EQ(Text("LOGSE", "Lone"), "\"half");
    EXPECT_EQ(Text("LOGSE", "Empty"), "");
}

TEST_F(ConfigFileReading, TakesTheFirstOfTwoEqualKeys) {
    EXPECT_EQ(Text("LOGSE", "Twice"), "first");
}

TEST_F(ConfigFileReading, ReadsASectionWhoseBracketIsMissing) {
    EXPECT_EQ(Int("LOGSE", "Cut"), 3);
}

TEST_F(ConfigFileReading, ReadsFilesWithLineEndsOfOtherSystems) {
    folder.Write("dos.cfg", "[LOGSE]\r\nOutputLogFile=2\r\nLogFileLogLevel=Normal\r\n");
    EXPECT_EQ(ReadConfigInt(folder.PathOf("dos.cfg"), "LOGSE", "OutputLogFile", 0), 2);
    EXPECT_EQ(ReadConfigText(folder.PathOf("dos.cfg"), "LOGSE", "LogFileLogLevel", ""), "Normal");
}

TEST_F(ConfigFileReading, CopesWithAFileThatIsNoText) {
    folder.Write("binary.cfg", std::string("\0\xFF[\0=\n[LOGSE]\n=\n=1\nKey=\0", 25));
    EXPECT_EQ(ReadConfigInt(folder.PathOf("binary.cfg"), "LOGSE", "Other", 5), 5);
}

TEST(ConfigPath, StandsBesideTheModuleAndBearsItsName) {
    const ModuleFolder folder("some.module.kxp6");
    EXPECT_EQ(ConfigPath(folder.Module(), "cfg"), folder.PathOf("some.module.cfg"));
    EXPECT_EQ(ConfigPath(folder.Module(), "log"), folder.PathOf("some.module.log"));
}

TEST(ConfigPath, WithoutAnExtensionEndsInIni) {
    const ModuleFolder folder("module.kxp6");
    EXPECT_EQ(ConfigPath(folder.Module(), nullptr), folder.PathOf("module.ini"));
}

TEST(ConfigPath, AppendsTheExtensionToANameWithoutAPoint) {
    const ModuleFolder folder("module");
    EXPECT_EQ(ConfigPath(folder.Module(), "cfg"), folder.PathOf("module.cfg"));
}

TEST(ConfigPath, WithoutAModuleIsThatOfTheProgram) {
    EXPECT_EQ(ConfigPath(nullptr, "cfg"), ExecutableFile() + ".cfg");
}

TEST(ConfigPath, OfAnAddressInNoModuleIsEmpty) {
    const auto onTheHeap = std::make_unique<int>(0);
    EXPECT_EQ(ConfigPath(onTheHeap.get(), "cfg"), "");
}

} // namespace
