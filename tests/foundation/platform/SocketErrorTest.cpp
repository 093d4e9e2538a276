#include "SocketError.h"

#include <cerrno>

#include <gtest/gtest.h>

TEST(SocketErrors, HaveTheNumbersThatTheLayerAboveKnows) {
    EXPECT_EQ(static_cast<int>(SocketErrorFromSystem(ECONNREFUSED)), 10061);
    EXPECT_EQ(static_cast<int>(SocketErrorFromSystem(ECONNRESET)), 10054);
    EXPECT_EQ(static_cast<int>(SocketErrorFromSystem(ETIMEDOUT)), 10060);
    EXPECT_EQ(static_cast<int>(SocketErrorFromSystem(EHOSTUNREACH)), 10065);
    EXPECT_EQ(static_cast<int>(SocketErrorFromSystem(ENETUNREACH)), 10051);
    EXPECT_EQ(static_cast<int>(SocketErrorFromSystem(EADDRINUSE)), 10048);
    EXPECT_EQ(static_cast<int>(SocketErrorFromSystem(EMSGSIZE)), 10040);
    EXPECT_EQ(static_cast<int>(SocketErrorFromSystem(EAGAIN)), 10035);
    EXPECT_EQ(static_cast<int>(SocketErrorFromSystem(EBADF)), 10038);
}

TEST(SocketErrors, NoErrorIsNone) {
    EXPECT_EQ(SocketErrorFromSystem(0), SocketError::None);
}

TEST(SocketErrors, AnErrorWithoutANumberIsOther) {
    EXPECT_EQ(SocketErrorFromSystem(EXDEV), SocketError::Other);
}
