#pragma once

#include "IMInterface.h"

class IObjectFactory;

/// Where the module makes its property selectors known. Found on the host root as "IObjectFactoryManager".
class IObjectFactoryManager : public IMInterface {
public:
    /// Makes a factory known under a name that definition texts may quote. The factory stays owned by the module, which
    /// takes it back before it ends; "IScriptTextSelector" alone is left to the host, which forgets it with the module.
    /// @return 0, 2 null argument.   [host main]
    virtual KXPCode RegisterFactory(const char* name, IObjectFactory* factory) = 0;

    /// The reverse. @return 0, 2 null name, another code when the name is not known.   [host main]
    virtual KXPCode UnregisterFactory(const char* name) = 0;

protected:
    ~IObjectFactoryManager() = default;
};
