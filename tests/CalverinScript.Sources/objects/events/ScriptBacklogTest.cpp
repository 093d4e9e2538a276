#include "ScriptBacklog.h"

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "BacklogCounter.h"
#include "MScriptParamList.h"

namespace {

class Backlog : public testing::Test {
protected:
    ScriptBacklog::Ticket Add(std::uint64_t bytes) { return m_backlog->Add({1, bytes}); }

    std::vector<bool> m_told; ///< true for full, false for caught up
    std::unique_ptr<ScriptBacklog> m_backlog =
        std::make_unique<ScriptBacklog>([this](bool full) { m_told.push_back(full); });
};

constexpr std::uint64_t kMega = std::uint64_t{1} << 20;

} // namespace

TEST_F(Backlog, TellsThatItIsFullAtSixteenMegabytesAndOnceHalfOfItHasGone) {
    std::vector<ScriptBacklog::Ticket> tickets;
    for (int i = 0; i < 15; ++i)
        tickets.push_back(Add(kMega));
    EXPECT_TRUE(m_told.empty());
    tickets.push_back(Add(kMega));
    tickets.push_back(Add(kMega));
    EXPECT_EQ(m_told, std::vector<bool>{true});
    tickets.resize(9);
    EXPECT_EQ(m_told, std::vector<bool>{true});
    tickets.resize(8);
    EXPECT_EQ(m_told, (std::vector<bool>{true, false}));
    tickets.clear();
    EXPECT_EQ(m_told, (std::vector<bool>{true, false}));
}

TEST_F(Backlog, TellsThatItIsFullAtTheBoundOfEventsHoweverSmall) {
    const ScriptBacklog::Ticket most = m_backlog->Add({ScriptBacklog::kMost.events - 1, 0});
    EXPECT_EQ(m_backlog->GetRoom().events, 1U);
    const ScriptBacklog::Ticket last = Add(1);
    EXPECT_EQ(m_told, std::vector<bool>{true});
    EXPECT_EQ(m_backlog->GetRoom().events, 0U);
}

TEST_F(Backlog, TakesMoreThanItsBoundAndHasNoRoomThen) {
    const ScriptBacklog::Ticket large = Add(40 * kMega);
    EXPECT_EQ(m_backlog->GetRoom().bytes, 0U);
    EXPECT_EQ(m_told, std::vector<bool>{true});
}

TEST_F(Backlog, HasRoomForAnEventThatFitsInBothWays) {
    BacklogLoad room{1, 10};
    EXPECT_FALSE(room.Take(11));
    EXPECT_TRUE(room.Take(10));
    EXPECT_FALSE(room.Take(0));
}

TEST_F(Backlog, CountsAnEventUntilItsLastCopyIsGone) {
    MScriptParamList event;
    event.Carry(m_backlog->Add({ScriptBacklog::kMost.events, 0}));
    auto copy = std::make_unique<MScriptParamList>(event);
    event = MScriptParamList();
    EXPECT_EQ(m_told, std::vector<bool>{true});
    copy.reset();
    EXPECT_EQ(m_told, (std::vector<bool>{true, false}));
}

TEST_F(Backlog, TellsNothingAfterItsEndThoughEventsStillGo) {
    ScriptBacklog::Ticket ticket = Add(16 * kMega);
    m_backlog.reset();
    ticket.reset();
    EXPECT_EQ(m_told, std::vector<bool>{true});
}

TEST(BacklogOfTwoThreads, NeverStaysFullWhenAllIsTaken) {
    std::atomic<bool> full{false};
    ScriptBacklog backlog([&](bool isFull) { full = isFull; });
    for (int round = 0; round < 1000; ++round) {
        ScriptBacklog::Ticket ticket = backlog.Add({1, 9 * kMega});
        std::thread taker([&] { ticket.reset(); });
        backlog.Add({1, 9 * kMega}).reset();
        taker.join();
        ASSERT_FALSE(full);
    }
}

TEST(CountedBacklog, RefusesWhatIsPastItsBoundInEitherWayAndTellsOnceThatItHasCaughtUp) {
    int told = 0;
    BacklogCounter counter([&] { ++told; });
    const auto enter = [&](std::uint64_t bytes, std::uint64_t times) {
        std::uint64_t entered = 0;
        for (std::uint64_t i = 0; i < times; ++i)
            entered += counter.Enter(bytes) ? 1 : 0;
        return entered;
    };
    const auto leave = [&](std::uint64_t bytes, std::uint64_t times) {
        for (std::uint64_t i = 0; i < times; ++i)
            counter.Leave(bytes);
    };
    EXPECT_EQ(enter(kMega, 18), 16U) << "16 MiB";
    leave(kMega, 7);
    EXPECT_EQ(told, 0);
    leave(kMega, 9);
    EXPECT_EQ(told, 1) << "at half of it, once";
    EXPECT_EQ(enter(0, ScriptBacklog::kMost.events + 5), ScriptBacklog::kMost.events);
    leave(0, ScriptBacklog::kMost.events);
    EXPECT_EQ(told, 2);
    EXPECT_EQ(enter(17 * kMega, 1), 0U) << "one that never fits";
    EXPECT_EQ(told, 3) << "and has no end that could tell later";
    EXPECT_EQ(enter(1, 1), 1U);
}
