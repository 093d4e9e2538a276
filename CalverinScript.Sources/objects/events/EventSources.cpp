#include "EventSources.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

#include "MScriptCommonEvent.h"

namespace {

/// Place of a kind of object when all go.
int ReleaseOrder(ScriptObjectType type) {
    switch (type) {
    case ScriptObjectType::TcpClient:
        return 0;
    case ScriptObjectType::Udp:
        return 1;
    case ScriptObjectType::HttpClient:
        return 3;
    default:
        return 2;
    }
}

} // namespace

EventSources::EventSources(void (*afterFlood)())
    : m_afterFlood(afterFlood) {}

EventSources::~EventSources() {
    Release();
    DeleteReleased();
}

void EventSources::Own(std::unique_ptr<MScriptCommonEvent> object) {
    MScriptCommonEvent* const bare = object.get();
    Insert({bare, std::move(object), 0, 0});
}

bool EventSources::Borrow(MScriptCommonEvent& resource) {
    return Insert({&resource, nullptr, 0, 0});
}

bool EventSources::Insert(Entry entry) {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (IsRetired(entry.object))
        return false;
    entry.age = m_nextAge++;
    return m_live.try_emplace(entry.object, std::move(entry)).second;
}

bool EventSources::IsRetired(const MScriptCommonEvent* object) const {
    const auto isIt = [object](const Entry& entry) { return entry.object == object && entry.owned != nullptr; };
    return std::any_of(m_retired.begin(), m_retired.end(), isIt) ||
           std::any_of(m_released.begin(), m_released.end(), isIt);
}

void EventSources::NoteStrays(const Entry& entry) {
    if (entry.onTheWay > 0)
        m_strays[entry.object] += entry.onTheWay;
}

void EventSources::Retire(std::unique_ptr<MScriptCommonEvent> resource) {
    const std::lock_guard<std::mutex> guard(m_lock);
    MScriptCommonEvent* const bare = resource.get();
    const auto isIt = [bare](const Entry& released) { return released.object == bare; };
    m_released.erase(std::remove_if(m_released.begin(), m_released.end(), isIt), m_released.end());
    Entry entry{bare, std::move(resource), m_nextAge++, 0};
    const auto live = m_live.find(bare);
    if (live == m_live.end()) {
        m_released.push_back(std::move(entry));
        return;
    }
    NoteStrays(live->second);
    m_live.erase(live);
    m_retired.push_back(std::move(entry));
}

bool EventSources::CountRaised(const MScriptCommonEvent* object, std::uint64_t count) {
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto found = m_live.find(object);
    if (found == m_live.end())
        return false;
    found->second.onTheWay += count;
    m_waiting += count;
    m_mostWaiting = std::max(m_mostWaiting, m_waiting);
    return true;
}

bool EventSources::TakeRaised(const MScriptCommonEvent* object) {
    std::unique_lock<std::mutex> guard(m_lock);
    const bool isHere = TakeLocked(object);
    const bool floodIsOver = EndsFlood();
    guard.unlock();
    if (floodIsOver)
        m_afterFlood();
    return isHere;
}

/// The allocator keeps what a flood took, tens of megabytes in small pieces, for the next one, which may never come.
bool EventSources::EndsFlood() {
    if (m_waiting == 0 || --m_waiting > 0)
        return false;
    return std::exchange(m_mostWaiting, 0) >= kFlood;
}

/// Events come in the order in which they were counted, so the strays of an address come before those of its next object.
bool EventSources::TakeLocked(const MScriptCommonEvent* object) {
    const auto stray = m_strays.find(object);
    if (stray != m_strays.end()) {
        if (--stray->second == 0)
            m_strays.erase(stray);
        return false;
    }
    const auto found = m_live.find(object);
    if (found == m_live.end() || object->GetObjectType() == ScriptObjectType::None)
        return false;
    if (found->second.onTheWay > 0)
        --found->second.onTheWay;
    return true;
}

bool EventSources::GoesBefore(const Entry& one, const Entry& other) {
    const auto rank = [](const Entry& entry) {
        return std::make_tuple(ReleaseOrder(entry.object->GetObjectType()), entry.age);
    };
    return rank(one) < rank(other);
}

bool EventSources::Release() {
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto first = static_cast<std::ptrdiff_t>(m_released.size());
    m_released.reserve(m_released.size() + m_live.size() + m_retired.size()); // all go, or none
    for (auto& live : m_live) {
        NoteStrays(live.second);
        live.second.onTheWay = 0;
    }
    for (auto& live : m_live)
        m_released.push_back(std::move(live.second));
    m_live.clear();
    std::move(m_retired.begin(), m_retired.end(), std::back_inserter(m_released));
    m_retired.clear();
    std::sort(m_released.begin() + first, m_released.end(), &EventSources::GoesBefore);
    return !m_released.empty();
}

void EventSources::Delete(Entry& entry) {
    if (entry.owned == nullptr)
        entry.object->ClearListeners();
    entry.owned.reset();
}

/// Without the lock: an object's destructor waits for its thread, which may be about to raise an event.
void EventSources::DeleteReleased() {
    std::vector<Entry> released;
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        released.swap(m_released);
        m_deleting = true;
    }
    std::for_each(released.begin(), released.end(), &EventSources::Delete);
    const std::lock_guard<std::mutex> guard(m_lock);
    m_deleting = false;
    m_deleted.notify_all();
}

bool EventSources::WaitUntilDeleted(std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> guard(m_lock);
    return m_deleted.wait_for(guard, limit, [this] { return m_released.empty() && !m_deleting; });
}
