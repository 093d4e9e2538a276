#pragma once

#include <optional>
#include <string>

#include "CommandCall.h"
#include "FactoryManager.h"

class IPropertySelector;

namespace stagehost {

/// A selector of the module beside one parameter of a command: the button that a host shows there.   [host main]
class ParameterSelector {
public:
    /// @param factories must outlive this object.
    ParameterSelector(const FactoryManager& factories, const ValueSpec& parameter);
    ~ParameterSelector();
    ParameterSelector(const ParameterSelector&) = delete;
    ParameterSelector& operator=(const ParameterSelector&) = delete;

    /// Whether the parameter names a selector that the module has made known.
    bool IsThere() const { return m_selector != nullptr; }
    /// What it does, for its button.
    std::string Name() const;
    /// Lets the user choose, in a dialog of the module's.
    /// @param inputs what the parameters of the command have now. @return the parameter's text afterwards; nothing when
    /// the selector does not ask.
    std::optional<std::string> Ask(const CommandDefinition& command, const std::vector<ParameterInput>& inputs) const;

private:
    const std::string m_parameter;
    IPropertySelector* m_selector = nullptr; ///< released with this object
};

} // namespace stagehost
