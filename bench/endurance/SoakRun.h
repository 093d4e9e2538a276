#pragma once

#include <memory>
#include <vector>

#include <QElapsedTimer>
#include <QTimer>

#include "EchoPeers.h"
#include "Figures.h"
#include "SoakDevice.h"

/// Plays the devices for a time, prints a line a minute and the figures at the end.   [host main]
class SoakRun {
public:
    explicit SoakRun(double minutes);

    /// @return 0; 1 when a request has no end, a thread or descriptor is left behind, or memory grows.
    int Play();

private:
    void WarmUp();
    void MakeDevices();
    void Beat();
    void Send();
    void Disturb();
    void Sample();
    void PrintMinute();
    std::int64_t OpenAtLast();
    bool IsAtRest(const Footprint& before);
    int Close(const Footprint& before);
    double Hours() const { return static_cast<double>(m_clock.elapsed()) / 3600000.0; }
    double Share() const { return Hours() * 60 / m_minutes; } ///< of the run that is over

    const double m_minutes;
    SoakHost m_host;
    EchoPeers m_peers{m_host.faults};
    const EchoPorts m_ports = m_peers.Ports();
    std::vector<std::unique_ptr<SoakDevice>> m_devices;
    QElapsedTimer m_clock;
    bool m_isBeating = false; ///< operations of the host's main thread serve its events, the next beat among them
    std::uint64_t m_beats = 0;
    int m_minutesTold = 0;
    double m_processorBefore = 0;
    Latencies m_first; ///< of the first tenth of the run
    Latencies m_middle;
    Latencies m_last; ///< of the last tenth
    Slope m_resident;
    Slope m_residentLate; ///< over the second half, see Sample
    Slope m_heap;
    Slope m_threads;
    Slope m_descriptors;
};
