#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <netinet/in.h>

/// @file
/// What the network benchmark measures, each in a process of its own, pinned to one core while the measuring end has
/// the other: a device with a script, Node, a bare loop around the script engine, and plain system calls. All do the
/// same work, see NetBenchNode.js.

/// A port of this machine, as the system wants to see it.
sockaddr_in Loopback(std::uint16_t port);

/// A process to measure.
class Subject {
public:
    explicit Subject(const std::vector<std::string>& command);
    ~Subject();
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;

    /// The first line that it prints, its port; 0 when it did not start.
    std::uint16_t ReadPort() const;
    /// Its processor time until now in seconds.
    double Seconds() const;
    double ResidentMegabytes() const;

private:
    int m_pid = -1;
    int m_output = -1;
};

/// Runs as a device with a script, or as plain system calls, until it is killed. @param mode "device-udp",
/// "device-tcp", "script-udp", "bare-udp", "bare-tcp"; the port is that of the measuring end for tcp, the total the
/// bytes of one bulk transfer.
int RunSubject(const std::string& mode, std::uint16_t port, std::uint64_t total);
