#include "Projector.h"

#include <gtest/gtest.h>

#include <QTest>

#include "Waits.h"

namespace {

using projector::Power;
using projector::Projector;

projector::Description Quick() {
    projector::Description description;
    description.warmUp = description.coolDown = 1;
    return description;
}

void WaitFor(const Projector& projector, Power power) {
    EXPECT_TRUE(QTest::qWaitFor([&] { return projector.GetPower() == power; }, kLongest));
}

} // namespace

TEST(Projector, IsOffAtFirstWithItsFirstInput) {
    const Projector projector{projector::Description()};
    EXPECT_EQ(projector.GetPower(), Power::Off);
    EXPECT_EQ(projector.Input(), QStringLiteral("11"));
}

TEST(Projector, WarmsUpBeforeItIsOnAndCoolsBeforeItIsOff) {
    Projector projector(Quick());
    EXPECT_TRUE(projector.TurnOn());
    EXPECT_EQ(projector.GetPower(), Power::WarmingUp);
    WaitFor(projector, Power::On);
    EXPECT_TRUE(projector.TurnOff());
    EXPECT_EQ(projector.GetPower(), Power::Cooling);
    WaitFor(projector, Power::Off);
}

TEST(Projector, IsNotTurnedBackWhileItWarmsUpOrCools) {
    Projector projector(Quick());
    projector.TurnOn();
    EXPECT_FALSE(projector.TurnOff());
    EXPECT_TRUE(projector.TurnOn());
    WaitFor(projector, Power::On);
    projector.TurnOff();
    EXPECT_FALSE(projector.TurnOn());
    EXPECT_TRUE(projector.TurnOff());
    EXPECT_EQ(projector.GetPower(), Power::Cooling);
}

TEST(Projector, ForgetsItsMutesWhenItGoesOff) {
    Projector projector(Quick());
    projector.TurnOn();
    WaitFor(projector, Power::On);
    projector.MutePicture(true);
    projector.MuteSound(true);
    projector.TurnOff();
    WaitFor(projector, Power::Off);
    EXPECT_FALSE(projector.PictureMuted());
    EXPECT_FALSE(projector.SoundMuted());
}

TEST(Projector, CountsWholeHoursOnTopOfTheFirst) {
    projector::Description description = Quick();
    description.lampHours = {12, 700};
    Projector projector(description);
    projector.TurnOn();
    WaitFor(projector, Power::On);
    EXPECT_EQ(projector.LampHours(0), 12);
    EXPECT_EQ(projector.LampHours(1), 700);
}
