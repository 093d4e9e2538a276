#pragma once

#include "IData.h"

/// One parameter of a command, a typed value itself.
///
/// The value of a parameter is the variable bound to it when there is one, and its own value otherwise. That is the
/// rule for reading and for writing, the out-parameter "Result" included.
class IObjectParam : public IData {
public:
    /// The variable that the user bound to this parameter.
    /// @param reserved always 0.
    /// @return the variable's value, owned by the host, or null when none is bound.   [any]
    virtual IData* GetValue(std::uint32_t reserved) = 0;

protected:
    ~IObjectParam() = default;
};

/// The parameter collection of one command. Lives as long as the request; values handed out live at least until the
/// request's context has ended.
class IObjectParams : public IMInterface {
public:
    /// Stores a descriptor property of the collection. Both texts
    /// are copied; the further arguments are reserved, always 0.
    /// @return 0 stored, 2 null name.   [any host thread]
    virtual KXPCode SetProperty(const char* name, const char* value, std::uint32_t reserved1,
                                std::uint32_t reserved2) = 0;

    /// Reads a descriptor property. Not owned by the caller.
    /// @return the text, or null when there is none of that name.   [any host thread]
    virtual const char* GetProperty(const char* name) = 0;

    /// The parameter of that index from 0, owned by the collection; null outside.   [any host thread]
    virtual IObjectParam* GetParam(std::uint32_t index) = 0;

    /// The number of parameters.   [any host thread]
    virtual std::uint32_t GetParamCount() = 0;

protected:
    ~IObjectParams() = default;
};
