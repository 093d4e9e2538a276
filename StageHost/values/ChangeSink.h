#pragma once

#include <string>

namespace stagehost {

class HostValue;

/// Hears of every change of a value that is known to others.
class ChangeSink {
public:
    /// Whether anybody wants to know; when not, the change is not told.   [any]
    virtual bool IsWanted() const = 0;

    /// A value has changed. Called under the value's lock, so that two changes of one value come in their order; must
    /// return at once and not touch the value.   [any]
    virtual void ValueChanged(const std::string& name, std::string text) = 0;

protected:
    ~ChangeSink() = default;
};

} // namespace stagehost
