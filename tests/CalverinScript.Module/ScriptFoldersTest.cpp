#include "ScriptFolders.h"

#include <filesystem>

#include <sys/stat.h>

#include "ModuleFixture.h"

namespace fs = std::filesystem;

namespace {

class ScriptFolders : public ModuleFixture {
protected:
    bool Copy(const char* source, const char* target, bool stopOnError = true, bool overwrite = false) const {
        return CopyFolder(PathOf(source).c_str(), PathOf(target).c_str(), stopOnError, overwrite);
    }
    bool Remove(const char* path, bool stopOnError = true) const {
        return RemoveFolder(PathOf(path).c_str(), stopOnError);
    }
    std::string Find(bool withFallback = true) {
        return FindScriptsFolder(&host, withFallback ? PathOf("fallback") : std::string());
    }
    /// Something that is neither a file nor a folder and cannot be copied.
    void MakePipe(const char* name) const { ASSERT_EQ(mkfifo(PathOf(name).c_str(), 0600), 0); }
};

TEST_F(ScriptFolders, AreNotCopiedFromOrToNull) {
    EXPECT_FALSE(CopyFolder(nullptr, PathOf("t").c_str(), false, false));
    EXPECT_FALSE(CopyFolder(PathOf("s").c_str(), nullptr, false, false));
    EXPECT_FALSE(CopyFolder(nullptr, nullptr, false, false));
    EXPECT_FALSE(Exists("t"));
}

TEST_F(ScriptFolders, AreNotCopiedOntoThemselvesWhateverTheCaseOfTheLetters) {
    Write("s/a.js", "a");
    EXPECT_FALSE(Copy("s", "s"));
    EXPECT_FALSE(Copy("s", "S"));
    EXPECT_FALSE(Exists("S"));
    EXPECT_EQ(Read("s/a.js"), "a");
}

TEST_F(ScriptFolders, AreCopiedWithAllThatIsInThem) {
    Write("s/a.js", "a");
    Write("s/.hidden", "h");
    Write("s/sub/deep/b.js", std::string("b\0b", 3));
    fs::create_directories(PathOf("s/empty"));
    EXPECT_TRUE(Copy("s", "t"));
    EXPECT_EQ(Read("t/a.js"), "a");
    EXPECT_EQ(Read("t/.hidden"), "h");
    EXPECT_EQ(Read("t/sub/deep/b.js"), std::string("b\0b", 3));
    EXPECT_TRUE(Exists("t/empty"));
    EXPECT_EQ(Read("s/a.js"), "a");
}

TEST_F(ScriptFolders, AreNotCopiedToATargetThatExists) {
    Write("s/a.js", "new");
    Write("t/b.js", "old");
    EXPECT_FALSE(Copy("s", "t", false, true));
    EXPECT_FALSE(Exists("t/a.js"));
    EXPECT_EQ(Read("t/b.js"), "old");
}

TEST_F(ScriptFolders, AreNotCopiedBelowAFolderThatDoesNotExist) {
    Write("s/a.js", "a");
    EXPECT_FALSE(Copy("s", "no/t"));
    EXPECT_FALSE(Exists("no"));
}

TEST_F(ScriptFolders, ThatDoNotExistLeaveAnEmptyTargetAsIsMeant) {
    EXPECT_FALSE(Copy("s", "t"));
    EXPECT_TRUE(Exists("t"));
}

TEST_F(ScriptFolders, WithSomethingUncopyableStopWhenToldSo) {
    Write("s/a.js", "a");
    MakePipe("s/pipe");
    EXPECT_FALSE(Copy("s", "t", true));
    EXPECT_TRUE(Exists("s/a.js"));
}

TEST_F(ScriptFolders, WithSomethingUncopyableAreOtherwiseCopiedWithoutIt) {
    Write("s/a.js", "a");
    Write("s/sub/b.js", "b");
    MakePipe("s/pipe");
    MakePipe("s/sub/pipe");
    EXPECT_TRUE(Copy("s", "t", false));
    EXPECT_EQ(Read("t/a.js"), "a");
    EXPECT_EQ(Read("t/sub/b.js"), "b");
    EXPECT_FALSE(Exists("t/pipe"));
}

TEST_F(ScriptFolders, KeepLinksForLinks) {
    Write("outside.js", "o");
    fs::create_directories(PathOf("s"));
    fs::create_symlink(PathOf("outside.js"), PathOf("s/link.js"));
    fs::create_symlink(PathOf("nowhere"), PathOf("s/dangling"));
    EXPECT_TRUE(Copy("s", "t"));
    EXPECT_TRUE(fs::is_symlink(PathOf("t/link.js")));
    EXPECT_EQ(Read("t/link.js"), "o");
    EXPECT_TRUE(Exists("t/dangling"));
}

TEST_F(ScriptFolders, AreNotCopiedIntoThemselves) {
    Write("s/a.js", "a");
    EXPECT_FALSE(Copy("s", "s/t"));
    EXPECT_FALSE(Exists("s/t"));
    EXPECT_FALSE(Copy("s", "s/../s/t", false));
    EXPECT_FALSE(Exists("s/t"));
}

TEST_F(ScriptFolders, MayBeCopiedBesideAFolderWhoseNameTheyBegin) {
    Write("s/a.js", "a");
    EXPECT_TRUE(Copy("s", "s2"));
    EXPECT_EQ(Read("s2/a.js"), "a");
}

TEST_F(ScriptFolders, AreNotRemovedForNullNothingOrAFile) {
    Write("file", "f");
    EXPECT_FALSE(RemoveFolder(nullptr, true));
    EXPECT_FALSE(RemoveFolder("", true));
    EXPECT_FALSE(Remove("missing"));
    EXPECT_FALSE(Remove("file"));
    EXPECT_EQ(Read("file"), "f");
}

TEST_F(ScriptFolders, AreRemovedWithAllThatIsInThem) {
    Write("s/a.js", "a");
    Write("s/sub/deep/b.js", "b");
    MakePipe("s/pipe");
    EXPECT_TRUE(Remove("s"));
    EXPECT_FALSE(Exists("s"));
    fs::create_directories(PathOf("empty"));
    EXPECT_TRUE(Remove("empty", false));
    EXPECT_FALSE(Exists("empty"));
}

TEST_F(ScriptFolders, AreRemovedWithoutWhatLinksInThemPointTo) {
    Write("outside/o.js", "o");
    fs::create_directories(PathOf("s"));
    fs::create_directory_symlink(PathOf("outside"), PathOf("s/link"));
    EXPECT_TRUE(Remove("s"));
    EXPECT_EQ(Read("outside/o.js"), "o");
}

TEST_F(ScriptFolders, ThatAreLinksLoseTheLinkAlone) {
    Write("outside/o.js", "o");
    fs::create_directory_symlink(PathOf("outside"), PathOf("link"));
    EXPECT_TRUE(Remove("link"));
    EXPECT_FALSE(Exists("link"));
    EXPECT_EQ(Read("outside/o.js"), "o");
}

TEST_F(ScriptFolders, ThatTheSystemProtectsAreNotRemoved) {
    EXPECT_FALSE(RemoveFolder("/proc/self/fdinfo", true));
    EXPECT_FALSE(RemoveFolder("/proc/self/fdinfo", false));
}

TEST_F(ScriptFolders, WithNamesThatAreTooLongFailWithoutHarm) {
    const std::string tooLong = PathOf(std::string(300, 'n'));
    Write("s/a.js", "a");
    EXPECT_FALSE(CopyFolder(PathOf("s").c_str(), tooLong.c_str(), true, false));
    EXPECT_FALSE(CopyFolder(tooLong.c_str(), PathOf("t").c_str(), true, false));
    EXPECT_FALSE(RemoveFolder(tooLong.c_str(), true));
    EXPECT_FALSE(RemoveFolder(std::string(100000, 'n').c_str(), true));
}

TEST_F(ScriptFolders, AreTheFallbackWithoutAFolderManager) {
    Write("fallback/a.js", "a");
    EXPECT_EQ(FindScriptsFolder(nullptr, "anything"), "anything");
    EXPECT_EQ(Read("fallback/a.js"), "a");
}

TEST_F(ScriptFolders, OfTheHostAreNamedInItsText) {
    fs::create_directories(PathOf("f\xC3\xA9"));
    host.folders = {{KXP_FOLDER_SCRIPTS, PathOf("f\xE9")}, {KXP_FOLDER_PROGRAM_DATA, PathOf("d\xE9")}};
    Write("d\xC3\xA9/Script Drivers/old.js", "old");
    EXPECT_EQ(Find(), PathOf("f\xC3\xA9/Script Drivers"));
    EXPECT_EQ(Read("f\xC3\xA9/Script Drivers/old.js"), "old");
    host.folders.erase(KXP_FOLDER_SCRIPTS);
    EXPECT_EQ(Find(), PathOf("d\xC3\xA9/Script Drivers"));
}

TEST_F(ScriptFolders, OfAnOlderInstallationMoveToTheHostsScripts) {
    fs::create_directories(PathOf("scripts"));
    host.folders = {{KXP_FOLDER_SCRIPTS, PathOf("scripts")}, {KXP_FOLDER_PROGRAM_DATA, PathOf("data")}};
    Write("data/Script Drivers/old.js", "old");
    EXPECT_EQ(Find(), PathOf("scripts/Script Drivers"));
    EXPECT_EQ(Read("scripts/Script Drivers/old.js"), "old");
    EXPECT_FALSE(Exists("data/Script Drivers"));
    EXPECT_TRUE(Exists("data"));
}

TEST_F(ScriptFolders, OfTheDocumentsStayWhereTheyAreOnceTheLibraryExistsAsIsMeant) {
    fs::create_directories(PathOf("scripts"));
    host.folders = {{KXP_FOLDER_SCRIPTS, PathOf("scripts")}, {KXP_FOLDER_PROGRAM_DATA, PathOf("data")}};
    Write("data/Script Drivers/old.js", "old");
    Write("fallback/mine.js", "mine");
    Find();
    EXPECT_EQ(Read("fallback/mine.js"), "mine");
    EXPECT_FALSE(Exists("scripts/Script Drivers/mine.js"));
}

TEST_F(ScriptFolders, OfTheDocumentsStayBecauseTheMissingOldFolderMadeTheLibraryAsIsMeant) {
    fs::create_directories(PathOf("scripts"));
    host.folders = {{KXP_FOLDER_SCRIPTS, PathOf("scripts")}, {KXP_FOLDER_PROGRAM_DATA, PathOf("data")}};
    Write("fallback/mine.js", "mine");
    EXPECT_EQ(Find(), PathOf("scripts/Script Drivers"));
    EXPECT_TRUE(Exists("scripts/Script Drivers"));
    EXPECT_EQ(Read("fallback/mine.js"), "mine");
}

TEST_F(ScriptFolders, MoveNothingIntoALibraryThatExistsAndDeleteNothing) {
    host.folders = {{KXP_FOLDER_SCRIPTS, PathOf("scripts")}, {KXP_FOLDER_PROGRAM_DATA, PathOf("data")}};
    Write("scripts/Script Drivers/new.js", "new");
    Write("data/Script Drivers/old.js", "old");
    Write("fallback/mine.js", "mine");
    EXPECT_EQ(Find(), PathOf("scripts/Script Drivers"));
    EXPECT_EQ(Read("data/Script Drivers/old.js"), "old");
    EXPECT_EQ(Read("fallback/mine.js"), "mine");
    EXPECT_FALSE(Exists("scripts/Script Drivers/old.js"));
}

TEST_F(ScriptFolders, MoveOnceOnly) {
    fs::create_directories(PathOf("scripts"));
    host.folders = {{KXP_FOLDER_SCRIPTS, PathOf("scripts")}, {KXP_FOLDER_PROGRAM_DATA, PathOf("data")}};
    Write("data/Script Drivers/first.js", "1");
    Find();
    Write("data/Script Drivers/second.js", "2");
    Find();
    EXPECT_EQ(Read("data/Script Drivers/second.js"), "2");
    EXPECT_FALSE(Exists("scripts/Script Drivers/second.js"));
}

TEST_F(ScriptFolders, ThatCannotBeCopiedWhollyAreNotRemoved) {
    fs::create_directories(PathOf("scripts"));
    host.folders = {{KXP_FOLDER_SCRIPTS, PathOf("scripts")}, {KXP_FOLDER_PROGRAM_DATA, PathOf("data")}};
    Write("data/Script Drivers/a.js", "a");
    MakePipe("data/Script Drivers/pipe");
    Find();
    EXPECT_EQ(Read("data/Script Drivers/a.js"), "a");
}

TEST_F(ScriptFolders, OfTheDocumentsMoveToTheOldPathOfAHostWithoutScripts) {
    fs::create_directories(PathOf("data"));
    host.folders = {{KXP_FOLDER_PROGRAM_DATA, PathOf("data")}};
    Write("fallback/mine.js", "mine");
    EXPECT_EQ(Find(), PathOf("data/Script Drivers"));
    EXPECT_EQ(Read("data/Script Drivers/mine.js"), "mine");
    EXPECT_FALSE(Exists("fallback"));
}

TEST_F(ScriptFolders, AreTheFallbackOfAHostThatKnowsNeitherFolder) {
    host.folders.clear();
    Write("fallback/mine.js", "mine");
    EXPECT_EQ(Find(), PathOf("fallback"));
    EXPECT_EQ(Read("fallback/mine.js"), "mine");
}

TEST_F(ScriptFolders, OfAHostWithScriptsButWithoutDataAreTheLibrary) {
    fs::create_directories(PathOf("scripts"));
    host.folders = {{KXP_FOLDER_SCRIPTS, PathOf("scripts")}};
    Write("fallback/mine.js", "mine");
    EXPECT_EQ(Find(), PathOf("scripts/Script Drivers"));
    EXPECT_EQ(Read("fallback/mine.js"), "mine");
}

} // namespace
