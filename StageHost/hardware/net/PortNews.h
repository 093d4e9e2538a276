#pragma once

#include <string>

#include "DmxLevels.h"

namespace stagehost {

/// Hears of a port of the host: of a universe here. Called on the thread of the port, without any lock of the port's.
class PortNews {
public:
    /// IsOpen has another answer.
    virtual void StateChanged() = 0;
    /// Something for people: why a port does not work, that it works again, which sources come and go. UTF-8.
    virtual void Told(const std::string& text) = 0;

protected:
    ~PortNews() = default;
};

/// Hears of a universe that comes in.
class InputNews : public PortNews {
public:
    /// The merged levels are new. They are borrowed for the call.
    virtual void LevelsChanged(const DmxFrame& frame) = 0;

protected:
    ~InputNews() = default;
};

} // namespace stagehost
