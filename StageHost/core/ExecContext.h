#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>

#include "IExecContext.h"

namespace stagehost {

/// The host's ticket of one request, counted and waitable.
///
/// The maker owns the first reference and drops it with Release. The fields are written by whoever serves the request
/// and read by the maker, under the lock.   [any]
class ExecContext final : public IExecContext2 {
public:
    enum State : std::uint32_t { kCreated = 0, kBegun = 1, kEnded = 2 };

    /// @param ended called once, behind the first End and on its thread, with no lock held. May be empty.
    explicit ExecContext(std::function<void()> ended = {});

    KXPCode QueryInterface(const char* name, void** out) override;
    KXPCode Release() override;
    KXPCode SetErrorCode(KXPCode code) override;
    /// A Begin that comes behind the end changes nothing.
    KXPCode Begin() override;
    KXPCode End() override;
    KXPCode Reserved4(void* argument) override;
    KXPCode Reserved5(void* argument) override;
    KXPCode AddRef() override;
    KXPCode Reserved7(void* argument) override;
    KXPCode Reserved8(void* argument1, void* argument2, void* argument3) override;
    KXPCode SetResultText(const char* text) override;
    std::uint32_t GetState() override;

    KXPCode ErrorCode() const;
    std::string ResultText() const;

    /// Waits for End. @return false when the limit passed before it.
    bool WaitEnded(std::chrono::milliseconds limit);

private:
    virtual ~ExecContext() = default; ///< the last Release deletes

    mutable std::mutex m_lock; ///< guards the three fields below
    State m_state = kCreated;
    KXPCode m_errorCode = KXP_OK;
    std::string m_resultText;
    std::condition_variable m_changed;
    std::function<void()> m_ended;
    std::atomic<std::uint32_t> m_references{1};
};

} // namespace stagehost
