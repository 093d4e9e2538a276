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

void EventSource::RaiseWithoutEnd() {
    m_thread = std::thread([this] {
        while (!m_stop) {
            Raise("data", {QByteArray::number(m_raised++)});
            if (m_raised % 100 == 0)
                std::this_thread::yield();
        }
    });
}
