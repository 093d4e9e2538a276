#pragma once

#include "IMInterface.h"

/// @file
/// What the resources of the host have in common: serial ports, DMX universes and I/O resources.
///
/// The place of an operation counts from 1, inherited operations included; a reserved operation carries its place in
/// its name, and the module never calls it. The host owns every resource. The module never releases one: it uses what
/// IResourceProvider gave it until RemoveHandler and Close have returned, and begins no call after that. A call that is
/// still inside then keeps the resource from going. A host that releases the device or the module from inside such a
/// call gets back what is left when that call has returned, and keeps its resources until then.

/// States of a resource. Any other number is a state of the host's own that no script hears of.
enum KXPResourceState : std::uint32_t { KXP_RESOURCE_CLOSED = 0, KXP_RESOURCE_OPEN = 2 };

/// Any resource. Each also answers QueryInterface for "IResourceProxy" and for the name of its own interface.
class IResource : public IMInterface {
public:
    virtual KXPCode Reserved3() = 0;
    virtual KXPCode Reserved4() = 0;
    /// Place 5. The state at this moment, see KXPResourceState. Called from inside IResourceHandler::OnStateChanged and
    /// periodically, so it must not wait.   [any]
    virtual std::uint32_t GetState() = 0;

protected:
    ~IResource() = default;
};

/// A resource that is one port, with data going in or out. Base of ISerialResource and IDMXResource.
class IPortResource : public IResource {
public:
    virtual KXPCode Reserved6() = 0;
    virtual KXPCode Reserved7() = 0;
    virtual KXPCode Reserved8() = 0;
    /// Place 9. Opens the port; nothing happens when it is open. It may open later: the handlers hear of the change of
    /// state, also from inside this call.
    /// @return 0 accepted, another code refused.   [script]
    virtual KXPCode Open() = 0;
    /// Place 10. Closes the port; nothing happens when it is closed. A Write that waits for the line comes back.
    /// @return 0.   [script, host main]
    virtual KXPCode Close() = 0;
    virtual KXPCode Reserved11() = 0;
    virtual KXPCode Reserved12() = 0;
    virtual KXPCode Reserved13() = 0;
    virtual KXPCode Reserved14() = 0;
    virtual KXPCode Reserved15() = 0;
    virtual KXPCode Reserved16() = 0;

protected:
    ~IPortResource() = default;
};

/// Who a resource is. Queried from a resource as "IResourceProxy".
class IResourceProxy : public IMInterface {
public:
    /// Place 3. The name that the user gave the resource. Owned by the host, valid until it is renamed.   [host main]
    virtual const char* GetName() = 0;
    /// Place 4. The number under which IResourceProvider knows the resource, 0 or above.   [host main]
    virtual std::int32_t GetResourceID() = 0;

protected:
    ~IResourceProxy() = default;
};

/// Hears of a resource. Implemented by the module, and never released by the host: it is used from AddHandler, or Open
/// of an IIOResource, until RemoveHandler, or Close, has returned.
///
/// The host may call it on any thread of its own and from inside any call that the module makes. Every operation comes
/// back at once and waits for no script.
class IResourceHandler {
public:
    /// Finds another face of the handler. All answer "IMInterface", though they have no Release, with this face.
    /// @return 0 found, 0x10000000 not offered (*out is null), 0x10000001 name or out is null.   [any]
    virtual KXPCode QueryInterface(const char* name, void** out) = 0;
    /// The state may have changed: the handler asks for it with GetState.   [any]
    virtual void OnStateChanged() = 0;
    /// The name of the device that uses the resource, "" when it has
    /// none. Owned by the device, valid until it is renamed. [any]
    virtual const char* GetOwnerName() = 0;
    /// Does nothing.   [any]
    virtual KXPCode Reserved4(void* argument1, void* argument2, void* argument3, void* argument4) = 0;

protected:
    IResourceHandler() = default;
    IResourceHandler(const IResourceHandler&) = default;
    IResourceHandler& operator=(const IResourceHandler&) = default;
    ~IResourceHandler() = default;
};
