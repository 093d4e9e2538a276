#include "Condition.h"

#include <gtest/gtest.h>

namespace stagehost {
namespace {

/// "name|sign as it is shown and value" of a text, or what is wrong with it.
std::string Read(const char* text) {
    QString problem;
    const auto condition = ReadCondition(QString::fromUtf8(text), &problem);
    return condition ? (condition->name + QLatin1Char('|') + condition->Text()).toStdString() : problem.toStdString();
}

TEST(Condition, HasANameASignAndAValueWithOrWithoutBlanks) {
    EXPECT_EQ(Read("Online=yes"), "Online|Online = yes");
    EXPECT_EQ(Read("  Online == yes "), "Online|Online = yes");
    EXPECT_EQ(Read("lamp.Level>=0.5"), "lamp.Level|lamp.Level >= 0.5");
    EXPECT_EQ(Read("Level <= 0.5"), "Level|Level <= 0.5");
    EXPECT_EQ(Read("Level<-3"), "Level|Level < -3");
    EXPECT_EQ(Read("Level > 3"), "Level|Level > 3");
    EXPECT_EQ(Read("Light level != 3"), "Light level|Light level != 3");
    EXPECT_EQ(Read("Status ~ ^Rea.y$"), "Status|Status ~ ^Rea.y$");
    EXPECT_EQ(Read("Text = a=b"), "Text|Text = a=b");
}

TEST(Condition, TakesAPartInQuotesAsItIs) {
    EXPECT_EQ(Read("\"odd=name\" = 5"), "odd=name|odd=name = 5");
    EXPECT_EQ(Read("Text = \" two \""), "Text|Text =  two ");
    EXPECT_EQ(Read("Text ="), "Text|Text = \"\"");
}

TEST(Condition, ThatIsNoneTellsTheForm) {
    const std::string form = "expected NAME=VALUE, or with !=, <, <=, >, >= or ~ (a pattern), not ";
    for (const char* text : {"", "Online", "=yes", "\"a=b\"", " < 5"})
        EXPECT_EQ(Read(text), form + '"' + text + '"');
}

TEST(Condition, WithAPatternThatIsNoneTellsWhereItGoesWrong) {
    EXPECT_EQ(Read("Status ~ (a"), "\"(a\" is no pattern: missing closing parenthesis, at character 3");
}

} // namespace
} // namespace stagehost
