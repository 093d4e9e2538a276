#pragma once

#include <cstdint>
#include <string>

#include <QString>

#include "Show.h"

namespace stagehost {

/// Whether a value that a show gives, or waits for, can ever be. Of what the file does not describe, such as the
/// variables of devices, nothing is known, so everything is taken. Each answer is empty, or says in words that follow
/// the name why not.   [any]
class ValueCheck {
public:
    /// @param show must outlive the check; read as far as its variables and resources.
    explicit ValueCheck(const Show& show)
        : m_show(show) {}

    /// A number beyond the limits of a variable is taken: the variable keeps to them by itself.
    QString WhyNotSet(const QString& name, const std::string& value) const;
    QString WhyNotRamped(const QString& name, std::int32_t to) const;
    /// Whether waiting for it can end. What a value has is compared in its text form.
    QString WhyNeverIs(const QString& name, const std::string& value) const;

    /// The same for a condition. Of those that ask for an order or a pattern only what stands there by itself is looked
    /// at.
    QString WhyNeverHolds(const Condition& condition) const;

    bool IsChannel(const QString& name) const { return FindChannel(name) != nullptr; }

private:
    const ValueSpec* FindVariable(const QString& name) const;
    const ResourceSpec* FindResource(const QString& name) const;
    const ChannelPlan* FindChannel(const QString& name) const;

    const Show& m_show;
};

} // namespace stagehost
