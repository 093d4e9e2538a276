#include "MTimerailManager.h"

#include <gtest/gtest.h>

namespace {

struct TrackRow {
    const char* sentence;
    std::int32_t command;
    bool suspendedBefore;
    bool tracking;
    bool suspended;
    std::int32_t state;
};

constexpr TrackRow kTrackRows[] = {
    {"stop clears all from running", 0, false, false, false, 0},
    {"stop clears a suspension", 0, true, false, false, 0},
    {"run leaves it not suspended", 1, false, true, false, 1},
    {"run leaves a suspension as it is", 1, true, true, true, 1},
    {"start tracks", 2, false, true, false, 2},
    {"start ends a suspension", 2, true, true, false, 2},
    {"suspend suspends", 3, false, false, true, 0},
    {"suspend again stays suspended", 3, true, false, true, 0},
    {"end clears all", 4, false, false, false, 0},
    {"end clears a suspension", 4, true, false, false, 0},
};

void Track(MTimerailManager& manager, std::int32_t command, std::int32_t argument) {
    switch (command) {
    case 0:
        return manager.TrackStop(argument);
    case 1:
        return manager.TrackRun(argument);
    case 2:
        return manager.TrackStart(argument);
    case 3:
        return manager.TrackSuspend(argument);
    default:
        return manager.TrackEnd(argument);
    }
}

void ExpectState(const MTimerailManager& manager, const TrackRow& row) {
    EXPECT_EQ(manager.IsTracking(), row.tracking) << row.sentence;
    EXPECT_EQ(manager.IsSuspended(), row.suspended) << row.sentence;
    EXPECT_EQ(manager.GetState(), row.state) << row.sentence;
}

} // namespace

TEST(MTimerailManager, IsIdleAtFirst) {
    const MTimerailManager manager;
    EXPECT_FALSE(manager.IsTracking());
    EXPECT_FALSE(manager.IsSuspended());
    EXPECT_EQ(manager.GetState(), 0);
    EXPECT_EQ(manager.GetLastArgument(), 0);
}

TEST(MTimerailManager, EachCommandSetsItsRowOfTheTable) {
    for (const TrackRow& row : kTrackRows) {
        MTimerailManager manager;
        if (row.suspendedBefore)
            manager.TrackSuspend(0);
        EXPECT_EQ(manager.ChangeTrackState(row.command, 17), 0) << row.sentence;
        ExpectState(manager, row);
        EXPECT_EQ(manager.GetLastArgument(), 17) << row.sentence;
    }
}

TEST(MTimerailManager, EachOperationSetsItsRowOfTheTable) {
    for (const TrackRow& row : kTrackRows) {
        MTimerailManager manager;
        if (row.suspendedBefore)
            manager.TrackSuspend(0);
        Track(manager, row.command, 9);
        ExpectState(manager, row);
        EXPECT_EQ(manager.GetLastArgument(), 0) << "the operations do not use their argument";
    }
}

TEST(MTimerailManager, ReturnsTheStateBeforeTheCall) {
    MTimerailManager manager;
    EXPECT_EQ(manager.ChangeTrackState(2, 0), 0);
    EXPECT_EQ(manager.ChangeTrackState(1, 0), 2);
    EXPECT_EQ(manager.ChangeTrackState(0, 0), 1);
}

TEST(MTimerailManager, ACommandOfFiveChangesNothingAndReturnsTheCurrentState) {
    for (const std::int32_t command : {5, -1, 2147483647, -2147483647 - 1}) {
        MTimerailManager manager;
        manager.TrackStart(0);
        EXPECT_EQ(manager.ChangeTrackState(command, 3), 2) << command;
        EXPECT_EQ(manager.GetState(), 2);
        EXPECT_TRUE(manager.IsTracking());
        EXPECT_EQ(manager.GetLastArgument(), 3) << "the argument is kept all the same";
    }
}

TEST(MTimerailManager, AfterSuspendTheDeviceTakesCommandsAgain) {
    MTimerailManager manager;
    manager.TrackStart(0);
    manager.TrackSuspend(0);
    EXPECT_TRUE(manager.IsSuspended());
    EXPECT_FALSE(manager.IsTracking());
}

TEST(MTimerailManager, ResetClearsARunningTrack) {
    MTimerailManager manager;
    manager.ChangeTrackState(3, 8);
    manager.ChangeTrackState(1, 8);
    manager.Reset();
    EXPECT_FALSE(manager.IsTracking());
    EXPECT_FALSE(manager.IsSuspended());
    EXPECT_EQ(manager.GetState(), 0);
    EXPECT_EQ(manager.GetLastArgument(), 0);
}

TEST(MTimerailManager, CommandsReachAnOverridingClass) {
    struct Counting : MTimerailManager {
        void TrackRun(std::int32_t argument) override { seen = argument; }
        std::int32_t seen = 0;
    } manager;
    manager.ChangeTrackState(1, 77);
    EXPECT_EQ(manager.seen, 77);
    EXPECT_FALSE(manager.IsTracking());
}
