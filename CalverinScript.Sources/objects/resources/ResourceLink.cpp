#include "ResourceLink.h"

#include <algorithm>

#include <QString>

#include "IResource.h"
#include "IScriptObjectOwner.h"
#include "MScriptCommonEvent.h"
#include "MScriptParamList.h"

ResourceLink::ResourceLink(IResource* resource, IScriptObjectOwner* owner, MScriptCommonEvent* object)
    : m_resource(resource)
    , m_owner(owner)
    , m_object(object) {}

bool ResourceLink::Enter() {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (!m_shut)
        m_inside.push_back(std::this_thread::get_id());
    return !m_shut;
}

void ResourceLink::Leave() {
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_inside.erase(std::find(m_inside.begin(), m_inside.end(), std::this_thread::get_id()));
    }
    m_left.notify_all();
}

void ResourceLink::Shut() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_shut = true;
}

bool ResourceLink::IsShut() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_shut;
}

bool ResourceLink::WaitUntilUnused(std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> guard(m_lock);
    const auto isMine = [me = std::this_thread::get_id()](std::thread::id id) { return id == me; };
    return m_left.wait_for(guard, limit, [&] { return std::all_of(m_inside.begin(), m_inside.end(), isMine); });
}

void ResourceLink::Look() {
    if (m_resource == nullptr)
        return;
    const auto stays = shared_from_this();
    const std::uint64_t look = BeginLook();
    std::uint32_t state = 0;
    if (Use([&] { state = m_resource->GetState(); }))
        EndLook(look, state);
}

std::uint64_t ResourceLink::BeginLook() {
    const std::lock_guard<std::mutex> guard(m_lock);
    return ++m_looks;
}

/// The event is raised under the lock, which nobody needs who takes events, so that two looks cannot exchange theirs.
void ResourceLink::EndLook(std::uint64_t look, std::uint32_t state) {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (m_shut || look < m_lastLook)
        return;
    m_lastLook = look;
    if (m_stateKnown && m_state == state)
        return;
    m_stateKnown = true;
    m_state = state;
    if (state == KXP_RESOURCE_OPEN)
        Raise("open");
    else if (state == KXP_RESOURCE_CLOSED)
        Raise("close");
}

void ResourceLink::Raise(const char* event) const {
    const MScriptParamList none;
    if (m_owner != nullptr)
        m_owner->PostScriptEvent(QString::fromLatin1(event), &none, m_object);
}

void ResourceLink::ForgetState() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_stateKnown = false;
}
