#pragma once

#include "IMInterface.h"

/// Makes objects that definition texts name. Implemented by the module, registered with IObjectFactoryManager.
class IObjectFactory : public IMInterface {
public:
    /// A new object of the registered name, given up with Release; null
    /// for any other name and when none can be made.   [host main]
    virtual IMInterface* CreateObject(const char* name) = 0;

protected:
    ~IObjectFactory() = default;
};
