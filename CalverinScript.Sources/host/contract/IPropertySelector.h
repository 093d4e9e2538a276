#pragma once

#include "IObjectParams.h"

/// Fills one parameter of a command by asking the user. Definition texts name a selector beside a parameter, in the
/// property "DataDescriptor::IPropertySelector"; the host shows a button there. It gets a selector from the factory of
/// that name (IObjectFactoryManager), as an object that also answers "IPropertySelector".
class IPropertySelector : public IMInterface {
public:
    /// @return 1 always.   [host main]
    virtual std::uint32_t Reserved3(void* argument) = 0;

    /// What the selector does, for the host's button. Owned by the selector, valid until the next call.   [host main]
    virtual const char* GetName() = 0;

    /// Asks the user, in a modal dialog on the host's main window, and stores what was chosen as the text of the
    /// parameter's own value; a variable that is bound to it stays as it is. Cancelling leaves the parameter as it was.
    /// @param params borrowed for the call. Its property "ObjectParamDescriptor::DeviceID" says of which device
    /// functions are
    ///        offered; without it, or with "0", of all devices.
    /// @param name the parameter's name.
    /// @return 1 asked, whatever the user has chosen; 0 when params is null or has no such parameter.   [host main]
    virtual std::uint32_t Select(void* reserved1, IObjectParams* params, const char* name, void* reserved2) = 0;

protected:
    ~IPropertySelector() = default;
};
