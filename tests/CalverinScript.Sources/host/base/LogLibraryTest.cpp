#include "LogLibrary.h"

#include "LogFixture.h"

namespace {

class LogLibraryLoading : public LogFixture {
protected:
    bool Load() { return library.Load(folder.PathOf("kxpTest.kxp6")); }

    LogLibrary library;
};

TEST_F(LogLibraryLoading, WithoutAFileAnswersEveryCallWithItsCode) {
    EXPECT_FALSE(Load());
    EXPECT_FALSE(library.IsLoaded());
    EXPECT_EQ(library.Initialize("p", LogRecord()), nullptr);
    EXPECT_EQ(library.Finalize(nullptr), -7);
    EXPECT_EQ(library.WriteMessage(nullptr, 0, ""), -7);
    EXPECT_EQ(library.Flush(nullptr), -7);
    EXPECT_EQ(library.GetWriterCounter(), -7);
    library.UnloadWhenUnused();
}

TEST_F(LogLibraryLoading, WithoutOneOfTheFirstFourEntriesCountsAsAbsent) {
    GivenLibrary(INCOMPLETE_LOGS);
    EXPECT_FALSE(Load());
    EXPECT_EQ(library.Finalize(nullptr), -7);
    EXPECT_EQ(library.WriteMessage(nullptr, 0, ""), -7);
}

TEST_F(LogLibraryLoading, NeedsNoMoreThanTheFirstFourEntries) {
    GivenLibrary(MINIMAL_LOGS);
    ASSERT_TRUE(Load());
    const LogRecord record;
    EXPECT_EQ(library.Initialize("p", record), &record);
    EXPECT_EQ(library.Finalize(nullptr), 41);
    EXPECT_EQ(library.WriteMessage(nullptr, 0, ""), 42);
    EXPECT_EQ(library.Flush(nullptr), 43);
    EXPECT_EQ(library.GetWriterCounter(), LogLibrary::kEntryMissing);
}

TEST_F(LogLibraryLoading, WithoutACounterNeverCountsAsUnused) {
    GivenLibrary(MINIMAL_LOGS);
    ASSERT_TRUE(Load());
    library.UnloadWhenUnused();
    EXPECT_TRUE(library.IsLoaded());
    EXPECT_EQ(library.Flush(nullptr), 43);
}

TEST_F(LogLibraryLoading, TwiceIsOnce) {
    GivenLibrary(REAL_LOGS);
    EXPECT_TRUE(Load());
    EXPECT_TRUE(Load());
    EXPECT_EQ(library.GetWriterCounter(), 0);
    library.UnloadWhenUnused();
    EXPECT_FALSE(library.IsLoaded());
    EXPECT_EQ(library.Flush(nullptr), LogLibrary::kAbsent);
}

TEST_F(LogLibraryLoading, CountsTheWritersOfTheRealLibrary) {
    GivenLibrary(REAL_LOGS);
    ASSERT_TRUE(Load());
    LogRecord record;
    const std::string path = folder.PathOf("two.log");
    path.copy(record.path, sizeof(record.path) - 1);
    void* first = library.Initialize("first", record);
    void* second = library.Initialize("second", record);
    EXPECT_EQ(library.GetWriterCounter(), 2);
    EXPECT_EQ(library.WriteMessage(first, 1, "one"), 0);
    EXPECT_EQ(library.Finalize(first), 0);
    library.UnloadWhenUnused();
    EXPECT_TRUE(library.IsLoaded());
    EXPECT_EQ(library.Finalize(second), 0);
    library.UnloadWhenUnused();
    EXPECT_FALSE(library.IsLoaded());
}

} // namespace
