#pragma once

#include <atomic>
#include <mutex>

#include "IExecContext.h"
#include "InterlockedCounter.h"
#include "MString.h"

class MDefaultDeviceExecContext;

/// Is told that a context has ended.
class IExecContextEndHandler {
public:
    /// The context is ending; its result is in place.   [any]
    virtual void OnContextEnd(MDefaultDeviceExecContext* context) = 0;

protected:
    ~IExecContextEndHandler() = default;
};

/// A request of the module's to the host. Counted, starting at 1; the last Release deletes it. The host writes code and
/// text on any thread before it calls End, the module reads them after it.
class MDefaultDeviceExecContext : public IExecContext2 {
public:
    enum State : std::uint32_t { kCreated = 0, kBegun = 1, kEnded = 2 };

    /// @param endHandler told of End; borrowed, may be null.
    explicit MDefaultDeviceExecContext(IExecContextEndHandler* endHandler = nullptr);
    MDefaultDeviceExecContext(const MDefaultDeviceExecContext&) = delete;
    MDefaultDeviceExecContext& operator=(const MDefaultDeviceExecContext&) = delete;

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override;
    KXPCode SetErrorCode(KXPCode code) override;
    KXPCode Begin() override;
    KXPCode End() override;
    KXPCode Reserved4(void* argument) override;
    KXPCode Reserved5(void* argument) override;
    KXPCode AddRef() override;
    KXPCode Reserved7(void* argument) override;
    KXPCode Reserved8(void* argument1, void* argument2, void* argument3) override;
    KXPCode SetResultText(const char* text) override;
    std::uint32_t GetState() override;
    virtual ~MDefaultDeviceExecContext();

    /// Adds a reference, unless the last one has gone and the context
    /// is on its way out. @return whether it was added.   [any]
    bool TryAddRef() { return m_refCount.IncrementUnlessZero(); }
    /// A copy of the result text; a string without buffer when none was set.   [any]
    MString GetResult() const;
    /// The code that the host stored, 0 at first.   [any]
    KXPCode GetErrorCode() const { return m_errorCode; }

private:
    IExecContextEndHandler* const m_handler;
    std::atomic<KXPCode> m_errorCode{KXP_OK};
    mutable std::mutex m_resultLock;
    MString m_result; ///< under m_resultLock
    std::atomic<std::uint32_t> m_state{kCreated};
    InterlockedCounter m_refCount{1};
};
