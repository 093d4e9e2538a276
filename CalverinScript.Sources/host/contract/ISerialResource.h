#pragma once

#include "IResource.h"

class ISerialResource;

/// Values of ISerialResource::SetParity.
enum KXPSerialParity : std::uint32_t { KXP_PARITY_NONE = 0, KXP_PARITY_ODD = 1, KXP_PARITY_EVEN = 2 };

/// What a handler of a serial port wants to hear of: bits of the mask of AddHandler. The module asks for both.
enum KXPSerialMask : std::uint32_t { KXP_SERIAL_DATA = 1, KXP_SERIAL_EVENTS = 2 };

/// What happens on a serial port beside data. Any other number is an event of the host's own that no script hears of.
enum KXPSerialEvent : std::int32_t {
    KXP_SERIAL_TX_EMPTY = 1, ///< all that was written has left
    KXP_SERIAL_BREAK = 2,    ///< the line is held by the other side
    KXP_SERIAL_CTS = 3,      ///< the line Clear To Send; state is its level
    KXP_SERIAL_DSR = 4,      ///< the line Data Set Ready; state is its level
    KXP_SERIAL_ERROR = 5     ///< the port failed or could not be opened
};

/// Hears of a serial port. Answers "IMInterface" and "ISerialResourceHandler".
class ISerialResourceHandler : public IResourceHandler {
public:
    /// Place 5. Bytes that came in. They are borrowed for the call; what is not this port's own is ignored, as is a
    /// length below 1.   [any]
    virtual void OnData(ISerialResource* resource, const std::uint8_t* data, std::int32_t length,
                        std::uint32_t reserved) = 0;
    /// Place 6. Something beside data. @param eventType see KXPSerialEvent. @param state 0 off, anything else on. [any]
    virtual void OnEvent(ISerialResource* resource, std::int32_t eventType, std::int32_t state,
                         std::uint32_t reserved) = 0;

protected:
    ~ISerialResourceHandler() = default;
};

/// A serial port. "ISerialResource". Its settings hold while it is closed and over a close: they belong to the port.
/// The host reports a setting that the port cannot do to its user; the code alone tells the module.
class ISerialResource : public IPortResource {
public:
    /// Place 17. @param handler not owned, called until RemoveHandler has returned. @param mask see KXPSerialMask.
    /// @return 0, 2 null handler.   [host main]
    virtual KXPCode AddHandler(ISerialResourceHandler* handler, std::uint32_t mask) = 0;
    /// Place 18. Waits until no other thread is inside the handler. An unknown handler is ignored.
    /// @return 0.   [host main, script]
    virtual KXPCode RemoveHandler(ISerialResourceHandler* handler) = 0;
    virtual KXPCode Reserved19() = 0;
    virtual KXPCode Reserved20() = 0;
    virtual KXPCode Reserved21() = 0;
    /// Place 22. Sends bytes, in the order of the calls. They are borrowed for the call; a length of 0 sends nothing;
    /// reserved is 0.
    /// @return 0 accepted, another code refused, as on a closed port.   [script]
    virtual KXPCode Write(const std::uint8_t* data, std::uint32_t length, std::uint32_t reserved) = 0;
    virtual KXPCode Reserved23() = 0;
    virtual KXPCode Reserved24() = 0;
    /// Place 25. Bits a second. @return 0, another code when the port cannot do it.   [script]
    virtual KXPCode SetBaudRate(std::uint32_t value) = 0;
    /// Place 26. @param value see KXPSerialParity. @return as SetBaudRate.   [script]
    virtual KXPCode SetParity(std::uint32_t value) = 0;
    /// Place 27. Bits of a character, 7 or 8. @return as SetBaudRate.   [script]
    virtual KXPCode SetDataSize(std::uint32_t value) = 0;
    /// Place 28. 1 or 2. @return as SetBaudRate.   [script]
    virtual KXPCode SetStopBits(std::uint32_t value) = 0;
    /// Place 29. Holds the line (true) or lets it go. Comes back when that has happened, which is after all that was
    /// written before has left; a Close ends the wait. @return as SetBaudRate.   [script]
    virtual KXPCode SetBreak(bool value) = 0;
    /// Place 30. The level of the line Data Terminal Ready. @return as SetBaudRate.   [script]
    virtual KXPCode SetDTR(bool value) = 0;
    /// Place 31. The level of the line Request To Send. @return as SetBaudRate.   [script]
    virtual KXPCode SetRTS(bool value) = 0;
    /// Place 32. Whether Data Terminal Ready is raised while the port is open. @return as SetBaudRate.   [script]
    virtual KXPCode SetDTRControl(bool value) = 0;
    /// Place 33. Whether Request To Send is raised while the port is open. @return as SetBaudRate.   [script]
    virtual KXPCode SetRTSControl(bool value) = 0;
    /// Place 34. Whether Data Terminal Ready falls while the port cannot take more. @return as SetBaudRate.   [script]
    virtual KXPCode SetDTRHandshake(bool value) = 0;
    /// Place 35. Whether nothing is sent while Data Set Ready is low. @return as SetBaudRate.   [script]
    virtual KXPCode SetDSROutFlow(bool value) = 0;
    /// Place 36. Whether Request To Send falls while the port cannot take more. @return as SetBaudRate.   [script]
    virtual KXPCode SetRTSHandshake(bool value) = 0;
    /// Place 37. Whether nothing is sent while Clear To Send is low. @return as SetBaudRate.   [script]
    virtual KXPCode SetCTSOutFlow(bool value) = 0;

protected:
    ~ISerialResource() = default;
};
