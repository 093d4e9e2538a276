#include "DropLog.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "IScriptObjectOwner.h"

namespace {

std::uint32_t theTime = 0;

std::uint32_t Clock() {
    return theTime;
}

class Log final : public IScriptObjectOwner {
public:
    void PostScriptEvent(const QString&, const MScriptParamList*, MScriptCommonEvent*) override {}
    std::string GetDeviceName() const override { return ""; }
    void TraceMessage(const QString& message, const QString& type) override {
        lines.push_back((type + QLatin1Char(' ') + message).toStdString());
    }
    std::vector<std::string> lines;
};

class DropLogs : public testing::Test {
protected:
    static std::string Line(int count) {
        return "ALARM events dropped, since the script does not keep up: " + std::to_string(count);
    }

    Log m_log;
    DropLog m_drops{TellOfSlowScript(&m_log, [] { return QStringLiteral("events"); }), &Clock};
};

} // namespace

TEST_F(DropLogs, TellOnceASecondHowManyWereDroppedSinceTheLastLine) {
    theTime = 0xFFFFFF00; // the clock wraps meanwhile
    m_drops.Note(1);
    m_drops.Note(20);
    theTime += 999;
    m_drops.Note(300);
    EXPECT_EQ(m_log.lines, std::vector<std::string>{Line(1)});
    theTime += 1;
    m_drops.Note(4000);
    EXPECT_EQ(m_log.lines, (std::vector<std::string>{Line(1), Line(4320)}));
}

TEST_F(DropLogs, TellWhoLooksNowAndThenWhatASecondHasLeft) {
    m_drops.Note(1);
    m_drops.Note(20);
    theTime += 999;
    m_drops.TellDue();
    EXPECT_EQ(m_log.lines, std::vector<std::string>{Line(1)});
    theTime += 1;
    m_drops.TellDue();
    EXPECT_EQ(m_log.lines, (std::vector<std::string>{Line(1), Line(20)}));
}

TEST_F(DropLogs, TellTheRestWhenTheFloodIsOver) {
    m_drops.Note(1);
    m_drops.Note(2);
    m_drops.TellRest();
    m_drops.TellRest();
    EXPECT_EQ(m_log.lines, (std::vector<std::string>{Line(1), Line(2)}));
}

TEST_F(DropLogs, TellNothingOfNothing) {
    m_drops.TellDue();
    m_drops.TellRest();
    EXPECT_TRUE(m_log.lines.empty());
    m_drops.Note(1);
    EXPECT_EQ(m_log.lines, std::vector<std::string>{Line(1)}) << "nothing is no line, so this one is the first";
}

TEST_F(DropLogs, MayBeGivenMoreFromInsideALine) {
    std::vector<std::uint64_t> told;
    DropLog* lpDrops = nullptr;
    DropLog drops(
        [&](std::uint64_t count) {
            told.push_back(count);
            if (told.size() == 1)
                lpDrops->Note(5); // a host that posts a command from its log
        },
        &Clock);
    lpDrops = &drops;
    drops.Note(2);
    drops.TellRest();
    EXPECT_EQ(told, (std::vector<std::uint64_t>{2, 5}));
}

TEST_F(DropLogs, WriteNoLineForAnObjectThatNobodyOwns) {
    DropLog nobody(TellOfSlowScript(nullptr, [] { return QString(); }));
    nobody.Note(1);
    EXPECT_TRUE(m_log.lines.empty());
}
