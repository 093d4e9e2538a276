#include "ScriptPlace.h"

#include <gtest/gtest.h>

namespace {

std::string PlaceOf(const std::string& script, int line) {
    const KXPScriptPlace place = KXPPlaceInScript(script, line);
    return place.file + ":" + std::to_string(place.line);
}

constexpr const char* kScript = "// @part lib/connection.js\nvar a;\nvar b;\n;// @part driver.js\n({\n})\n";

TEST(ScriptPlace, IsInTheFileThatTheLastLeadingLineNames) {
    EXPECT_EQ(PlaceOf(kScript, 2), "lib/connection.js:1");
    EXPECT_EQ(PlaceOf(kScript, 3), "lib/connection.js:2");
    EXPECT_EQ(PlaceOf(kScript, 5), "driver.js:1");
    EXPECT_EQ(PlaceOf(kScript, 6), "driver.js:2");
}

TEST(ScriptPlace, OfALeadingLineIsTheTopOfItsFile) {
    EXPECT_EQ(PlaceOf(kScript, 1), "lib/connection.js:0");
    EXPECT_EQ(PlaceOf(kScript, 4), "driver.js:0");
}

TEST(ScriptPlace, OfAScriptThatIsOneFileIsTheLineAsItIs) {
    EXPECT_EQ(PlaceOf("({\n})\n", 2), ":2");
    EXPECT_EQ(PlaceOf("", 1), ":1");
    EXPECT_EQ(PlaceOf(";\nx // @part no.js\n", 3), ":3") << "only a line of its own leads";
}

TEST(ScriptPlace, BehindTheEndIsCountedOnInTheLastFile) {
    EXPECT_EQ(PlaceOf(kScript, 9), "driver.js:5");
    EXPECT_EQ(PlaceOf("({})", 7), ":7");
    EXPECT_EQ(PlaceOf("// @part a.js", 2), "a.js:1");
}

TEST(ScriptPlace, CountsLinesAsTheEngineDoes) {
    EXPECT_EQ(PlaceOf("// @part a.js\r\nvar a;\rvar b;\r\n\r\n;// @part b.js\r\nx", 4), "a.js:3");
    EXPECT_EQ(PlaceOf("// @part a.js\r\nvar a;\rvar b;\r\n\r\n;// @part b.js\r\nx", 6), "b.js:1");
}

} // namespace
