#pragma once

#include <chrono>
#include <functional>

#include "ShowObject.h"

namespace stagehost {

/// A resource, or a channel of one, as an object of the show: what people and scripts can read and set of it.
class ResourceObject final : public ShowObject {
public:
    using Read = std::function<std::vector<ObjectProperty>()>;
    /// @return false for a value that is not taken.
    using Write = std::function<bool(const std::string& value)>;
    using RampTo = std::function<bool(std::int32_t to, std::chrono::milliseconds time)>;

    /// What is behind the object; it outlives the show. Write sets the property "Value", or the one named.
    struct Behind {
        Read read;
        const char* writes = nullptr; ///< the property that can be set; null for none
        Write write;
        RampTo ramp; ///< empty for what has no ramps
    };

    ResourceObject(std::string name, Behind behind);

    std::vector<ObjectProperty> Properties() const override;
    KXPCode SetProperty(const std::string& property, const std::string& value) override;

    /// Sets what can be set. @return 0, 67 nothing can be set, 68 the value is not taken.
    KXPCode SetValue(const std::string& value);

    /// Whether it is a channel, whose value Ramp moves.
    bool CanRamp() const { return static_cast<bool>(m_behind.ramp); }

    /// Moves the value. @return 0, 67 there is nothing to move, 68 the value is not taken.
    KXPCode Ramp(std::int32_t to, std::chrono::milliseconds time);

    /// What people wait for: the value of a channel, the state of anything else.
    std::string Standing() const;

private:
    const Behind m_behind;
};

} // namespace stagehost
