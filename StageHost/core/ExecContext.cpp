#include "ExecContext.h"

#include <cstring>

namespace stagehost {

ExecContext::ExecContext(std::function<void()> ended)
    : m_ended(std::move(ended)) {}

KXPCode ExecContext::QueryInterface(const char* name, void** out) {
    if (name == nullptr || out == nullptr)
        return KXP_BAD_INTERFACE_ARG;
    const bool offered = std::strcmp(name, "IMInterface") == 0 || std::strcmp(name, "IExecContext") == 0 ||
                         std::strcmp(name, "IExecContext2") == 0;
    *out = offered ? this : nullptr;
    return offered ? KXP_OK : KXP_NO_INTERFACE;
}

KXPCode ExecContext::Release() {
    if (m_references.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete this;
    return KXP_OK;
}

KXPCode ExecContext::SetErrorCode(KXPCode code) {
    const std::lock_guard<std::mutex> hold(m_lock);
    m_errorCode = code;
    return KXP_OK;
}

KXPCode ExecContext::Begin() {
    const std::lock_guard<std::mutex> hold(m_lock);
    if (m_state == kCreated)
        m_state = kBegun;
    return KXP_OK;
}

KXPCode ExecContext::End() {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        if (m_state == kEnded)
            return KXP_OK;
        AddRef(); // the waiter may drop the last reference as soon as it sees the end
        m_state = kEnded;
        m_changed.notify_all();
    }
    if (m_ended)
        m_ended();
    return Release();
}

KXPCode ExecContext::Reserved4(void*) {
    return KXP_OK;
}

KXPCode ExecContext::Reserved5(void*) {
    return KXP_OK;
}

KXPCode ExecContext::AddRef() {
    m_references.fetch_add(1, std::memory_order_relaxed);
    return KXP_OK;
}

KXPCode ExecContext::Reserved7(void*) {
    return KXP_OK;
}

KXPCode ExecContext::Reserved8(void*, void*, void*) {
    return KXP_OK;
}

KXPCode ExecContext::SetResultText(const char* text) {
    const std::lock_guard<std::mutex> hold(m_lock);
    m_resultText = text == nullptr ? "" : text;
    return KXP_OK;
}

std::uint32_t ExecContext::GetState() {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_state;
}

KXPCode ExecContext::ErrorCode() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_errorCode;
}

std::string ExecContext::ResultText() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_resultText;
}

bool ExecContext::WaitEnded(std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> hold(m_lock);
    return m_changed.wait_for(hold, limit, [this] { return m_state == kEnded; });
}

} // namespace stagehost
