#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <QTimer>

#include "Condition.h"
#include "Host.h"

namespace stagehost {

/// Looks at what a condition speaks of: a variable, a resource or a channel, or a property of another object
/// ("Overture.Status"). Values are compared by their type: numbers as numbers, times and dates as such, the items of an
/// enumeration also by their index, all else as text. While it lives, each change wakes the main thread's waits. [host
/// main]
class ConditionWatch {
public:
    ConditionWatch(Host& host, Condition condition);
    ConditionWatch(const ConditionWatch&) = delete;
    ConditionWatch& operator=(const ConditionWatch&) = delete;

    /// Why this can never be looked at, or never hold; empty when it can.
    const QString& Problem() const { return m_problem; }

    /// Whether nothing of the show has that name.
    bool IsUnknown() const { return !m_text && m_problem.isEmpty(); }

    bool Holds() const;
    /// The value as it is now, in its text form.
    QString Now() const;

private:
    void Find(Host& host);
    void FindProperty(Host& host);
    std::string Text() const { return m_text ? m_text() : std::string(); }
    /// Below 0, 0 or above 0 as the value now is below, at or above that of the condition; nothing where neither can be
    /// said.
    std::optional<int> Order(const std::string& now) const;
    std::optional<double> NumberOf(const std::string& text) const;

    const Condition m_condition;
    std::function<std::string()> m_text;
    /// The variable as it is now: a device that is made anew, and an edition that is saved, have new ones. Null for
    /// everything else.
    std::function<std::shared_ptr<HostValue>()> m_variable = [] { return nullptr; };
    Subscription m_wakes;
    QTimer m_looks; ///< for properties that change without a word, such as a task's time
    QString m_problem;
};

} // namespace stagehost
