#include "SocketFixture.h"

#include <thread>

#include "ManualScripts.h"

// A device that speaks a protocol of lines, and the scripts of the manual.

namespace {

/// Answers "GET name" with its value and "SET name value" with "OK", one line each, until the client goes.
void ServeLines(const Peer& client) {
    std::string line;
    std::string value = "0";
    for (std::string byte = client.Receive(1); !byte.empty(); byte = client.Receive(1)) {
        if (byte != "\n") {
            line += byte;
            continue;
        }
        const bool sets = line.rfind("SET level ", 0) == 0;
        if (sets)
            value = line.substr(10);
        client.Send(sets ? "OK\r\n" : line == "GET level" ? "level " + value + "\r\n" : "ERROR\r\n");
        line.clear();
    }
}

class LineDevices : public SocketFixture {
protected:
    void SetUp() override {
        SocketFixture::SetUp();
        m_server = std::thread([this] {
            for (Peer client = listener.Accept(); client.IsOpen() && !m_over; client = listener.Accept())
                ServeLines(client);
        });
    }
    void TearDown() override {
        SocketFixture::TearDown();
        m_over = true;
        listener.Interrupt();
        m_server.join();
    }

private:
    std::atomic<bool> m_over{false};
    std::thread m_server;
};

TEST_F(LineDevices, AnswerTheScriptOfTheManual) {
    const std::vector<std::string> scripts = ScriptsOfTheManual(NETWORK_MANUAL);
    ASSERT_EQ(scripts.size(), 2U);
    GivenScript(scripts[0]);
    Call("Open", {"127.0.0.1", std::to_string(listener.GetPort())});
    EXPECT_EQ(Call("Ask", {"GET level"}), "level 0");
    EXPECT_EQ(Call("Ask", {"SET level 70"}), "OK");
    EXPECT_EQ(Call("Ask", {"GET level"}), "level 70");
    EXPECT_EQ(Call("Ask", {"DANCE"}), "ERROR");
    EXPECT_EQ(Error(), "");
}

TEST_F(LineDevices, TheDatagramScriptOfTheManualWorks) {
    const std::vector<std::string> scripts = ScriptsOfTheManual(NETWORK_MANUAL);
    ASSERT_EQ(scripts.size(), 2U);
    GivenScript(scripts[1]);
    const std::string port = Call("Listen", {"0"});
    EXPECT_EQ(Call("Say", {"hello", port, "127.0.0.1"}), "hello from 127.0.0.1:" + port);
}

} // namespace
