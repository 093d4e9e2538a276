#pragma once

#include "EventFixture.h"
#include "LoopbackPeer.h"

/// A device whose script carries templates/connection.js. What its connection tells is heard as words: "online",
/// "offline: REASON", "frame:TEXT", "answer:TEXT", "problem:TEXT". Times that must not pass in a test are a minute,
/// unless its options say otherwise.
class ConnectionFixture : public EventFixture {
protected:
    /// Loads the script without a connection.
    void GivenConnectionScript();
    /// Opens a connection with these options, as JavaScript writes them.
    void GivenOpen(const std::string& options);
    /// Opens one over TCP to the listener, and accepts it. @param options more of them.
    Peer GivenConnected(const std::string& options = "");
    static std::string ConnectionText();
    /// "transport: Connection.tcp('127.0.0.1', PORT)"
    static std::string TcpTo(std::uint16_t port);
    static std::string UdpTo(std::uint16_t port);
    /// Runs a line of the script. @return its value as text, "error: ..." for what it threw.
    std::string Do(const std::string& line) { return Call("Do", {line}); }
    /// Waits until what was heard holds a word. @return all that was heard.
    std::string HeardWith(const std::string& word);

    Listener listener;
};
