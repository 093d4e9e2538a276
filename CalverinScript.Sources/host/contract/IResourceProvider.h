#pragma once

#include "IMInterface.h"

class IIOResourceChannel;

/// Kinds of resources.
enum KXPResourceKind : std::uint32_t { KXP_SERIAL_RESOURCE = 1, KXP_DMX_RESOURCE = 2, KXP_IO_RESOURCE = 5 };

/// Which way a resource works.
enum KXPResourceSubtype : std::uint32_t { KXP_RESOURCE_IN = 1, KXP_RESOURCE_OUT = 2, KXP_RESOURCE_BOTH = 3 };

/// Hands out the host's resources. Found on the host root as "IResourceProvider".
class IResourceProvider : public IMInterface {
public:
    /// Place 3. A resource by its number, which its interface is then
    /// queried from: "ISerialResource", "IDMXResource" or "IIOResource".
    /// @param kind       see KXPResourceKind.
    /// @param resourceId the host's number of the resource.
    /// @param subtype    see KXPResourceSubtype: both for serial ports and I/O resources, in or out for DMX.
    /// @return owned by the host, null when there is none.   [host main]
    virtual IMInterface* GetResource(std::uint32_t kind, std::int32_t resourceId, std::uint32_t subtype) = 0;

    /// Place 4. Has the user choose a resource in a modal dialog.
    /// @param resourceId the one that is chosen at first. @param parent the window of the dialog.
    /// @return the number of the chosen one, below 0 when cancelled.   [host main]
    virtual std::int32_t SelectResource(std::uint32_t kind, std::uint32_t subtype, std::int32_t resourceId,
                                        KXPWindow parent) = 0;

    /// Place 5. Has the user choose a channel of an I/O resource in a modal dialog.
    /// @param channelType see KXPChannelType. @param text shown to
    /// the user, borrowed. @param parent the window of the dialog.
    /// @return owned by the host, null when cancelled.   [host main]
    virtual IIOResourceChannel* SelectChannel(std::uint32_t channelType, const char* text, KXPWindow parent) = 0;

protected:
    ~IResourceProvider() = default;
};
