#include "TakenResources.h"

#include <algorithm>

#include "IIOResource.h"
#include "MScriptResource.h"

void TakenResources::Add(const MScriptResource& resource) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_links.push_back(resource.GetLink());
    IIOResource* const flushed = resource.GetFlushed();
    const auto isIt = [flushed](const Flushed& known) { return known.resource == flushed && !known.link->IsShut(); };
    if (flushed != nullptr && std::none_of(m_flushed.begin(), m_flushed.end(), isIt))
        m_flushed.push_back({resource.GetLink(), flushed});
}

void TakenResources::Clear() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_links.clear();
    m_flushed.clear();
}

void TakenResources::Service() {
    std::unique_lock<std::mutex> guard(m_lock);
    if (m_links.empty())
        return;
    const auto links = m_links;
    guard.unlock();
    for (const auto& link : links)
        link->Look();
}

void TakenResources::Flush() {
    std::unique_lock<std::mutex> guard(m_lock);
    const auto all = m_flushed;
    guard.unlock();
    for (const Flushed& flushed : all)
        flushed.link->Use([&] {
            if (flushed.resource->GetState() == KXP_RESOURCE_OPEN)
                flushed.resource->Flush();
        });
}
