#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "FreeMemory.h"

class MScriptCommonEvent;

/// The objects of one script that raise events: those that it has made, which are owned here, and the device's resources that it has
/// taken. Whether an object is among them decides whether its events are delivered.
///
/// - An event travels with a bare pointer. An object that is gone is never touched: only its address is looked up.
/// - An event of an object that is gone never reaches another object at the same address, nor the same resource taken anew.
/// - When the last of many events that waited has been taken, what they took goes back to the system.
/// - Objects go when they are released, in the order TCP clients, UDP objects, resources, HTTP clients, older ones first.
class EventSources {
public:
    /// How many events have to wait at once for a flood.
    static constexpr std::uint64_t kFlood = 1000;

    /// @param afterFlood called on the script thread, under no lock, when nothing of a flood waits any more.
    explicit EventSources(void (*afterFlood)() = &ReturnFreeMemory);
    EventSources(const EventSources&) = delete;
    EventSources& operator=(const EventSources&) = delete;
    /// Deletes what is left. Nothing may use the script any more.
    ~EventSources();

    /// Takes an object that the script has made.   [script]
    void Own(std::unique_ptr<MScriptCommonEvent> object);
    /// Notes a resource that the script has taken. It must live until it has been released here, or be given to Retire.
    /// @return false when it was here already, or has been retired.   [script]
    bool Borrow(MScriptCommonEvent& resource);
    /// Takes a resource that its device has let go: no event of it is delivered any more. One that the script has taken
    /// stays until all objects are released, for the script may call it still.   [host main]
    void Retire(std::unique_ptr<MScriptCommonEvent> resource);

    /// Notes that events of the object are about to be queued. @return false when the object is not here.   [any]
    bool CountRaised(const MScriptCommonEvent* object, std::uint64_t count = 1);
    /// Whether the object is here. Called once for each event that was counted, when it has come to the script thread, to hear
    /// whether it may be delivered. An object without a kind counts as not here.   [script]
    bool TakeRaised(const MScriptCommonEvent* object);

    /// Releases all objects: no event of theirs is delivered any more. They still exist.
    /// @return whether any wait to be deleted.   [any]
    bool Release();
    /// Deletes the released objects; of resources the listeners go.   [script]
    void DeleteReleased();
    /// Waits until no released object is left. @return whether that came true in time.   [any but script]
    bool WaitUntilDeleted(std::chrono::milliseconds limit);

private:
    struct Entry {
        MScriptCommonEvent* object;
        std::unique_ptr<MScriptCommonEvent> owned; ///< empty for a resource that its device still has
        std::uint64_t age;
        std::uint64_t onTheWay; ///< events that were counted and not taken
    };

    bool Insert(Entry entry);
    bool IsRetired(const MScriptCommonEvent* object) const;
    void NoteStrays(const Entry& entry);
    bool TakeLocked(const MScriptCommonEvent* object);
    bool EndsFlood();
    static bool GoesBefore(const Entry& one, const Entry& other);
    static void Delete(Entry& entry);

    void (*const m_afterFlood)();
    std::mutex m_lock;
    std::condition_variable m_deleted;
    std::unordered_map<const MScriptCommonEvent*, Entry> m_live; ///< under m_lock
    std::unordered_map<const MScriptCommonEvent*, std::uint64_t>
        m_strays;                    ///< under m_lock: events of objects that are gone
    std::vector<Entry> m_retired;    ///< under m_lock: resources that the script may call still
    std::vector<Entry> m_released;   ///< under m_lock
    bool m_deleting = false;         ///< under m_lock
    std::uint64_t m_nextAge = 0;     ///< under m_lock
    std::uint64_t m_waiting = 0;     ///< under m_lock: events of all objects that were counted and not taken
    std::uint64_t m_mostWaiting = 0; ///< under m_lock: since nothing waited last
};
