#pragma once

#include <memory>
#include <shared_mutex>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "HostFace.h"
#include "HostValue.h"
#include "IHostServices.h"

namespace stagehost {

/// All variables of the show by their full name, those of the devices ("device.variable") among them.
///
/// Finding is the hot road: readers share the lock, and nothing but the look-up happens under it. A variable that has
/// been removed is no longer found but stays in memory as long as its owner keeps it, since the module may hold it.
class VariableManager final : public HostFace<IVariableManager> {
public:
    /// @param sink hears of every change of every variable as long as it is one of the show's; must outlive the
    /// variables; null for none.
    explicit VariableManager(FaceTable& faces, ChangeSink* sink = nullptr);

    KXPCode Reserved1(void* argument) override;
    IData* FindVariable(const char* name) override;

    /// Adds a variable under its name. Its number stays when it has one that no variable had before; otherwise it gets
    /// a new one.
    /// @return false, and nothing is added, when the name is empty or taken.   [host main]
    bool Add(const std::shared_ptr<HostValue>& variable);

    /// Takes a variable out by its name; unknown names are ignored.   [host main]
    void Remove(const std::string& name);

    /// The variable of that name, or null.   [any]
    std::shared_ptr<HostValue> Find(const std::string& name) const;

    /// All variables, sorted by name.   [any]
    std::vector<std::shared_ptr<HostValue>> All() const;

private:
    std::uint32_t NumberFor(const HostValue& variable);

    ChangeSink* const m_sink;
    mutable std::shared_mutex m_lock;            ///< guards the fields below
    std::unordered_set<std::uint32_t> m_numbers; ///< every number given so far: none is given twice
    std::uint32_t m_lastNumber = 0;
    std::unordered_map<std::string, std::shared_ptr<HostValue>> m_variables;
};

} // namespace stagehost
