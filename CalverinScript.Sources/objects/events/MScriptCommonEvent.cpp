#include "MScriptCommonEvent.h"

#include <algorithm>
#include <mutex>

#include <QObject>

#include "ScriptView.h"

MScriptCommonEvent::~MScriptCommonEvent() = default;

std::optional<std::size_t> MScriptCommonEvent::SlotOf(const QString& event) {
    const auto size = static_cast<std::size_t>(event.size());
    const auto* found = std::find_if(kEventNames.begin(), kEventNames.end(), [&](std::string_view name) {
        return size == name.size() && event == QLatin1String(name.data(), event.size());
    });
    if (found == kEventNames.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - kEventNames.begin());
}

QScriptValue MScriptCommonEvent::GetListener(const QString& event) const {
    const std::lock_guard<MLock> guard(m_lock);
    const std::optional<std::size_t> slot = SlotOf(event);
    return slot ? m_listeners[*slot] : QScriptValue();
}

void MScriptCommonEvent::SetListener(const QString& event, const QScriptValue& listener) {
    const std::optional<std::size_t> slot = SlotOf(event);
    if (!slot || !listener.isFunction())
        return;
    const std::lock_guard<MLock> guard(m_lock);
    m_listeners[*slot] = listener;
}

void MScriptCommonEvent::ClearListeners() {
    const std::lock_guard<MLock> guard(m_lock);
    m_listeners.fill(QScriptValue());
}

QScriptValue MScriptCommonEvent::GetView(QScriptEngine& engine) {
    if (!m_view.isValid() || m_view.engine() != &engine)
        m_view = WrapOwnedByHost(engine, dynamic_cast<QObject*>(this));
    return m_view;
}
