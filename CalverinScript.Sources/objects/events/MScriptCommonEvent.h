#pragma once

#include <array>
#include <optional>
#include <string_view>

#include <QScriptValue>
#include <QString>

#include "MLock.h"

class QScriptEngine;

/// Kinds of objects that raise events.
enum class ScriptObjectType {
    None = 0,
    TcpClient = 1,
    Udp = 2,
    Serial = 3,
    DmxIn = 4,
    DmxOut = 5,
    DigitalIn = 6,
    DigitalOut = 7,
    AnalogIn = 8,
    AnalogOut = 9,
    HttpClient = 10
};

/// The names under which a script can listen. Every object accepts all of them, whatever it raises.
inline constexpr std::array<std::string_view, 14> kEventNames = {
    "open",     "connect", "close", "error", "data",     "message",           "listening",
    "tx_empty", "break",   "cts",   "dsr",   "response", "download_progress", "upload_progress"};

/// Listener table of every script object that raises events: one function for each name.
///
/// The lock is recursive and is held while a listener runs, so a listener may set listeners on its own object. Lock
/// order: the device's script lock, then this one.
class MScriptCommonEvent {
public:
    MScriptCommonEvent() = default;
    MScriptCommonEvent(const MScriptCommonEvent&) = delete;
    MScriptCommonEvent& operator=(const MScriptCommonEvent&) = delete;
    virtual ~MScriptCommonEvent();

    /// A copy of the listener of that name; an invalid value when there is none.   [script]
    virtual QScriptValue GetListener(const QString& event) const;
    /// Replaces the listener of that name. A value that is no function and an unknown name change nothing.   [script]
    virtual void SetListener(const QString& event, const QScriptValue& listener);

    void Lock() { m_lock.Enter(); }
    void Unlock() { m_lock.Leave(); }
    void lock() { Lock(); } ///< with the next, for std::lock_guard
    void unlock() { Unlock(); }
    /// Forgets all listeners.   [script]
    void ClearListeners();
    /// The script's view of this object, which is a QObject too; made when it is first asked for.   [script]
    QScriptValue GetView(QScriptEngine& engine);
    ScriptObjectType GetObjectType() const { return m_type; }

protected:
    ScriptObjectType m_type = ScriptObjectType::None; ///< set once by the derived constructor

private:
    static std::optional<std::size_t> SlotOf(const QString& event);

    mutable MLock m_lock;
    std::array<QScriptValue, kEventNames.size()> m_listeners; // under m_lock
    QScriptValue m_view;                                      // script thread alone
};
