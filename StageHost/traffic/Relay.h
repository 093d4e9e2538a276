#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "Endpoint.h"
#include "Passage.h"
#include "SerialSettings.h"
#include "TrafficEntry.h"

namespace stagehost {

/// How a relay misbehaves.
struct MischiefPlan {
    std::uint64_t seed = 0;
    std::vector<Prank> from; ///< empty: all
    unsigned oneIn = 4;
};

/// What a relay stands between.
struct RelayPlan {
    LinePlace device;
    LinePlace listen;
    SerialSettings serial; ///< of a serial device
    std::optional<MischiefPlan> mischief;
};

/// Stands between programs and their device and passes everything on: each program that comes has a connection of its
/// own to the device. A side that does not take what comes holds the other one up. Ends of either half, resets and a
/// device that cannot be reached are passed on as well.
///
/// With mischief each direction of each connection has pranks of its own, drawn from the seed, the connection's number
/// and the direction.   [host main]
class Relay final : private EndpointNews {
public:
    /// @param told hears of everything that goes by, after it has been passed on; `at` is for it to fill in.
    Relay(RelayPlan plan, std::function<void(TrafficEntry)> told);
    ~Relay();
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

    /// Begins to listen. @return empty, or what is wrong.
    QString Open();

    const Endpoint& Listener() const { return *m_endpoint; }

    /// Reads nothing while somebody who hears of it cannot take any more.
    void HoldUp(bool holds);

private:
    using End = PrankedPiece::End;

    /// A program, its connection to the device, and what is under way both ways.
    struct Pair {
        std::shared_ptr<Channel> device;
        std::shared_ptr<Passage> toDevice; ///< null without mischief, as toProgram
        std::shared_ptr<Passage> toProgram;
        std::unique_ptr<Mischief> pranks[2]; ///< by the side that speaks; null when none are played
        bool isConnected = false;
        bool isProgramOver = false;
        bool isDeviceOver = false;
    };

    void Opened(LineId line, const QString& who) override;
    void Came(LineId line, const QByteArray& bytes) override;
    void Ended(LineId line) override;
    void Drained(LineId line) override;
    void Closed(LineId line, const QString& why) override;

    std::shared_ptr<Channel> ConnectToDevice(LineId line, QString& problem);
    ChannelNews NewsOf(LineId line);
    void OpenSerialDevice();
    void MakePassages(LineId line);
    void Pass(LineId line, Side by, const QByteArray& bytes);
    void Send(LineId line, Side by, const QByteArray& bytes);
    void EndWay(LineId line, Side by, End end);
    void SideEnded(LineId line, Side by);
    void DeviceEnded(LineId line);
    void DeviceLost(LineId line, const QString& why, bool isReset);
    void Drop(LineId line);
    void SetReading(LineId line);
    void Tell(LineId line, TrafficEvent event, Side by, const QString& text = {});

    const RelayPlan m_plan;
    const std::function<void(TrafficEntry)> m_told;
    NetAddress m_device;
    std::map<LineId, Pair> m_pairs;
    std::shared_ptr<Channel> m_serial; ///< the device of a serial line, which stays when programs come and go
    std::unique_ptr<Endpoint> m_endpoint;
    bool m_isHeldUp = false;
};

} // namespace stagehost
