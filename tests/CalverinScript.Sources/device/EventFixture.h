#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "DeviceFixture.h"
#include "EventSource.h"

/// A device whose script has a few more functions: `source(kind)` makes an event source, `take()` takes the test's
/// resource, `hear(text)` tells the test, and `gc()` collects what the script has dropped.
class EventFixture : public DeviceFixture {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Loads a script that makes the source `s` of a kind and then does the rest.
    void GivenSource(const std::string& script, ScriptObjectType kind = ScriptObjectType::Udp);
    /// The source that the script made last.
    EventSource& Source() { return *m_source; }
    /// Waits until so many texts were heard. @return them, joined by spaces.
    std::string Heard(std::size_t count);
    /// What was heard when everything that was raised until now has been delivered.
    std::string HeardAfterAll();
    std::size_t HeardCount();
    void ForgetHeard();

    EventSource* resource = nullptr; ///< not owned

private:
    static QScriptValue Take(QScriptContext* context, QScriptEngine* engine);
    static QScriptValue Make(QScriptContext* context, QScriptEngine* engine);
    static QScriptValue Hear(QScriptContext* context, QScriptEngine* engine);
    static EventFixture* Of(QScriptEngine* engine);
    std::string Joined() const;

    std::atomic<EventSource*> m_source{nullptr}; ///< written on the script thread
    std::mutex m_lock;
    std::condition_variable m_changed;
    std::vector<std::string> m_heard; ///< under m_lock
};
