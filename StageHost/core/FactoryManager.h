#pragma once

#include <map>
#include <mutex>
#include <string>

#include "HostFace.h"
#include "IObjectFactoryManager.h"

namespace stagehost {

/// The property selectors that the module has made known, by name.
class FactoryManager final : public HostFace<IObjectFactoryManager> {
public:
    explicit FactoryManager(FaceTable& faces);

    /// A name that is known already takes the new factory. @return 0, 2 null argument.
    KXPCode RegisterFactory(const char* name, IObjectFactory* factory) override;
    /// @return 0, 2 null name, 65 unknown name.
    KXPCode UnregisterFactory(const char* name) override;

    /// The factory of that name, or null.   [any]
    IObjectFactory* Find(const std::string& name) const;

private:
    mutable std::mutex m_lock; ///< guards m_factories
    std::map<std::string, IObjectFactory*> m_factories;
};

} // namespace stagehost
