#pragma once

#include <cstdint>

/// A counted object with a number, as MIObjectMap keeps it.
class IMapObject {
public:
    virtual ~IMapObject() = default;

    /// @return the new count.   [thread: any]
    virtual std::int32_t AddRef() = 0;

    /// Deletes the object when nobody is left. @return the new count, 0 when the object is gone.   [thread: any]
    virtual std::int32_t Release() = 0;

    /// Does not change over the object's life.   [thread: any]
    virtual std::uint32_t GetId() const = 0;
};
