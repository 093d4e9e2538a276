#pragma once

#include <array>
#include <cstddef>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Deadline.h"
#include "OwnNetwork.h"

/// A name server that takes questions and is silent until its end, when it tells them all that it failed. Needs the own
/// network, where 127.0.0.1 is the resolver.
class SilentResolver {
public:
    SilentResolver() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(53);
        if (HasOwnNetwork())
            m_descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        if (m_descriptor >= 0 && bind(m_descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
            close(m_descriptor);
            m_descriptor = -1;
        }
    }
    ~SilentResolver() {
        if (!IsThere())
            return;
        while (AnswerOne()) {
        }
        close(m_descriptor);
    }
    SilentResolver(const SilentResolver&) = delete;
    SilentResolver& operator=(const SilentResolver&) = delete;

    bool IsThere() const { return m_descriptor >= 0; }
    bool WaitForQuestion() const {
        pollfd entry{m_descriptor, POLLIN, 0};
        return poll(&entry, 1, static_cast<int>(kDeadlineMs)) == 1;
    }

private:
    // The header of RFC 1035: the third byte's highest bit makes it
    // an answer, the fourth's lowest four are the code, 2 a failure.
    bool AnswerOne() const {
        std::array<unsigned char, 512> message{};
        sockaddr_in asker{};
        socklen_t size = sizeof asker;
        auto* const from = reinterpret_cast<sockaddr*>(&asker);
        const ssize_t length = recvfrom(m_descriptor, message.data(), message.size(), MSG_DONTWAIT, from, &size);
        if (length < 12)
            return false;
        message[2] = static_cast<unsigned char>(message[2] | 0x80);
        message[3] = 0x82;
        return sendto(m_descriptor, message.data(), static_cast<std::size_t>(length), 0, from, size) == length;
    }

    int m_descriptor = -1;
};
