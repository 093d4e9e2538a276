#include "SerialPort.h"

#include <future>

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
