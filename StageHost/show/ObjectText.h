#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ShowModel.h"

namespace stagehost {

/// @file
/// The texts in which the host tells of its objects: XML of ASCII characters alone, all others as numbers.

/// The objects of a type below a parent:
///
///     <Objects Parent="..." Type="6"><Object Name="..." Type="Variable" Value="IntegerData"/>...</Objects>
///
/// Groups and objects of the show stand nested; all groups of the show in an object named "User Groups".
/// @param parent empty or the granted group for the whole show. @param type a number of kObjectKinds, 0 for all; for
/// any other number the list is empty.
/// @return nothing when there is no such parent.   [any]
std::optional<std::string> ObjectListText(const ShowModel& model, const std::string& parent, std::uint32_t type);

/// One object with its properties and, down to a depth, the objects below it:
///
///     <Object Name="..." Type="Task" Value=""><Properties><Property Name="Status" Value="Running"/>...</Properties>
///     <Object .../>...</Object>
///
/// A device is told by its definition text as it is.
/// @param name empty or the granted group for the whole show. @return nothing when there is no such object.   [any]
std::optional<std::string> ObjectDescription(const ShowModel& model, const std::string& name, std::uint32_t depth);

} // namespace stagehost
