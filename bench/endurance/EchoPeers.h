#pragma once

#include <cstdint>
#include <future>

#include <QThread>

#include "Faults.h"

/// Where the peers listen, on the loopback.
struct EchoPorts {
    std::uint16_t tcp = 0;
    std::uint16_t udp = 0;
    std::uint16_t http = 0;
};

/// The other ends of all sockets, on a thread of their own: lines and datagrams come back, every address has a page.
/// One time in a hundred a connection is broken off or a datagram lost.
class EchoPeers : public QThread {
public:
    /// Starts them.
    explicit EchoPeers(Faults& faults);
    /// Closes everything.
    ~EchoPeers() override;

    EchoPorts Ports() { return m_ports.get_future().get(); }

protected:
    void run() override;

private:
    Faults& m_faults;
    std::promise<EchoPorts> m_ports;
};
