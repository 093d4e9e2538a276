#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "ResourceLink.h"

class IIOResource;
class MScriptResource;

/// The host's resources that a script has taken: those that are looked at periodically, and those that a flush puts
/// out. The lock is held for changes and copies alone, never while the host is called.
class TakenResources {
public:
    /// Notes a resource, and once the one that its channel belongs to.   [script]
    void Add(const MScriptResource& resource);
    /// Forgets all.   [any]
    void Clear();

    /// Looks at the state of each.   [tick]
    void Service();
    /// Puts out what was set on the channels, on each resource that is open.   [script]
    void Flush();

private:
    struct Flushed {
        std::shared_ptr<ResourceLink> link;
        IIOResource* resource;
    };

    std::mutex m_lock;
    std::vector<std::shared_ptr<ResourceLink>> m_links; ///< under m_lock
    std::vector<Flushed> m_flushed;                     ///< under m_lock
};
