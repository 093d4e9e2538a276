#include "GivenReferences.h"

#include "MyAsyncDeviceExecContext.h"

GivenReferences& GivenReferences::Instance() {
    static auto* const instance = new GivenReferences;
    return *instance;
}

/// The oldest is dropped without the lock, which its destructor takes; meanwhile a reference of our own keeps it alive.
void GivenReferences::Keep(MyAsyncDeviceExecContext* context) {
    MyAsyncDeviceExecContext* dropped = nullptr;
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_places[context] = m_contexts.insert(m_contexts.end(), context);
        if (m_contexts.size() <= kMost)
            return;
        MyAsyncDeviceExecContext* oldest = m_contexts.front();
        m_contexts.pop_front();
        m_places.erase(oldest);
        if (oldest->TryAddRef())
            dropped = oldest;
    }
    if (dropped == nullptr)
        return;
    dropped->Release();
    dropped->Release();
}

void GivenReferences::Leave(MyAsyncDeviceExecContext* context) {
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto place = m_places.find(context);
    if (place == m_places.end())
        return;
    m_contexts.erase(place->second);
    m_places.erase(place);
}

std::size_t GivenReferences::Count() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_places.size();
}
