#include "DynamicLibrary.h"

#include <utility>

#include <gtest/gtest.h>

namespace {

constexpr const char* kMathLibrary = "libm.so.6";

} // namespace

TEST(DynamicLibrary, OpensByNameAndFindsAFunction) {
    DynamicLibrary library;
    ASSERT_TRUE(library.Open(kMathLibrary)) << library.GetError();
    EXPECT_TRUE(library.IsOpen());
    EXPECT_TRUE(library.GetError().empty());
    const auto squareRoot = library.FindFunction<double (*)(double)>("sqrt");
    ASSERT_NE(squareRoot, nullptr);
    EXPECT_EQ(squareRoot(9.0), 3.0);
}

TEST(DynamicLibrary, GivesNullForAnUnknownOrNullSymbol) {
    DynamicLibrary library;
    ASSERT_TRUE(library.Open(kMathLibrary));
    EXPECT_EQ(library.Find("no_such_function_here"), nullptr);
    EXPECT_EQ(library.Find(nullptr), nullptr);
}

TEST(DynamicLibrary, TellsWhyAMissingLibraryCannotBeOpened) {
    DynamicLibrary library;
    EXPECT_FALSE(library.Open("/no/such/library.so"));
    EXPECT_FALSE(library.IsOpen());
    EXPECT_NE(library.GetError().find("/no/such/library.so"), std::string::npos);
    EXPECT_EQ(library.Find("sqrt"), nullptr);
}

TEST(DynamicLibrary, DoesNotTakeAnEmptyNameAsTheProgram) {
    DynamicLibrary library;
    EXPECT_FALSE(library.Open(""));
    EXPECT_FALSE(library.GetError().empty());
}

TEST(DynamicLibrary, AFailedOpenClosesTheLibraryBefore) {
    DynamicLibrary library;
    ASSERT_TRUE(library.Open(kMathLibrary));
    EXPECT_FALSE(library.Open("/no/such/library.so"));
    EXPECT_EQ(library.Find("sqrt"), nullptr);
}

TEST(DynamicLibrary, MovesItsLibrary) {
    DynamicLibrary first;
    ASSERT_TRUE(first.Open(kMathLibrary));
    DynamicLibrary second(std::move(first));
    EXPECT_NE(second.Find("sqrt"), nullptr);
    DynamicLibrary third;
    third = std::move(second);
    EXPECT_NE(third.Find("sqrt"), nullptr);
    third.Close();
    third.Close();
    EXPECT_FALSE(third.IsOpen());
}
