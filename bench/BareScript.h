#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>

#include <QScriptEngine>
#include <QThread>
#include <QTimer>

/// An engine on a thread of its own with Qt's event loop, and nothing else.
class BareEngineThread {
public:
    BareEngineThread();
    ~BareEngineThread();
    BareEngineThread(const BareEngineThread&) = delete;
    BareEngineThread& operator=(const BareEngineThread&) = delete;

    QScriptEngine* engine;
    QThread thread;
};

/// The bare cost of a command: posted from the caller to a thread, from there to an engine's thread where one function
/// is called, and back the same way.
class BareRelay {
public:
    /// @param script an object with a function "F".
    explicit BareRelay(const QString& script);
    ~BareRelay();
    /// Gives the script an object under a name.
    void Offer(const QString& name, QObject& object);
    /// Calls the function at every tick of a precise timer on the engine's thread until StopTimer.
    void StartTimer(int periodMs);
    void StopTimer();
    /// One round trip with one call of the function. @return what the function gave.
    QString RoundTrip();

private:
    QScriptValue CallFunction();
    void CallOnEngineThread();
    void Done();

    BareEngineThread m_script;
    QThread m_relayThread;
    QObject m_relay;
    QObject m_target;
    QTimer* m_timer = nullptr; ///< of the engine's thread
    QScriptValue m_object;
    QString m_result;
    std::mutex m_lock;
    std::condition_variable m_changed;
    bool m_done = false;
};
