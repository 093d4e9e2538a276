#pragma once

#include "EventFixture.h"
#include "LoopbackPeer.h"
#include "OwnNetwork.h"

/// A device whose script has a socket `s` and can be told what to do, line by line. Every event of the socket is heard as a word:
/// its name and its values, as in "close,false,s", where "s" is the socket itself. Data is not heard but joined in `got`,
/// and heard as "got:TEXT" when it has the length `want`.
class SocketFixture : public EventFixture {
protected:
    void GivenTcp() { GivenSocket(""); }
    void GivenUdp() { GivenSocket("'udp4'"); }
    /// Runs a line of the script. @return its value as text, "error: ..." for what it threw.
    std::string Do(const std::string& line) { return Call("Do", {line}); }
    /// Connects the client and accepts it.
    Peer GivenConnection();
    /// Binds the UDP object to a port of the system's choice. @return it.
    std::uint16_t GivenBound(const std::string& addresses = "");
    /// Loads another script that has the words of this fixture.
    void GivenSocketScript(const std::string& script);

    Listener listener;

private:
    void GivenSocket(const std::string& type);
};

/// "connect(PORT" and so on.
std::string WithPort(const std::string& before, std::uint16_t port, const std::string& behind);
