#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "ShowSpec.h"

namespace stagehost {

/// The parameters of an action on an object of the show.
class Parameters {
public:
    Parameters() = default;
    explicit Parameters(std::vector<ActionParameter> list)
        : m_list(std::move(list)) {}

    const std::vector<ActionParameter>& List() const { return m_list; }

    /// Whether every parameter has one of these names.
    bool AreAmong(std::initializer_list<const char*> names) const;

    /// The text of a parameter, the last if it is given more than once; nothing when it is missing.
    std::optional<std::string> Text(const std::string& name) const;

    /// A whole number; the other value when the parameter is missing, nothing when it is no number.
    std::optional<std::int32_t> WholeOr(const std::string& name, std::int32_t missing) const;

private:
    std::vector<ActionParameter> m_list;
};

/// Reads a parameter text: `<parameters>` with `<parameter name="..." value="..."/>` below it. Empty or blank text is
/// the empty list. A parameter without a name and any other element are mistakes; a missing value is the empty text.
/// @param text Latin-1. @return nothing for a text that is no parameter list.   [any]
std::optional<Parameters> ReadParameters(const std::string& text);

} // namespace stagehost
