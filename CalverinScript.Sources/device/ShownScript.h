#pragma once

#include <mutex>

#include <QString>

/// What a device tells its panels of the script that it runs. The script's thread may be held up for long by the script itself; here
/// nobody waits for it.   [any]
class ShownScript {
public:
    struct State {
        QString fileName; ///< empty for a text without a file
        QString text;
        QString error; ///< the last failure; empty when it was cleared
    };

    State Get() const {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_state;
    }
    void SetFileName(const QString& fileName) { Set(&State::fileName, fileName); }
    void SetText(const QString& text) { Set(&State::text, text); }
    void SetError(const QString& error) { Set(&State::error, error); }

private:
    void Set(QString State::*part, const QString& value) {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_state.*part = value;
    }

    mutable std::mutex m_lock; ///< guards m_state, which the script thread and the host's main thread write
    State m_state;
};
