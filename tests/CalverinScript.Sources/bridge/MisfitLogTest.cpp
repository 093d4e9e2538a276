#include "MisfitLog.h"

#include <gtest/gtest.h>

namespace {

class MisfitLines : public testing::Test {
protected:
    std::string Tell(const char* variable, const char* text, std::uint32_t nowMs, const QStringList& items = {}) {
        return log
            .Line(QString::fromLatin1(variable), QString::fromLatin1(text), QStringLiteral("is no number"), items,
                  nowMs)
            .toStdString();
    }

    MisfitLog log;
};

TEST_F(MisfitLines, NameTheVariableTheTextAndWhatWouldFit) {
    EXPECT_EQ(Tell("Level", "abc", 0), "the variable \"Level\" does not take \"abc\", which is no number");
    EXPECT_EQ(Tell("Mode", "%1", 0, {QStringLiteral("a"), QStringLiteral("b")}),
              "the variable \"Mode\" does not take \"%1\", which is no number: a, b");
}

TEST_F(MisfitLines, OfOneVariableAreThreeInASecondAndTheNextTellsHowManyWereLeftOut) {
    for (int i = 0; i < 3; ++i)
        EXPECT_NE(Tell("Level", "x", 500), "");
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(Tell("Level", "x", 501), "");
    EXPECT_NE(Tell("Other", "x", 501), "");
    const std::string next = Tell("Level", "x", 1500);
    EXPECT_NE(next.find("(and 100 before)"), std::string::npos) << next;
    EXPECT_EQ(Tell("Level", "x", 1501).find("before"), std::string::npos);
}

TEST_F(MisfitLines, GoOnWhenTheClockWraps) {
    for (int i = 0; i < 4; ++i)
        Tell("Level", "x", 0xFFFFFF00u);
    EXPECT_NE(Tell("Level", "x", 1000), "");
}

TEST_F(MisfitLines, ShortenLongTextsAndLongLists) {
    QStringList items;
    for (int i = 0; i < 100; ++i)
        items.append(QString::number(i));
    const std::string line = Tell("Mode", std::string(5000, 'x').c_str(), 0, items);
    EXPECT_LT(line.size(), 250u);
    EXPECT_NE(line.find("11, ..."), std::string::npos) << line;
}

} // namespace
