#pragma once

#include <memory>

#include <gtest/gtest.h>

#include "LoopbackPeer.h"
#include "OwnNetwork.h"
#include "SocketRecorder.h"

/// A datagram socket with a recorder, and a plain one that sends to it.
class UDPFixture : public testing::Test {
protected:
    UDPFixture() { socket->AddHandler(&recorder); }

    void GivenBound() { ASSERT_EQ(socket->Bind(false, nullptr, 0), 0); }
    void Send(const std::string& bytes) { ASSERT_TRUE(peer.SendTo(bytes, socket->GetPort())); }

    UDPRecorder recorder;
    Peer peer = Peer::Datagrams();
    std::unique_ptr<MUDPSocket> socket = std::make_unique<MUDPSocket>(); // gone before the recorder
};
