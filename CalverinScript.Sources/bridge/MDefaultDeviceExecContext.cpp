#include "MDefaultDeviceExecContext.h"

#include "FaceAnswer.h"
#include "WithinMemory.h"

MDefaultDeviceExecContext::MDefaultDeviceExecContext(IExecContextEndHandler* endHandler)
    : m_handler(endHandler) {}

MDefaultDeviceExecContext::~MDefaultDeviceExecContext() = default;

KXPCode MDefaultDeviceExecContext::QueryInterface(const char* name, void** out) {
    auto* self = static_cast<IExecContext2*>(this);
    return AnswerFace(name, out, {{"IMInterface", self}, {"IExecContext2", self}, {"IExecContext", self}});
}

KXPCode MDefaultDeviceExecContext::Release() {
    if (m_refCount.Decrement() == 0)
        delete this;
    return KXP_OK;
}

KXPCode MDefaultDeviceExecContext::SetErrorCode(KXPCode code) {
    m_errorCode = code;
    return KXP_OK;
}

KXPCode MDefaultDeviceExecContext::Begin() {
    m_state = kBegun;
    return KXP_OK;
}

KXPCode MDefaultDeviceExecContext::End() {
    if (m_handler != nullptr)
        m_handler->OnContextEnd(this);
    m_state = kEnded;
    return KXP_OK;
}

KXPCode MDefaultDeviceExecContext::Reserved4(void* /*argument*/) {
    return KXP_OK;
}

KXPCode MDefaultDeviceExecContext::Reserved5(void* /*argument*/) {
    return KXP_OK;
}

KXPCode MDefaultDeviceExecContext::AddRef() {
    m_refCount.Increment();
    return KXP_OK;
}

KXPCode MDefaultDeviceExecContext::Reserved7(void* /*argument*/) {
    return KXP_OK;
}

KXPCode MDefaultDeviceExecContext::Reserved8(void* /*argument1*/, void* /*argument2*/, void* /*argument3*/) {
    return KXP_OK;
}

KXPCode MDefaultDeviceExecContext::SetResultText(const char* text) {
    return WithinMemory(KXP_NOT_IMPLEMENTED, [&] {
        const std::lock_guard<std::mutex> guard(m_resultLock);
        m_result = text;
        return KXPCode{KXP_OK};
    });
}

std::uint32_t MDefaultDeviceExecContext::GetState() {
    return m_state;
}

MString MDefaultDeviceExecContext::GetResult() const {
    const std::lock_guard<std::mutex> guard(m_resultLock);
    return m_result;
}
