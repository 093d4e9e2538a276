#include <filesystem>
#include <memory>

#include <gtest/gtest.h>

#include "DynamicLibrary.h"
#include "ModuleFile.h"

namespace {

void FunctionOfThisProgram() {}

} // namespace

TEST(ModuleFile, FindsTheProgram) {
    const std::string file = ExecutableFile();
    EXPECT_TRUE(std::filesystem::path(file).is_absolute());
    EXPECT_EQ(std::filesystem::path(file).filename(), "foundation_tests");
    EXPECT_TRUE(std::filesystem::exists(file));
}

TEST(ModuleFile, AFunctionOfTheProgramIsInTheProgram) {
    EXPECT_EQ(ModuleFileOf(reinterpret_cast<const void*>(&FunctionOfThisProgram)), ExecutableFile());
}

TEST(ModuleFile, AFunctionOfALibraryIsInTheLibrary) {
    DynamicLibrary library;
    ASSERT_TRUE(library.Open("libm.so.6"));
    const std::filesystem::path file = ModuleFileOf(library.Find("cbrt"));
    EXPECT_TRUE(file.is_absolute());
    EXPECT_EQ(file.filename().string().rfind("libm", 0), 0U) << file;
    EXPECT_TRUE(std::filesystem::exists(file));
}

TEST(ModuleFile, MemoryOfNoFileGivesAnEmptyPath) {
    const auto onTheHeap = std::make_unique<int>(1);
    EXPECT_EQ(ModuleFileOf(onTheHeap.get()), "");
    EXPECT_EQ(ModuleFileOf(nullptr), "");
}
