#include "ResourceFixture.h"

namespace {

class IoChannel : public ResourceFixture {
protected:
    void SetUp() override {
        ResourceFixture::SetUp();
        GivenAllResources();
        Run("var door = get('DigitalIn', 4, 0), lock = get('DigitalOut', 4, 0), bell = get('DigitalOut', 4, 1);"
            "var dial = get('AnalogIn', 4, 1), valve = get('AnalogOut', 4, 0)");
    }
    plain::FakeChannel& door = io.Channel(KXP_DIGITAL_INPUT, 0);
    plain::FakeChannel& lock = io.Channel(KXP_DIGITAL_OUTPUT, 0);
    plain::FakeChannel& bell = io.Channel(KXP_DIGITAL_OUTPUT, 1);
    plain::FakeChannel& dial = io.Channel(KXP_ANALOG_INPUT, 1);
    plain::FakeChannel& valve = io.Channel(KXP_ANALOG_OUTPUT, 0);
};

TEST_F(IoChannel, OfEachTypeIsTheHostsChannelOfThatType) {
    lock.value = 1;
    bell.value = 2;
    door.value = 3;
    valve.value = 4;
    dial.value = 5;
    EXPECT_EQ(Run("[lock, bell, door, valve, dial].map(function (c) { return c.GetValue(); }).join()"), "1,2,3,4,5");
}

TEST_F(IoChannel, SetsItsValueAndFlushesTheOpenResource) {
    io.state = KXP_RESOURCE_OPEN;
    EXPECT_EQ(Run("lock.SetValue(1)"), "true");
    EXPECT_EQ(lock.calls.Take(), "AddHandler SetValue:1");
    EXPECT_EQ(io.calls.Take(), "Flush");
    EXPECT_EQ(Run("valve.SetValue(-70000, true)"), "true");
    EXPECT_EQ(valve.value, -70000);
    EXPECT_EQ(io.calls.Take(), "Flush");
}

TEST_F(IoChannel, HoldsSeveralValuesBackUntilOneFlushesThemTogether) {
    io.state = KXP_RESOURCE_OPEN;
    Run("lock.SetValue(1, false); bell.SetValue(1, false); valve.SetValue(9, false)");
    EXPECT_EQ(io.calls.Take(), "");
    Run("bell.SetValue(0, true)");
    EXPECT_EQ(io.calls.Take(), "Flush") << "one flush, though several channels of the resource were taken";
}

TEST_F(IoChannel, DoesNotFlushAResourceThatIsNotOpen) {
    for (const std::uint32_t state : {0U, 1U, 3U}) {
        io.state = state;
        EXPECT_EQ(Run("lock.SetValue(1)"), "true");
        EXPECT_EQ(io.calls.Take(), "") << state;
    }
}

TEST_F(IoChannel, SaysWhetherTheHostHasTakenTheValueAndFlushesAllTheSame) {
    io.state = KXP_RESOURCE_OPEN;
    lock.answer = 0;
    EXPECT_EQ(Run("lock.SetValue(1)"), "false");
    EXPECT_EQ(io.calls.Take(), "Flush");
    lock.answer = 256;
    EXPECT_EQ(Run("lock.SetValue(1, false) === true"), "true");
}

TEST_F(IoChannel, TellsItsValueAsAFlagWhichIsMeant) {
    Run("dial.On('data', function (v, from) { hear('dial:' + v + (from === dial)); });"
        "door.On('data', function (v) { hear('door:' + v); })");
    dial.Become(4711);
    dial.Become(0);
    dial.Become(-1);
    door.Become(1);
    door.Become(0);
    EXPECT_EQ(Heard(5), "dial:truetrue dial:falsetrue dial:truetrue door:true door:false");
}

TEST_F(IoChannel, IgnoresValuesOfOtherChannels) {
    Run("door.On('data', hearing('data'))");
    IIOResourceChannelHandler* handler = door.handlers.First();
    ASSERT_NE(handler, nullptr);
    handler->OnValueChanged(&dial, 1, 0);
    handler->OnValueChanged(nullptr, 1, 0);
    EXPECT_EQ(handler->Reserved2(nullptr, nullptr, nullptr, nullptr), KXP_OK);
    EXPECT_EQ(HeardAfterAll(), "");
}

TEST_F(IoChannel, TellsItsOwnersNameForItsOwnChannelAlone) {
    IIOResourceChannelHandler* handler = door.handlers.First();
    ASSERT_NE(handler, nullptr);
    EXPECT_STREQ(handler->GetOwnerName(&door), "Desk");
    EXPECT_STREQ(handler->GetOwnerName(&dial), "");
    EXPECT_STREQ(handler->GetOwnerName(nullptr), "");
}

TEST_F(IoChannel, OpensAndClosesItsResourceWithItselfAsTheHandler) {
    io.calls.Take();
    Run("door.Open(hearing('open'))");
    EXPECT_EQ(Heard(1), "open");
    EXPECT_EQ(io.handlers.Count(), 1u);
    Run("door.Close(hearing('close'))");
    EXPECT_EQ(Heard(2), "open close");
    EXPECT_EQ(io.calls.Take(), "Open Close");
    EXPECT_EQ(io.handlers.Count(), 0u);
}

TEST_F(IoChannel, StandsBeforeItsResourceAsAHandler) {
    Run("door.Open()");
    IResourceHandler* handler = io.handlers.First();
    ASSERT_NE(handler, nullptr);
    void* face = nullptr;
    EXPECT_EQ(handler->QueryInterface("IMInterface", &face), KXP_OK);
    EXPECT_EQ(face, handler);
    EXPECT_EQ(handler->QueryInterface("IIOResourceChannelHandler", &face), KXP_OK);
    EXPECT_EQ(face, door.handlers.First());
    EXPECT_EQ(handler->QueryInterface("IResourceHandler", &face), 268435456u);
    EXPECT_EQ(face, nullptr);
    EXPECT_EQ(handler->QueryInterface(nullptr, &face), 268435457u);
    EXPECT_STREQ(handler->GetOwnerName(), "Desk");
    EXPECT_EQ(handler->Reserved4(nullptr, nullptr, nullptr, nullptr), KXP_OK);
}

TEST_F(IoChannel, IsNeverAskedForTheHostsQueryOrRelease) {
    EXPECT_EQ(io.calls.Take(), "") << "nothing is opened, and nothing released, by the reading of a setup";
}

TEST_F(IoChannel, RemovesBothItsHandlersWhenItIsLetGoOpen) {
    Run("door.Open()");
    io.calls.Take();
    door.calls.Take();
    GivenSettings({});
    EXPECT_EQ(door.calls.Take(), "RemoveHandler");
    EXPECT_EQ(io.calls.Take(), "Close");
    EXPECT_EQ(door.handlers.Count() + io.handlers.Count(), 0u);
}

TEST_F(IoChannel, ClosesNothingWhenItIsLetGoClosed) {
    Run("door.Open(); door.Close()");
    io.calls.Take();
    GivenSettings({});
    EXPECT_EQ(io.calls.Take(), "");
    EXPECT_EQ(door.handlers.Count(), 0u);
}

TEST_F(IoChannel, GivesItsNeutralResultsWhenItWasLetGo) {
    io.state = KXP_RESOURCE_OPEN;
    lock.value = 7;
    GivenSettings({});
    io.calls.Take();
    lock.calls.Take();
    CheckValues({{"no value", "lock.GetValue()", "0"},
                 {"nothing is set", "lock.SetValue(1)", "false"},
                 {"nothing is opened", "lock.Open(hear)", "undefined"},
                 {"nothing is closed", "lock.Close(hear)", "undefined"},
                 {"nobody listens", "lock.On('data', hear)", "undefined"}});
    EXPECT_EQ(io.calls.Take() + lock.calls.Take(), "") << "not even a flush";
    EXPECT_EQ(lock.value, 7);
}

TEST_F(IoChannel, WithoutAResourceHasAValueAndOpensNothing) {
    io.channels[{KXP_DIGITAL_INPUT, 5}] = std::make_unique<plain::FakeChannel>(nullptr, 5);
    plain::FakeChannel& lonely = *io.channels[{KXP_DIGITAL_INPUT, 5}];
    GivenSettings({{"DigitalIn", R"({ "Type":"DigitalIn", "ResourceID":4, "ChannelIndex":5 })"}});
    lonely.value = 3;
    io.calls.Take();
    CheckValues({{"the value", "var c = get('DigitalIn', 4, 5); c.GetValue()", "3"},
                 {"nothing to open", "c.Open(hearing('open'))", "undefined"},
                 {"nothing to close", "c.Close()", "undefined"},
                 {"the value is set", "c.SetValue(8)", "true"}});
    EXPECT_EQ(io.calls.Take(), "");
    Run("c.On('data', hearing('data'))");
    lonely.Become(1);
    EXPECT_EQ(Heard(1), "data:true");
}

TEST_F(IoChannel, StartsWithNothingToFlushAfterASetupIsReadAnew) {
    io.state = KXP_RESOURCE_OPEN;
    GivenAllResources();
    io.calls.Take();
    EXPECT_EQ(Run("var l = get('DigitalOut', 4, 0); l.SetValue(1)"), "true");
    EXPECT_EQ(io.calls.Take(), "Flush") << "the resource counts once, by the channel that was taken now";
}

} // namespace
