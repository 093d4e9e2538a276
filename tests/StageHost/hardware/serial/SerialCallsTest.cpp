#include <algorithm>
#include <cstdlib>

#include <dlfcn.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <QCoreApplication>

#include "SerialPair.h"
#include "SerialPort.h"
#include "SerialRecorder.h"

/// What a port asks of the system, as a preloaded library notes it. The library answers for a port
/// that can do everything.

using namespace stagehost;

namespace {

template <typename Function>
Function Recorded(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_DEFAULT, name));
}

std::vector<std::string> TakeCalls() {
    std::vector<std::string> calls;
    const QString record = QString::fromLatin1(Recorded<const char* (*)()>("TakeSerialRecord")());
    for (const QString& call : record.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        if (calls.empty() || call != QLatin1String("drain") || calls.back() != "drain")
            calls.push_back(call.toStdString());
    }
    return calls;
}

using Calls = std::vector<std::string>;

class WhatAPortAsksOfTheSystem : public testing::Test {
protected:
    void Open() {
        port.emplace(pair.Ours(), news);
        for (const auto& [setting, value] : before)
            EXPECT_TRUE(port->Set(setting, value));
        TakeCalls();
        port->Open();
        ASSERT_TRUE(news.notes.WaitFor("state"));
    }

    void Write(const std::string& text) {
        EXPECT_TRUE(port->Write(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
    }

    SerialPair pair;
    SerialRecorder news;
    std::vector<std::pair<SerialSetting, std::uint32_t>> before;
    std::optional<SerialPort> port;
};

} // namespace

TEST_F(WhatAPortAsksOfTheSystem, AllSettingsOfTheLine) {
    before = {{SerialSetting::BaudRate, 19200},
              {SerialSetting::DataSize, 7},
              {SerialSetting::Parity, 1},
              {SerialSetting::StopBits, 2},
              {SerialSetting::CtsOutFlow, 1}};
    Open();
    const Calls calls = TakeCalls();
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(calls.back(), "line rate=19200 size=7 parity=odd stop=2 flow=hardware");
    EXPECT_TRUE(port->Set(SerialSetting::Parity, 2));
    EXPECT_EQ(TakeCalls().back(), "line rate=19200 size=7 parity=even stop=2 flow=hardware");
    EXPECT_TRUE(port->Set(SerialSetting::CtsOutFlow, 0));
    EXPECT_EQ(TakeCalls().back(), "line rate=19200 size=7 parity=even stop=2 flow=none");
    EXPECT_TRUE(port->Set(SerialSetting::RtsHandshake, 1));
    EXPECT_EQ(TakeCalls().back(), "line rate=19200 size=7 parity=even stop=2 flow=hardware");
    EXPECT_TRUE(port->Set(SerialSetting::DataSize, 8)) << testing::PrintToString(news.notes.All());
    EXPECT_TRUE(port->Set(SerialSetting::Parity, 0));
    EXPECT_TRUE(port->Set(SerialSetting::StopBits, 1));
    EXPECT_EQ(TakeCalls().back(), "line rate=19200 size=8 parity=none stop=1 flow=hardware");
}

TEST_F(WhatAPortAsksOfTheSystem, LinesAreRaisedAndDropped) {
    Open();
    TakeCalls();
    EXPECT_TRUE(port->Set(SerialSetting::Dtr, 1));
    EXPECT_TRUE(port->Set(SerialSetting::Rts, 1));
    EXPECT_TRUE(port->Set(SerialSetting::Dtr, 0));
    EXPECT_TRUE(port->Set(SerialSetting::Rts, 0));
    Calls calls = TakeCalls();
    calls.erase(std::remove(calls.begin(), calls.end(), "drain"), calls.end());
    EXPECT_EQ(calls, (Calls{"raise DTR", "raise RTS", "drop DTR", "drop RTS"}));
}

TEST_F(WhatAPortAsksOfTheSystem, LinesStandAsTheyWereSetWhenItOpens) {
    before = {{SerialSetting::DtrControl, 0}, {SerialSetting::RtsControl, 0}};
    Open();
    const Calls calls = TakeCalls();
    EXPECT_NE(std::find(calls.begin(), calls.end(), "drop DTR"), calls.end());
    EXPECT_NE(std::find(calls.begin(), calls.end(), "drop RTS"), calls.end());
}

TEST_F(WhatAPortAsksOfTheSystem, ABreakWaitsUntilWhatWasWrittenHasLeftAndHoldsBackWhatFollows) {
    Open();
    TakeCalls();
    Write("before");
    EXPECT_TRUE(port->Set(SerialSetting::Break, 1));
    Calls first = TakeCalls();
    first.resize(3);
    EXPECT_EQ(first, (Calls{"write before", "drain", "break on"})); // it is on when the call comes back
    EXPECT_TRUE(port->Set(SerialSetting::Break, 0));
    Write("after");
    ASSERT_TRUE(news.notes.WaitFor("event 1 1", 2));
    Calls calls = TakeCalls();
    calls.erase(std::remove(calls.begin(), calls.end(), "drain"), calls.end());
    EXPECT_EQ(calls, (Calls{"break off", "write after"}));
}

TEST_F(WhatAPortAsksOfTheSystem, ASettingIsMadeBetweenWhatWasWrittenBeforeAndAfter) {
    Open();
    EXPECT_TRUE(port->Set(SerialSetting::BaudRate, 9600));
    TakeCalls();
    Write("slow");
    EXPECT_TRUE(port->Set(SerialSetting::BaudRate, 19200));
    Write("fast");
    ASSERT_TRUE(news.notes.WaitFor("event 1 1", 2));
    EXPECT_EQ(TakeCalls(), (Calls{"write slow", "drain", "line rate=19200 size=8 parity=none stop=1 flow=none", "drain",
                                  "write fast", "drain"}));
}

TEST_F(WhatAPortAsksOfTheSystem, ModemLinesBreaksAndErrorsAreEvents) {
    Recorded<void (*)(int, int)>("SetSerialPins")(0, 0);
    Open();
    Recorded<void (*)(int, int)>("SetSerialPins")(1, 0);
    EXPECT_TRUE(news.notes.WaitFor("event 3 1"));
    Recorded<void (*)(int, int)>("SetSerialPins")(1, 1);
    EXPECT_TRUE(news.notes.WaitFor("event 4 1"));
    Recorded<void (*)(int, int)>("SetSerialPins")(0, 1);
    EXPECT_TRUE(news.notes.WaitFor("event 3 0"));
    Recorded<void (*)(int, int)>("CountSerial")(1, 0);
    EXPECT_TRUE(news.notes.WaitFor("event 2 1"));
    Recorded<void (*)(int, int)>("CountSerial")(0, 2);
    EXPECT_TRUE(news.notes.WaitFor("event 5 1"));
    EXPECT_TRUE(news.notes.WaitFor("2 characters came in wrong"));
    EXPECT_TRUE(port->Status().open);
}

int main(int argc, char** argv) {
    if (dlsym(RTLD_DEFAULT, "TakeSerialRecord") == nullptr) {
        setenv("LD_PRELOAD", SYSTEM_CALL_RECORDER, 1);
        execv("/proc/self/exe", argv);
        return 127;
    }
    unsetenv("LD_PRELOAD"); // socat needs none of it
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
