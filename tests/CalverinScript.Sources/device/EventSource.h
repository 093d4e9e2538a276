#pragma once

#include <atomic>
#include <thread>

#include <QObject>
#include <QScriptValue>
#include <QVariant>

#include "MScriptCommonEvent.h"

class IScriptObjectOwner;

/// An object such as scripts get from a factory: it raises what a test tells it to, on the test's thread or on its own.
class EventSource : public QObject, public MScriptCommonEvent {
    Q_OBJECT

public:
    EventSource(IScriptObjectOwner* owner, ScriptObjectType type);
    /// Ends its thread first, as every such object does.
    ~EventSource() override;

    void Raise(const char* event, const QVariantList& values = {});
    /// Raises "data" on its own thread, with a running number as text in bytes, until it goes or has
    /// raised a few thousand.
    void RaiseOnItsThread();
    /// How many have been raised in this way.
    int Raised() const { return m_raised; }

    Q_INVOKABLE void on(const QString& sEvent, const QScriptValue& svListener) { SetListener(sEvent, svListener); }

    /// How many there are in the process.
    static int Alive() { return s_alive; }

private:
    IScriptObjectOwner* const m_owner;
    std::atomic<bool> m_stop{false};
    std::atomic<int> m_raised{0};
    std::thread m_thread;
    static std::atomic<int> s_alive;
};
