#include <chrono>

#include "ResourceFixture.h"

namespace {

class SerialPort : public ResourceFixture {
protected:
    void SetUp() override {
        ResourceFixture::SetUp();
        GivenAllResources();
        Run("var port = get('Serial', 3)");
    }
};

TEST_F(SerialPort, IsHeardFromTheReadingOfTheSetupOnWithDataAndEvents) {
    EXPECT_EQ(serial.calls.Take(), "AddHandler:3");
    EXPECT_EQ(serial.state, KXP_RESOURCE_CLOSED) << "opening is the script's business";
}

TEST_F(SerialPort, TakesTheSettingsThatItKnows) {
    CheckCalls(serial.calls, {{"300 is a rate", "port.SetBaudRate(300)", "SetBaudRate:300"},
                              {"600 is a rate", "port.SetBaudRate(600)", "SetBaudRate:600"},
                              {"1200 is a rate", "port.SetBaudRate(1200)", "SetBaudRate:1200"},
                              {"2400 is a rate", "port.SetBaudRate(2400)", "SetBaudRate:2400"},
                              {"4800 is a rate", "port.SetBaudRate(4800)", "SetBaudRate:4800"},
                              {"9600 is a rate", "port.SetBaudRate(9600)", "SetBaudRate:9600"},
                              {"19200 is a rate", "port.SetBaudRate(19200)", "SetBaudRate:19200"},
                              {"38400 is a rate", "port.SetBaudRate(38400)", "SetBaudRate:38400"},
                              {"57600 is a rate", "port.SetBaudRate(57600)", "SetBaudRate:57600"},
                              {"115200 is a rate", "port.SetBaudRate(115200)", "SetBaudRate:115200"},
                              {"a text of digits is a number", "port.SetBaudRate('9600')", "SetBaudRate:9600"},
                              {"the rate is 19200 without one", "port.SetBaudRate()", "SetBaudRate:19200"},
                              {"one stop bit", "port.SetStopBits(1)", "SetStopBits:1"},
                              {"two stop bits", "port.SetStopBits(2)", "SetStopBits:2"},
                              {"one stop bit without a number", "port.SetStopBits()", "SetStopBits:1"},
                              {"seven data bits", "port.SetDataSize(7)", "SetDataSize:7"},
                              {"eight data bits", "port.SetDataSize(8)", "SetDataSize:8"},
                              {"eight data bits without a number", "port.SetDataSize()", "SetDataSize:8"},
                              {"no parity", "port.SetParity('None')", "SetParity:0"},
                              {"odd parity", "port.SetParity('Odd')", "SetParity:1"},
                              {"even parity", "port.SetParity('Even')", "SetParity:2"},
                              {"no parity without a name", "port.SetParity()", "SetParity:0"}});
}

TEST_F(SerialPort, IgnoresTheSettingsThatItDoesNotKnow) {
    CheckCalls(serial.calls, {{"14400 is no rate", "port.SetBaudRate(14400)", ""},
                              {"0 is no rate", "port.SetBaudRate(0)", ""},
                              {"a negative rate", "port.SetBaudRate(-9600)", ""},
                              {"230400 is beyond", "port.SetBaudRate(230400)", ""},
                              {"no stop bit", "port.SetStopBits(0)", ""},
                              {"three stop bits", "port.SetStopBits(3)", ""},
                              {"six data bits", "port.SetDataSize(6)", ""},
                              {"nine data bits", "port.SetDataSize(9)", ""},
                              {"small letters are another name", "port.SetParity('even')", ""},
                              {"mark parity", "port.SetParity('Mark')", ""},
                              {"no name", "port.SetParity('')", ""}});
}

TEST_F(SerialPort, PassesItsLinesOnAsTheyAreSet) {
    for (const std::string name : {"SetBreak", "SetDTR", "SetRTS", "SetDTRControl", "SetRTSControl", "SetDTRHandshake",
                                   "SetDSROutFlow", "SetRTSHandshake", "SetCTSOutFlow"}) {
        serial.calls.Take();
        Run("port." + name + "(true); port." + name + "(false); port." + name + "(1); port." + name + "('')");
        EXPECT_EQ(serial.calls.Take(), name + ":1 " + name + ":0 " + name + ":1 " + name + ":0");
        EXPECT_EQ(Run("port." + name + "()").substr(0, 6), "threw ") << "the engine asks for the argument";
    }
}

TEST_F(SerialPort, GivesNoValuesBack) {
    for (const char* call :
         {"Write('x')", "Open()", "Close()", "SetBaudRate()", "SetStopBits()", "SetDataSize()", "SetParity()",
          "SetBreak(false)", "SetDTR(true)", "SetBreakCharacter(1)", "SetBreakTime()", "On('data', hear)"})
        EXPECT_EQ(Run(std::string("typeof port.") + call), "undefined") << call;
}

TEST_F(SerialPort, WritesTextsAndBuffersInOnePiece) {
    CheckCalls(serial.calls, {{"a text", "port.Write('AB')", "Write:4142"},
                              {"a text in Latin-1", "port.Write('\\u00e9')", "Write:e9"},
                              {"what Latin-1 does not have", "port.Write('\\u20ac')", "Write:3f"},
                              {"a text with a zero in it", "port.Write('A\\0B')", "Write:410042"},
                              {"an empty text is passed on", "port.Write('')", "Write:"},
                              {"a Buffer", "port.Write(new Buffer([0, 255, 126]))", "Write:00ff7e"},
                              {"an empty Buffer is passed on", "port.Write(new Buffer(0))", "Write:"},
                              {"a number does nothing", "port.Write(5)", ""},
                              {"null does nothing", "port.Write(null)", ""},
                              {"undefined does nothing", "port.Write(undefined)", ""},
                              {"an array does nothing", "port.Write([1, 2])", ""},
                              {"an object does nothing", "port.Write({ length: 2 })", ""},
                              {"a flag does nothing", "port.Write(true)", ""}});
}

TEST_F(SerialPort, MakesABreakOfEachBreakCharacter) {
    Run("port.SetBreakTime(0); port.SetBreakCharacter(0x7E)");
    const char* const breakCalls = "SetBreak:1 SetBreak:0";
    const std::string b = breakCalls;
    const auto written = [&](const std::string& bytes) {
        serial.calls.Take();
        Run("port.Write(new Buffer('" + bytes + "', 'hex'))");
        return serial.calls.Take();
    };
    EXPECT_EQ(written("7e017e7e02"), b + " Write:01 " + b + " Write: " + b + " Write:02");
    EXPECT_EQ(written("0102"), "Write:0102");
    EXPECT_EQ(written("7e"), b);
    EXPECT_EQ(written("7e7e"), b + " Write: " + b) << "the empty piece is skipped at the very beginning alone";
    EXPECT_EQ(written("017e"), "Write:01 " + b) << "nothing is left to write";
    EXPECT_EQ(written("01027e03047e0506"), "Write:0102 " + b + " Write:0304 " + b + " Write:0506");
    EXPECT_EQ(written(""), "Write:");
    CheckCalls(serial.calls, {{"in a text too", "port.Write('~A')", "SetBreak:1 SetBreak:0 Write:41"}});
}

TEST_F(SerialPort, KeepsTheLow8BitsOfABreakCharacter) {
    Run("port.SetBreakTime(0)");
    CheckCalls(
        serial.calls,
        {{"0 needs no care at first", "port.Write('\\0')", "Write:00"},
         {"300 is 44", "port.SetBreakCharacter(300); port.Write(',')", "SetBreak:1 SetBreak:0"},
         {"a high one", "port.SetBreakCharacter(255); port.Write(new Buffer([255]))", "SetBreak:1 SetBreak:0"},
         {"a negative one is 0", "port.SetBreakCharacter(-1); port.Write('\\0A')", "SetBreak:1 SetBreak:0 Write:41"},
         {"256 is 0, there is no way back to none", "port.SetBreakCharacter(256); port.Write('\\0A')",
          "SetBreak:1 SetBreak:0 Write:41"}});
}

TEST_F(SerialPort, HoldsABreakForItsTime) {
    const auto lastedMs = [&](const char* script) {
        serial.calls.Take();
        Run(script);
        const auto moments = serial.calls.Moments();
        EXPECT_EQ(serial.calls.Take(), "SetBreak:1 SetBreak:0");
        return std::chrono::duration<double, std::milli>(moments.at(1) - moments.at(0)).count();
    };
    EXPECT_GE(lastedMs("port.SetBreakCharacter(1); port.Write('\\u0001')"), 2.0) << "2 ms unless it is set";
    EXPECT_GE(lastedMs("port.SetBreakTime(30); port.Write('\\u0001')"), 30.0);
    EXPECT_GE(lastedMs("port.SetBreakTime(); port.Write('\\u0001')"), 2.0);
    EXPECT_GE(lastedMs("port.SetBreakTime(-5); port.Write('\\u0001')"), 0.0);
}

TEST_F(SerialPort, OpensAndClosesWithTheListenersGivenThen) {
    serial.calls.Take();
    Run("port.Open(hearing('open'))");
    EXPECT_EQ(Heard(1), "open");
    Run("port.Close(hearing('close'))");
    EXPECT_EQ(Heard(2), "open close");
    Run("port.Open(); port.Close(5); port.Open(null)");
    EXPECT_EQ(Heard(5), "open close open close open") << "what is no function changes no listener";
    EXPECT_EQ(serial.calls.Take(), "Open Close Open Close Open");
}

TEST_F(SerialPort, ReportsNothingOfARefusedOpening) {
    serial.refusesToOpen = true;
    Run("port.Open(hearing('open'))");
    EXPECT_EQ(HeardAfterAll(), "");
}

TEST_F(SerialPort, TellsOpenAndCloseOnceForEachChangeAndNothingForOtherStates) {
    Run("port.On('open', hearing('open')); port.On('close', hearing('close'))");
    for (const std::uint32_t state : {0U, 0U, 2U, 2U, 1U, 1U, 0U, 3U, 2U, 0x80000000U, 0U})
        serial.BecomeState(state);
    EXPECT_EQ(HeardAfterAll(), "close open close open close");
}

TEST_F(SerialPort, HandsEveryBlockOnAsABufferOfItsOwn) {
    Run("port.On('data', function (bytes, from) { hear(bytes.toString('hex') + (from === port)); })");
    serial.Receive(std::string("\0\x01\xff", 3));
    serial.Receive("A");
    EXPECT_EQ(Heard(2), "0001fftrue 41true");
}

TEST_F(SerialPort, TellsItsEventsWithTheStateAsAFlag) {
    for (const char* name : {"tx_empty", "break", "cts", "dsr", "error"})
        Run(std::string("port.On('") + name + "', hearing('" + name + "'))");
    for (const int type : {0, 1, 2, 3, 4, 5, 6, -1})
        serial.Happen(type, type == 4 ? 0 : 7);
    EXPECT_EQ(HeardAfterAll(), "tx_empty:true break:true cts:true dsr:false error:true");
}

TEST_F(SerialPort, IgnoresWhatIsNotItsOwnOrEmpty) {
    Run("port.On('data', hearing('data')); port.On('cts', hearing('cts'))");
    ISerialResourceHandler* handler = serial.handlers.First();
    ASSERT_NE(handler, nullptr);
    plain::FakeSerial other;
    const std::uint8_t byte = 65;
    handler->OnData(&other, &byte, 1, 0);
    handler->OnData(nullptr, &byte, 1, 0);
    handler->OnData(&serial, nullptr, 1, 0);
    handler->OnData(&serial, &byte, 0, 0);
    handler->OnData(&serial, &byte, -1, 0);
    handler->OnEvent(&other, KXP_SERIAL_CTS, 1, 0);
    handler->OnEvent(nullptr, KXP_SERIAL_CTS, 1, 0);
    EXPECT_EQ(handler->Reserved4(nullptr, nullptr, nullptr, nullptr), KXP_OK);
    EXPECT_EQ(HeardAfterAll(), "");
}

TEST_F(SerialPort, StandsBeforeTheHostAsAHandler) {
    ISerialResourceHandler* handler = serial.handlers.First();
    ASSERT_NE(handler, nullptr);
    void* face = nullptr;
    EXPECT_EQ(handler->QueryInterface("IMInterface", &face), KXP_OK);
    EXPECT_EQ(face, static_cast<IResourceHandler*>(handler));
    EXPECT_EQ(handler->QueryInterface("ISerialResourceHandler", &face), KXP_OK);
    EXPECT_EQ(face, handler);
    EXPECT_EQ(handler->QueryInterface("IDMXResourceHandler", &face), 268435456u);
    EXPECT_EQ(face, nullptr);
    EXPECT_EQ(handler->QueryInterface(nullptr, &face), 268435457u);
    EXPECT_EQ(handler->QueryInterface("IMInterface", nullptr), 268435457u);
    EXPECT_STREQ(handler->GetOwnerName(), "Desk");
    device->SetName("Curtain");
    EXPECT_STREQ(handler->GetOwnerName(), "Curtain");
}

TEST_F(SerialPort, IsClosedAndForgottenWhenItIsLetGo) {
    serial.calls.Take();
    GivenSettings({});
    EXPECT_EQ(serial.calls.Take(), "RemoveHandler Close");
    EXPECT_EQ(serial.handlers.Count(), 0u);
}

TEST_F(SerialPort, DoesNothingAnyMoreWhenItWasLetGo) {
    Run("port.SetBreakCharacter(1)");
    GivenSettings({});
    serial.calls.Take();
    for (const char* call :
         {"Write('x')",          "Write('\\u0001')",      "Open(hear)",          "Close(hear)",
          "SetBaudRate()",       "SetStopBits()",         "SetDataSize()",       "SetParity()",
          "SetBreak(true)",      "SetDTR(true)",          "SetRTS(true)",        "SetDTRControl(true)",
          "SetRTSControl(true)", "SetDTRHandshake(true)", "SetDSROutFlow(true)", "SetRTSHandshake(true)",
          "SetCTSOutFlow(true)", "SetBreakCharacter(2)",  "SetBreakTime(9)",     "On('data', hear)"})
        EXPECT_EQ(Run(std::string("port.") + call), "undefined") << call;
    EXPECT_EQ(serial.calls.Take(), "");
}

} // namespace
