#include <gtest/gtest.h>

#include <QApplication>
#include <QJsonDocument>

#include "Mutator.h"
#include "ScriptReport.h"
#include "ScriptSource.h"
#include "Seeds.h"

/// Scripts, changed at random, for the program that checks them. By hand with many more: CALVERIN_MUTATIONS=100000.

namespace {

constexpr std::chrono::milliseconds kLimit(300); ///< a script that was changed into one without an end is stopped

std::vector<std::string> Scripts() {
    std::vector<std::string> seeds;
    for (const char* file : {"examples/driver/dimmer.js", "examples/evening/doorman.js", "examples/evening/lights.js",
                             "examples/house/door.js", "examples/house/lamp.js", "tests/faults/evening/desk.js",
                             "tests/faults/evening/lamp.js", "templates/connection.js"})
        seeds.push_back(SeedFile(file));
    return seeds;
}

TEST(ScriptsByMutation, AreReportedOnOrComplainedOf) {
    const Mutator mutator(
        Scripts(), {"(",        ")",       "{",         "}",      "[",       "]",         ";",           ",",
                    "/",        "*/",      "/*",        "//",     "'",       "\"",        "\\",          "function ",
                    "this",     "var ",    "Info:",     "Setup:", "Device:", "Commands:", "Type: ",      "_mStart",
                    "new ",     "null",    "undefined", "-1",     "1e400",   "NaN",       ".prototype",  "QCalverin.",
                    "toString", "return ", "throw ",    "try {",  "\n",      "\xC3",      "\xE2\x80\xA8"});
    MutationWatch watch;
    const MutationRange range = MutationRange::Wanted();
    std::uint64_t accepted = 0;
    for (std::uint64_t number = range.begin; number < range.end && !HasFailure(); ++number) {
        SCOPED_TRACE("CALVERIN_MUTATION=" + std::to_string(number));
        watch.Begin(number);
        const QString text = QString::fromStdString(mutator.Case(number));
        const ScriptSource source(text);
        for (int place = 0; place < source.Count(); ++place) {
            const int partner = source.Words()[static_cast<std::size_t>(place)].partner;
            ASSERT_LT(partner, source.Count());
            ASSERT_TRUE(partner < 0 || source.Words()[static_cast<std::size_t>(partner)].partner == place);
        }
        const ScriptReport report = AnalyseScript(text, QStringLiteral("case"), kLimit);
        EXPECT_FALSE((report.problem ? report.problem->text : ToText(report, QStringLiteral("case"))).isEmpty());
        EXPECT_FALSE(QJsonDocument(ToJson(report, true)).toJson().isEmpty());
        accepted += report.problem ? 0 : 1;
    }
    EXPECT_TRUE(accepted > 0 || range.end - range.begin < 100);
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
