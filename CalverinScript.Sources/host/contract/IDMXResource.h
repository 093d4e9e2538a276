#pragma once

#include "IResource.h"

class IDMXResource;

/// Channels of a DMX universe (ANSI E1.11). Counted from 0 here.
enum : std::int32_t { KXP_DMX_CHANNELS = 512 };

/// Hears of a DMX universe. Answers "IMInterface" and "IDMXResourceHandler".
class IDMXResourceHandler : public IResourceHandler {
public:
    /// Place 5. A frame that came in, from its first channel on; the start code is
    /// not part of it. The levels are borrowed for the call. A frame may be short;
    /// what is beyond 512 channels is cut off, a length below 1 is ignored.   [any]
    virtual void OnData(IDMXResource* resource, const std::uint8_t* data, std::int32_t length,
                        std::uint32_t reserved) = 0;

protected:
    ~IDMXResourceHandler() = default;
};

/// A DMX universe, an input or an output. "IDMXResource".
class IDMXResource : public IPortResource {
public:
    /// Place 17. @param handler not owned, called until RemoveHandler
    /// has returned. @return 0, 2 null handler.   [host main]
    virtual KXPCode AddHandler(IDMXResourceHandler* handler) = 0;
    /// Place 18. Waits until no other thread is inside the handler. An unknown handler is ignored.
    /// @return 0.   [host main, script]
    virtual KXPCode RemoveHandler(IDMXResourceHandler* handler) = 0;
    virtual KXPCode Reserved19() = 0;
    virtual KXPCode Reserved20() = 0;
    /// Place 21. Sets levels of an output; they stand until the
    /// next change. What reaches beyond the universe is cut off.
    /// @param data         borrowed, count levels.
    /// @param startChannel 0 to 512; 512 is refused.
    /// @param count        0 to 512; 0 sets nothing.
    /// @param reserved     0.
    /// @return not 0 on success.   [script]
    virtual std::uint32_t WriteBlock(const std::uint8_t* data, std::int32_t startChannel, std::int32_t count,
                                     std::uint32_t reserved) = 0;
    /// Place 22. The levels that came in last, from startChannel on, into the beginning of the buffer.
    /// @param buffer room for count levels; those beyond the universe are left as they are.
    /// @return not 0 on success.   [script]
    virtual std::uint32_t ReadInput(std::uint8_t* buffer, std::int32_t startChannel, std::int32_t count) = 0;
    /// Place 23. The same of the levels that go out.   [script]
    virtual std::uint32_t ReadOutput(std::uint8_t* buffer, std::int32_t startChannel, std::int32_t count) = 0;

protected:
    ~IDMXResource() = default;
};
