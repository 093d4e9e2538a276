#include "ExecContext.h"

#include <cstring>

namespace stagehost {

ExecContext::ExecContext(std::function<void()> ended)
    : ended_(std::move(ended)) {}

KXPCode ExecContext::QueryInterface(const char* name, void** out) {
    if (name == nullptr || out == nullptr)
        return KXP_BAD_INTERFACE_ARG;
    const bool offered = std::strcmp(name, "IMInterface") == 0 || std::strcmp(name, "IExecContext") == 0 ||
                         std::strcmp(name, "IExecContext2") == 0;
    *out = offered ? this : nullptr;
    return offered ? KXP_OK : KXP_NO_INTERFACE;
}

KXPCode ExecContext::Release() {
    if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete this;
    return KXP_OK;
}

KXPCode ExecContext::SetErrorCode(KXPCode code) {
    const std::lock_guard<std::mutex> hold(lock_);
    errorCode_ = code;
    return KXP_OK;
}

KXPCode ExecContext::Begin() {
    const std::lock_guard<std::mutex> hold(lock_);
    if (state_ == kCreated)
        state_ = kBegun;
    return KXP_OK;
}

KXPCode ExecContext::End() {
    {
        const std::lock_guard<std::mutex> hold(lock_);
        if (state_ == kEnded)
            return KXP_OK;
        AddRef(); // the waiter may drop the last reference as soon as it sees the end
        state_ = kEnded;
        changed_.notify_all();
    }
    if (ended_)
        ended_();
    return Release();
}

KXPCode ExecContext::Reserved4(void*) {
    return KXP_OK;
}

KXPCode ExecContext::Reserved5(void*) {
    return KXP_OK;
}

KXPCode ExecContext::AddRef() {
    references_.fetch_add(1, std::memory_order_relaxed);
    return KXP_OK;
}

KXPCode ExecContext::Reserved7(void*) {
    return KXP_OK;
}

KXPCode ExecContext::Reserved8(void*, void*, void*) {
    return KXP_OK;
}

KXPCode ExecContext::SetResultText(const char* text) {
    const std::lock_guard<std::mutex> hold(lock_);
    resultText_ = text == nullptr ? "" : text;
    return KXP_OK;
}

std::uint32_t ExecContext::GetState() {
    const std::lock_guard<std::mutex> hold(lock_);
    return state_;
}

KXPCode ExecContext::ErrorCode() const {
    const std::lock_guard<std::mutex> hold(lock_);
    return errorCode_;
}

std::string ExecContext::ResultText() const {
    const std::lock_guard<std::mutex> hold(lock_);
    return resultText_;
}

bool ExecContext::WaitEnded(std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> hold(lock_);
    return changed_.wait_for(hold, limit, [this] { return state_ == kEnded; });
}

} // namespace stagehost
