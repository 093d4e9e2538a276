#include "ResourceFixture.h"

namespace {

class Universe : public ResourceFixture {
protected:
    void SetUp() override {
        ResourceFixture::SetUp();
        GivenAllResources();
        Run("var lamp = get('DMXOut', 2), desk = get('DMXIn', 1)");
    }
};

TEST_F(Universe, WritesBlocksOfAnOutput) {
    CheckCalls(out.calls,
               {{"all that a Buffer has", "lamp.WriteBlock(new Buffer([1, 2, 255]))", "WriteBlock:0,3,0102ff"},
                {"from a channel on", "lamp.WriteBlock(new Buffer([1, 2]), 10)", "WriteBlock:10,2,0102"},
                {"fewer than there are", "lamp.WriteBlock(new Buffer([1, 2, 3]), 1, 2)", "WriteBlock:1,2,0102"},
                {"no more than there are", "lamp.WriteBlock(new Buffer(4), 0, 512)", "WriteBlock:0,4,00000000"},
                {"a start beyond the universe", "lamp.WriteBlock(new Buffer([7]), 600, 10)", "WriteBlock:512,1,07"},
                {"a start before it", "lamp.WriteBlock(new Buffer([7]), -5, 1)", "WriteBlock:0,1,07"},
                {"a negative count", "lamp.WriteBlock(new Buffer([7]), 3, -1)", "WriteBlock:3,0,"},
                {"no channels", "lamp.WriteBlock(new Buffer([7]), 3, 0)", "WriteBlock:3,0,"},
                {"an empty Buffer", "lamp.WriteBlock(new Buffer(0))", "WriteBlock:0,0,"}});
    Run("lamp.WriteBlock(new Buffer(600), 0, 600)");
    EXPECT_EQ(out.calls.Take().substr(0, 17), "WriteBlock:0,512,");
}

TEST_F(Universe, SaysWhetherTheHostHasTakenABlock) {
    CheckValues({{"the host says yes", "lamp.WriteBlock(new Buffer(1))", "true"}});
    out.answer = 7;
    CheckValues({{"anything but 0 is yes", "lamp.WriteBlock(new Buffer(1)) === true", "true"}});
    out.answer = 0;
    CheckValues({{"the host says no", "lamp.WriteBlock(new Buffer(1))", "false"}});
}

TEST_F(Universe, WritesNothingToAnInputNorAnythingButABuffer) {
    out.calls.Take();
    in.calls.Take();
    CheckValues({{"an input", "desk.WriteBlock(new Buffer(4))", "false"},
                 {"a text", "lamp.WriteBlock('abc')", "false"},
                 {"an array", "lamp.WriteBlock([1, 2, 3])", "false"},
                 {"a number", "lamp.WriteBlock(5)", "false"},
                 {"null", "lamp.WriteBlock(null)", "false"},
                 {"undefined", "lamp.WriteBlock(undefined)", "false"}});
    EXPECT_EQ(out.calls.Take() + in.calls.Take(), "");
}

TEST_F(Universe, ReadsWhatComesInOfAnInputAndWhatGoesOutOfAnOutput) {
    in.levels[10] = 0xAB;
    in.levels[11] = 0xCD;
    out.levels[0] = 9;
    CheckValues({{"two channels from 10 on", "desk.ReadBlock(10, 2).toString('hex')", "abcd"},
                 {"everything", "desk.ReadBlock().length + ' ' + desk.ReadBlock()[10]", "512 171"},
                 {"the output's own", "lamp.ReadBlock(0, 1).toString('hex')", "09"},
                 {"a Buffer", "desk.ReadBlock(0, 1) instanceof Buffer", "true"}});
    CheckCalls(in.calls, {{"start and count are passed on", "desk.ReadBlock(10, 2)", "ReadInput:10,2"}});
    CheckCalls(out.calls, {{"start and count are passed on", "lamp.ReadBlock(511, 1)", "ReadOutput:511,1"}});
}

TEST_F(Universe, BringsStartAndCountIntoItsChannels) {
    in.levels.fill(5);
    CheckCalls(in.calls, {{"a count beyond", "desk.ReadBlock(0, 1000)", "ReadInput:0,512"},
                          {"a start beyond", "desk.ReadBlock(600, 1)", "ReadInput:512,1"},
                          {"negative ones", "desk.ReadBlock(-1, -1)", "ReadInput:0,0"}});
    CheckValues({{"512 bytes at most", "desk.ReadBlock(0, 1000).length", "512"},
                 {"no bytes", "desk.ReadBlock(0, 0).length", "0"},
                 {"levels beyond the universe are 0", "desk.ReadBlock(511, 3).toString('hex')", "050000"}});
}

TEST_F(Universe, ReadsNothingWhenTheHostHasNothing) {
    in.answer = 0;
    CheckValues({{"no value", "typeof desk.ReadBlock()", "undefined"}});
}

TEST_F(Universe, HandsFramesOfAnInputOnInFullLength) {
    Run("desk.On('data', function (f, from) { hear([f.length, f[0], f[23], f[24], f[511], from === desk].join()); })");
    in.Receive(std::string(24, '\x07'));
    in.Receive(std::string(512, '\x09'));
    in.Receive(std::string(600, '\x0b'));
    in.Receive("");
    EXPECT_EQ(HeardAfterAll(), "512,7,7,0,0,true 512,9,9,9,9,true 512,11,11,11,11,true");
}

TEST_F(Universe, HearsNoDataOfAnOutputNorOfOthers) {
    Run("lamp.On('data', hearing('out')); desk.On('data', hearing('in'))");
    out.Receive("abc");
    IDMXResourceHandler* handler = in.handlers.First();
    ASSERT_NE(handler, nullptr);
    const std::uint8_t level = 1;
    handler->OnData(&out, &level, 1, 0);
    handler->OnData(nullptr, &level, 1, 0);
    handler->OnData(&in, nullptr, 1, 0);
    handler->OnData(&in, &level, 0, 0);
    handler->OnData(&in, &level, -3, 0);
    EXPECT_EQ(handler->Reserved4(nullptr, nullptr, nullptr, nullptr), KXP_OK);
    EXPECT_EQ(HeardAfterAll(), "");
}

TEST_F(Universe, OpensAndClosesWithTheListenersGivenThen) {
    EXPECT_EQ(out.calls.Take(), "AddHandler");
    Run("lamp.Open(hearing('open')); lamp.Close(hearing('close')); lamp.Open(); lamp.Close()");
    EXPECT_EQ(Heard(4), "open close open close");
    EXPECT_EQ(out.calls.Take(), "Open Close Open Close");
}

TEST_F(Universe, StandsBeforeTheHostAsAHandler) {
    IDMXResourceHandler* handler = in.handlers.First();
    ASSERT_NE(handler, nullptr);
    void* face = nullptr;
    EXPECT_EQ(handler->QueryInterface("IMInterface", &face), KXP_OK);
    EXPECT_EQ(face, static_cast<IResourceHandler*>(handler));
    EXPECT_EQ(handler->QueryInterface("IDMXResourceHandler", &face), KXP_OK);
    EXPECT_EQ(face, handler);
    EXPECT_EQ(handler->QueryInterface("ISerialResourceHandler", &face), 268435456u);
    EXPECT_EQ(face, nullptr);
    EXPECT_EQ(handler->QueryInterface(nullptr, &face), 268435457u);
    EXPECT_STREQ(handler->GetOwnerName(), "Desk");
}

TEST_F(Universe, GivesItsNeutralResultsWhenItWasLetGo) {
    out.calls.Take();
    in.calls.Take();
    GivenSettings({});
    EXPECT_EQ(out.calls.Take(), "RemoveHandler Close");
    EXPECT_EQ(in.calls.Take(), "RemoveHandler Close");
    CheckValues({{"nothing is written", "lamp.WriteBlock(new Buffer(1))", "false"},
                 {"nothing is read", "typeof desk.ReadBlock()", "undefined"},
                 {"nothing is opened", "lamp.Open(hear)", "undefined"},
                 {"nothing is closed", "desk.Close(hear)", "undefined"},
                 {"nobody listens", "desk.On('data', hear)", "undefined"}});
    EXPECT_EQ(out.calls.Take() + in.calls.Take(), "");
}

} // namespace
