#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "DmxPlan.h"
#include "Lateness.h"
#include "PortNews.h"
#include "UniverseOut.h"

namespace stagehost {

/// One universe that goes out, see DmxSender.
struct DmxOutStatus {
    bool open = false;                        ///< open, and the network takes its frames
    std::uint64_t frames = 0;                 ///< that have left
    std::uint64_t failures = 0;               ///< that the network did not take
    std::chrono::microseconds usuallyLate{0}; ///< half of the frames left within this time after they were due
    std::chrono::microseconds rarelyLate{0};  ///< 99 % of them
};

/// Sends universes, all on one thread that does nothing else, so that frames leave on time. A frame that the network
/// does not take is told once, the universe counts as closed, and goes on by itself when the network is back.
class DmxSender {
public:
    DmxSender();
    /// Tells the end of what is still open: three frames of each.
    ~DmxSender();
    DmxSender(const DmxSender&) = delete;
    DmxSender& operator=(const DmxSender&) = delete;

    /// Makes a universe known. @param news must outlive the sender. @return its number for the
    /// other calls.   [host main]
    std::size_t Add(const DmxOutPlan& plan, PortNews& news);

    /// Begins to send, and ends it.   [any]
    void Open(std::size_t output);
    void Close(std::size_t output);

    /// See UniverseOut::Write. @return false also for a universe that is closed.   [any]
    bool Write(std::size_t output, const std::uint8_t* levels, std::size_t start, std::size_t count);

    DmxFrame Levels(std::size_t output) const;
    DmxOutStatus Status(std::size_t output) const;

private:
    struct Output;

    void Serve();
    std::optional<DmxTime> NextDue() const;
    void SendDue(std::unique_lock<std::mutex>& hold, Output& output);
    std::string Send(Output& output, const Departure& departure) const;
    std::vector<std::uint8_t> Packet(const Output& output, const Departure& departure) const;

    const SacnCid m_cid;       ///< new for each run: another run is another source
    mutable std::mutex m_lock; ///< guards the fields below and those of the outputs
    std::condition_variable m_changed;
    std::vector<std::unique_ptr<Output>> m_outputs; ///< grows only
    bool m_ending = false;
    std::thread m_thread;
};

} // namespace stagehost
