#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "DmxPlan.h"
#include "EventThread.h"
#include "PortNews.h"
#include "Refusal.h"
#include "UniverseIn.h"

class QTimer;

namespace stagehost {

/// How a universe that comes in stands.
struct DmxInStatus {
    bool open = false;
    std::vector<std::string> sources; ///< those that are merged or outvoted, by name
    RefusalCounts counts;             ///< of its own packets, and of all that its port could not read or place
};

/// Hears universes, all on one thread with events. A port that cannot be had is told once and tried again each second.
/// Nodes of Art-Net answer those who look for them.
class DmxListener {
public:
    DmxListener();
    ~DmxListener();
    DmxListener(const DmxListener&) = delete;
    DmxListener& operator=(const DmxListener&) = delete;

    /// Makes a universe known. @param news must outlive the listener. @return its number for the
    /// other calls.   [host main]
    std::size_t Add(const DmxInPlan& plan, InputNews& news);

    /// Begins to listen, and ends it. It is open when the news say so.   [any]
    void Open(std::size_t input);
    void Close(std::size_t input);

    /// The levels that came in last.   [any]
    DmxFrame Levels(std::size_t input) const;
    DmxInStatus Status(std::size_t input) const;

    /// Takes levels as if a source had sent them, for a desk without one. Only while it is open.   [any]
    bool SetByHand(std::size_t input, const DmxFrame& frame);

private:
    struct Input;
    struct Place;

    void OpenNow(Input& input);
    void CloseNow(Input& input);
    QString FindPlace(Input& input);
    void LeavePlace(Input& input);
    void Retry();
    void Expire();
    void TakePacket(Place& place, PacketView bytes, const QHostAddress& sender);
    void TakeSacn(Place& place, PacketView bytes);
    void TakeArtNet(Place& place, PacketView bytes, const QHostAddress& sender);
    void AnswerPoll(const Place& place, const QHostAddress& sender);
    void Take(Place& place, std::uint16_t universe, const HeardFrame& heard);
    void TakeFor(Input& input, const HeardFrame& heard);
    void Count(Place& place, Refusal refusal);

    mutable std::mutex m_lock; ///< guards the inputs' fields and the places' counts
    std::vector<std::unique_ptr<Input>> m_inputs;
    std::vector<std::unique_ptr<Place>> m_places; ///< changed by the thread alone
    std::unique_ptr<QTimer> m_retry;              ///< lives on the thread
    std::unique_ptr<QTimer> m_expiry;             ///< lives on the thread
    EventThread m_thread;
};

} // namespace stagehost
