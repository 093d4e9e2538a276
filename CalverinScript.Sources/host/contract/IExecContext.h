#pragma once

#include "IMInterface.h"

/// The ticket of one request. Whoever makes the request makes the context; whoever
/// serves it calls `Begin` when the work is taken on and `End`, exactly once, when
/// the result is there. Contexts are counted: one reference belongs to the maker.
///
/// A context that carries a request to the host belongs to the module. A host whose
/// call answers 21 goes on with the request after the call, so it holds the context
/// from then on: AddRef before the call returns, Release behind End. The module gives
/// requests up when their device stops or ends, and may drop its own reference at any
/// time after that; an answer that still comes is dropped quietly.
class IExecContext : public IMInterface {
public:
    /// Stores the request's result code, before End. @return 0.   [any]
    virtual KXPCode SetErrorCode(KXPCode code) = 0;
    /// The request has been taken on. A host that will answer 21 calls this before it answers: the module waits for the
    /// end of a request that was begun, and goes on at once, with the error code as it stands, with one that was not.
    /// A host that releases the device from inside has the End before ExecuteCommand comes back.
    /// @return 0.   [any]
    virtual KXPCode Begin() = 0;
    /// The request is over: results that were promised are in place. May arrive before the call that carried the
    /// context has returned. @return 0.   [any]
    virtual KXPCode End() = 0;
    virtual KXPCode Reserved4(void* argument) = 0;
    virtual KXPCode Reserved5(void* argument) = 0;

protected:
    ~IExecContext() = default;
};

/// A context that carries a result text.
class IExecContext2 : public IExecContext {
public:
    /// Adds a reference, to be dropped with Release. @return 0.   [any]
    virtual KXPCode AddRef() = 0;
    virtual KXPCode Reserved7(void* argument) = 0;
    virtual KXPCode Reserved8(void* argument1, void* argument2, void* argument3) = 0;
    /// Stores the result text, before End. The text is copied; null is the empty text. @return 0.   [any]
    virtual KXPCode SetResultText(const char* text) = 0;
    /// 0 created, 1 begun, 2 ended.   [any]
    virtual std::uint32_t GetState() = 0;

protected:
    ~IExecContext2() = default;
};
