#pragma once

#include <thread>

#include <netinet/in.h>
#include <sys/socket.h>

#include <gtest/gtest.h>

#include "LoopbackPeer.h"
#include "OwnNetwork.h"
#include "SocketRecorder.h"

/// A client on 127.0.0.1 with a recorder, and the words to tell stories about it.
class TCPFixture : public testing::Test {
protected:
    TCPFixture() {
        client->AddHandler(&recorder);
        client->SetAddress("127.0.0.1");
    }

    void GivenPort(std::uint16_t port) { client->SetPort(port); }

    /// A connection that the client's thread opened.
    Peer GivenConnection() {
        GivenPort(listener.GetPort());
        EXPECT_EQ(client->ConnectAsync(), 0);
        EXPECT_TRUE(recorder.WaitFor("connect"));
        return listener.Accept();
    }

    /// The descriptor of the client's socket: it is connected to the listener and not the accepted one.
    int ClientDescriptor(const Peer& accepted) {
        for (const int descriptor : SocketDescriptors()) {
            sockaddr_in peer{};
            socklen_t size = sizeof peer;
            const bool hasPeer = getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) == 0;
            if (hasPeer && ntohs(peer.sin_port) == listener.GetPort() && descriptor != accepted.GetDescriptor())
                return descriptor;
        }
        return -1;
    }

    /// Waits until the client's thread has nothing pending: what it told is all that it will tell.
    bool ThreadIsGone() {
        return Eventually([this] { return !client->IsStarted(); });
    }

    TCPRecorder recorder;
    Listener listener;
    std::unique_ptr<MTCPClientSocket> client = std::make_unique<MTCPClientSocket>(); // gone before the recorder
};
