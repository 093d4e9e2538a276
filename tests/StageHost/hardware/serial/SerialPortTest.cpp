#include "SerialPort.h"

#include <algorithm>
#include <future>
#include <optional>
#include <utility>

#include <gtest/gtest.h>

#include "SerialPair.h"
#include "SerialRecorder.h"

using namespace stagehost;

namespace {

class ASerialPort : public testing::Test {
protected:
    void Open() {
        port.emplace(pair.Ours(), news);
        port->Open();
        ASSERT_TRUE(news.notes.WaitFor("state"));
        ASSERT_TRUE(port->Status().open);
    }

    bool Write(const std::string& text) {
        return port->Write(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    }

    std::size_t Count(const std::string& start) const {
        const auto all = news.notes.All();
        return static_cast<std::size_t>(
            std::count_if(all.begin(), all.end(), [&](const auto& note) { return note.rfind(start, 0) == 0; }));
    }

    SerialPair pair;
    SerialRecorder news;
    std::optional<SerialPort> port;
};

} // namespace

TEST_F(ASerialPort, SendsAndReceives) {
    Open();
    SerialPeer peer(pair.Theirs());
    ASSERT_TRUE(peer.IsOpen());
    EXPECT_TRUE(Write("hello"));
    EXPECT_TRUE(Write(""));
    EXPECT_EQ(peer.Read(5), QByteArray("hello"));
    EXPECT_TRUE(news.notes.WaitFor("event 1 1")); // all has left
    peer.Write("world");
    EXPECT_TRUE(news.notes.WaitFor("data world"));
    EXPECT_EQ(port->Status().received, 5u);
    EXPECT_EQ(port->Status().sent, 5u);
}

TEST_F(ASerialPort, EveryByteValueGoesThrough) {
    Open();
    SerialPeer peer(pair.Theirs());
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    EXPECT_TRUE(Write(all));
    EXPECT_EQ(peer.Read(256), QByteArray::fromStdString(all));
    peer.Write(QByteArray::fromStdString(all));
    EXPECT_TRUE(news.notes.WaitFor("data " + all));
}

TEST_F(ASerialPort, ThatIsMissingIsToldOnceAndOpensWhenItComes) {
    pair.Cut();
    port.emplace(pair.Ours(), news);
    port->Open();
    ASSERT_TRUE(news.notes.WaitFor("event 5 1"));
    EXPECT_TRUE(news.notes.WaitFor("cannot open "));
    EXPECT_FALSE(port->Status().open);
    EXPECT_FALSE(Write("nobody is there"));
    ASSERT_TRUE(pair.Connect());
    EXPECT_TRUE(news.notes.WaitFor("state"));
    EXPECT_TRUE(news.notes.WaitFor("opens "));
    EXPECT_TRUE(port->Status().open);
    const auto all = news.notes.All();
    EXPECT_EQ(std::count_if(all.begin(), all.end(), [](const auto& note) { return note.rfind("cannot open", 0) == 0; }),
              1);
}

TEST_F(ASerialPort, ThatIsPulledOutIsToldAndComesBack) {
    Open();
    pair.Cut();
    ASSERT_TRUE(news.notes.WaitFor("lost "));
    EXPECT_TRUE(news.notes.WaitFor("event 5 1"));
    EXPECT_TRUE(news.notes.WaitFor("state", 2));
    EXPECT_FALSE(port->Status().open);
    ASSERT_TRUE(pair.Connect());
    ASSERT_TRUE(news.notes.WaitFor("state", 3));
    SerialPeer peer(pair.Theirs());
    EXPECT_TRUE(Write("back"));
    EXPECT_EQ(peer.Read(4), QByteArray("back"));
}

TEST_F(ASerialPort, ThatIsBusyIsToldAndOpensWhenItIsFree) {
    std::optional<SerialPeer> owner(std::in_place, pair.Ours());
    ASSERT_TRUE(owner->IsOpen());
    port.emplace(pair.Ours(), news);
    port->Open();
    ASSERT_TRUE(news.notes.WaitFor("cannot open "));
    EXPECT_FALSE(port->Status().open);
    owner.reset();
    EXPECT_TRUE(news.notes.WaitFor("state"));
    EXPECT_TRUE(port->Status().open);
}

TEST_F(ASerialPort, ASettingThatThePortCannotDoIsToldAndRefused) {
    Open();
    EXPECT_TRUE(port->Set(SerialSetting::BaudRate, 115200));
    EXPECT_TRUE(port->Set(SerialSetting::StopBits, 2));
    EXPECT_TRUE(port->Set(SerialSetting::DataSize, 8));
    EXPECT_FALSE(port->Set(SerialSetting::DataSize, 7)); // a pseudo-terminal has 8 bits and no parity
    EXPECT_TRUE(news.notes.WaitFor("cannot do data size 7: "));
    EXPECT_FALSE(port->Set(SerialSetting::Parity, 2));
    EXPECT_TRUE(news.notes.WaitFor("cannot do parity 2: "));
    EXPECT_FALSE(port->Set(SerialSetting::Dtr, 1)); // nor modem lines
    EXPECT_TRUE(news.notes.WaitFor("cannot do DTR 1: "));
    EXPECT_TRUE(port->Status().open);
}

TEST_F(ASerialPort, SettingsOfAClosedPortHoldWhenItOpens) {
    port.emplace(pair.Ours(), news);
    EXPECT_TRUE(port->Set(SerialSetting::DataSize, 7));
    EXPECT_FALSE(port->Set(SerialSetting::Break, 1)); // there is no line to hold
    port->Open();
    EXPECT_TRUE(news.notes.WaitFor("cannot do data size 7: "));
    EXPECT_TRUE(news.notes.WaitFor("state"));
}

TEST_F(ASerialPort, ACloseEndsTheWaitForALineThatDoesNotMove) {
    Open();
    // Nobody reads at the other end, so at some time nothing leaves any more.
    const std::string block(65536, 'x');
    int taken = 0;
    while (Write(block) && taken < 100)
        ++taken;
    EXPECT_LT(taken, 100); // what waits is bounded
    auto setting = std::async(std::launch::async, [&] { return port->Set(SerialSetting::Break, 1); });
    port->Close();
    EXPECT_FALSE(setting.get()) << testing::PrintToString(news.notes.All());
    EXPECT_TRUE(news.notes.WaitFor("state", 2));
    EXPECT_FALSE(port->Status().open);
}

TEST_F(ASerialPort, ItIsClosedAndOpenedAgain) {
    Open();
    port->Close();
    ASSERT_TRUE(news.notes.WaitFor("state", 2));
    EXPECT_FALSE(Write("x"));
    port->Open();
    ASSERT_TRUE(news.notes.WaitFor("state", 3));
    EXPECT_TRUE(Write("x"));
}

TEST_F(ASerialPort, LosesNothingOfManyWritesThatHaveToWait) {
    Open();
    SerialPeer peer(pair.Theirs()); // it reads when all has been written, so the line is full meanwhile
    ASSERT_TRUE(peer.IsOpen());
    std::string all;
    for (int block = 0; block < 300; ++block) {
        const std::string bytes(1024, static_cast<char>('a' + block % 26));
        ASSERT_TRUE(Write(bytes));
        all += bytes;
    }
    EXPECT_EQ(peer.Read(static_cast<int>(all.size())), QByteArray::fromStdString(all));
    EXPECT_TRUE(news.notes.WaitFor("event 1 1")); // all has left
    EXPECT_EQ(Count("lost "), 0u) << testing::PrintToString(news.notes.All());
    EXPECT_TRUE(port->Status().open);
}

TEST_F(ASerialPort, LosesNothingOfWritesBetweenBreaksOnAFullLine) {
    Open();
    constexpr int kFrames = 60;
    const std::string half(4096, 'x');
    const int size = kFrames * 2 * static_cast<int>(half.size());
    SerialPeer peer(pair.Theirs());
    auto written = std::async(std::launch::async, [&] {
        for (int frame = 0; frame < kFrames; ++frame) {
            if (!Write(half) || !Write(half) || !port->Set(SerialSetting::Break, 1) ||
                !port->Set(SerialSetting::Break, 0))
                return false;
        }
        return true;
    });
    EXPECT_EQ(peer.Read(size).size(), size);
    EXPECT_TRUE(written.get());
    EXPECT_EQ(Count("lost "), 0u) << testing::PrintToString(news.notes.All());
}

TEST_F(ASerialPort, TellsOnceAndCountsWhatGoesBeyondTheMegabyteThatMayWait) {
    Open();
    SerialPeer peer(pair.Theirs());
    ASSERT_TRUE(peer.IsOpen());
    const std::string big(600000, 'x');
    for (std::size_t round = 1; round <= 2; ++round) {
        EXPECT_TRUE(Write(big));
        EXPECT_FALSE(Write(big));
        EXPECT_FALSE(Write(big));
        EXPECT_TRUE(news.notes.WaitFor("refuses 600000 bytes: ", round));
        EXPECT_EQ(Count("refuses "), round);
        EXPECT_EQ(port->Status().refused, round * 2 * big.size());
        EXPECT_EQ(peer.Read(static_cast<int>(round * big.size())).size(), static_cast<int>(round * big.size()));
        EXPECT_TRUE(news.notes.WaitFor("event 1 1", round)); // all has left, so the next time is told again
    }
    EXPECT_TRUE(port->Status().open);
}

TEST_F(ASerialPort, CountsWhatIsRefusedWhileItIsClosed) {
    port.emplace(pair.Ours(), news);
    EXPECT_FALSE(Write("hello"));
    EXPECT_EQ(port->Status().refused, 5u);
}

namespace {

/// A port whose thread stands still at its first open until it is let go.
class ASerialPortThatIsHeldUp : public ASerialPort {
protected:
    void OpenAndHold() {
        news.onState = [this, isFirst = true]() mutable {
            if (std::exchange(isFirst, false))
                go.get_future().wait();
        };
        Open();
    }

    /// As many as a script that gets it wrong sends.
    void OpenAndCloseOften() {
        for (int count = 0; count < 20000; ++count) {
            port->Open();
            port->Close();
        }
    }

    std::promise<void> go;
};

} // namespace

TEST_F(ASerialPortThatIsHeldUp, SkipsEachOpenAndCloseThatALaterOneMakesPointless) {
    OpenAndHold();
    OpenAndCloseOften();
    go.set_value();
    EXPECT_TRUE(news.notes.WaitFor("state", 2));
    port.reset();
    EXPECT_EQ(Count("state"), 2u); // opened, closed
}

TEST_F(ASerialPortThatIsHeldUp, EndsOpenWhenThatWasAskedForLast) {
    OpenAndHold();
    OpenAndCloseOften();
    port->Open();
    go.set_value();
    ASSERT_TRUE(news.notes.WaitFor("state", 3)); // opened, closed, opened
    EXPECT_TRUE(port->Status().open);
    EXPECT_TRUE(Write("x"));
    port.reset();
    EXPECT_EQ(Count("state"), 3u);
}
