#pragma once

#include "IResource.h"

class IIOResource;
class IIOResourceChannel;

/// Kinds of channels of an I/O resource.
enum KXPChannelType : std::uint32_t {
    KXP_DIGITAL_OUTPUT = 0,
    KXP_DIGITAL_INPUT = 1,
    KXP_ANALOG_OUTPUT = 2,
    KXP_ANALOG_INPUT = 3
};

/// Hears of one channel. Never released by the host: used from AddHandler until RemoveHandler has returned, on any
/// thread of the host's and from inside any call that the module makes. Every operation comes back at once. There is no
/// QueryInterface: the IResourceHandler of the same object answers "IIOResourceChannelHandler".
class IIOResourceChannelHandler {
public:
    /// Place 1. The channel has a new value. What is not this channel's own is ignored.   [any]
    virtual void OnValueChanged(IIOResourceChannel* channel, std::int32_t value, std::uint32_t reserved) = 0;
    /// Place 2. Does nothing.   [any]
    virtual KXPCode Reserved2(void* argument1, void* argument2, void* argument3, void* argument4) = 0;
    /// Place 3. The name of the device that uses the channel, "" when it has none or the channel is another. Owned by
    /// the device, valid until it is renamed.   [any]
    virtual const char* GetOwnerName(IIOResourceChannel* channel) = 0;

protected:
    IIOResourceChannelHandler() = default;
    IIOResourceChannelHandler(const IIOResourceChannelHandler&) = default;
    IIOResourceChannelHandler& operator=(const IIOResourceChannelHandler&) = default;
    ~IIOResourceChannelHandler() = default;
};

/// A channel of an I/O resource. It is no IMInterface: its first
/// operation is AddHandler. Lives as long as its resource.
class IIOResourceChannel {
public:
    /// Place 1. @param handler not owned, called until RemoveHandler
    /// has returned. @return 0, 2 null handler.   [host main]
    virtual KXPCode AddHandler(IIOResourceChannelHandler* handler) = 0;
    /// Place 2. Waits until no other thread is inside the handler. An unknown handler is ignored.
    /// @return 0.   [host main, script]
    virtual KXPCode RemoveHandler(IIOResourceChannelHandler* handler) = 0;
    virtual KXPCode Reserved3() = 0;
    virtual KXPCode Reserved4() = 0;
    /// Place 5. Sets an output. The value is held back until the resource's Flush. @return not 0 on success.   [script]
    virtual std::uint32_t SetValue(std::int32_t value) = 0;
    /// Place 6. The value: 0 or 1 of a digital channel, the host's number of an analog one.   [script]
    virtual std::int32_t GetValue() = 0;
    /// Place 7. The resource that the channel belongs to, owned by the host; may be null.   [host main]
    virtual IIOResource* GetResource() = 0;
    virtual KXPCode Reserved8() = 0;
    virtual KXPCode Reserved9() = 0;
    /// Place 10. The number of the channel among those of its type, from 0.   [host main]
    virtual std::int32_t GetChannelIndex() = 0;
    /// Place 11. The name that the user gave the channel. Owned by the host, valid until it is renamed.   [host main]
    virtual const char* GetName() = 0;

protected:
    IIOResourceChannel() = default;
    IIOResourceChannel(const IIOResourceChannel&) = default;
    IIOResourceChannel& operator=(const IIOResourceChannel&) = default;
    ~IIOResourceChannel() = default;
};

/// A device with digital and analog channels. "IIOResource". Several users share it, each with a handler of its own.
class IIOResource : public IResource {
public:
    virtual KXPCode Reserved6() = 0;
    virtual KXPCode Reserved7() = 0;
    virtual KXPCode Reserved8() = 0;
    virtual KXPCode Reserved9() = 0;
    virtual KXPCode Reserved10() = 0;
    virtual KXPCode Reserved11() = 0;
    virtual KXPCode Reserved12() = 0;
    virtual KXPCode Reserved13() = 0;
    virtual KXPCode Reserved14() = 0;
    virtual KXPCode Reserved15() = 0;
    virtual KXPCode Reserved16() = 0;
    virtual KXPCode Reserved17() = 0;
    /// Place 18. A channel by its type, see KXPChannelType, and its number. @return owned by the resource, null when
    /// there is none.   [host main]
    virtual IIOResourceChannel* GetChannel(std::uint32_t channelType, std::int32_t channelIndex) = 0;
    /// Place 19. Puts out what the channels' SetValue has set, all together. @return 0.   [script]
    virtual KXPCode Flush() = 0;
    /// Place 20. Opens the resource for one more handler, which hears of its state until Close, whatever this returns.
    /// A handler that is known already counts once.
    /// @param handler not owned. @return 0 accepted, another code refused.   [script]
    virtual KXPCode Open(IResourceHandler* handler) = 0;
    /// Place 21. Closes the resource for one handler; it closes when none has it open any more. Waits until no other
    /// thread is inside the handler. An unknown handler is ignored.
    /// @return 0.   [script, host main]
    virtual KXPCode Close(IResourceHandler* handler) = 0;

protected:
    ~IIOResource() = default;
};
