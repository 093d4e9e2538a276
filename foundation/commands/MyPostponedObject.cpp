#include "MyPostponedObject.h"

namespace {

InterlockedCounter& Ids() {
    static InterlockedCounter ids;
    return ids;
}

} // namespace

MyPostponedObject::MyPostponedObject(MCommandObject* command)
    : m_id(NextId(Ids()))
    , m_command(command) {
    m_refCount.Increment();
}

std::int32_t MyPostponedObject::AddRef() {
    return m_refCount.Increment();
}

std::int32_t MyPostponedObject::Release() {
    const std::int32_t left = m_refCount.Decrement();
    if (left == 0)
        delete this;
    return left;
}

std::uint32_t MyPostponedObject::NextId(InterlockedCounter& counter) {
    std::uint32_t id = 0;
    while (id == 0)
        id = static_cast<std::uint32_t>(counter.Increment());
    return id;
}
