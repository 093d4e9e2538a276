#include "EventSource.h"

#include "IScriptObjectOwner.h"
#include "MScriptParamList.h"

std::atomic<int> EventSource::s_alive{0};

EventSource::EventSource(IScriptObjectOwner* owner, ScriptObjectType type)
    : m_owner(owner) {
    m_type = type;
    ++s_alive;
}

EventSource::~EventSource() {
    m_stop = true;
    if (m_thread.joinable())
        m_thread.join();
    --s_alive;
}

void EventSource::Raise(const char* event, const QVariantList& values) {
    MScriptParamList params;
    for (const QVariant& value : values)
        params.Add(value);
    m_owner->PostScriptEvent(QString::fromLatin1(event), &params, this);
}

void EventSource::RaiseOnItsThread() {
    constexpr int kMost = 3000; // more would only pile up where a script is slow
    m_thread = std::thread([this] {
        while (!m_stop && m_raised < kMost)
            Raise("data", {QByteArray::number(m_raised++)});
    });
}
