#pragma once

#include <memory>

#include "HostValue.h"

namespace stagehost {

/// Makes a live value as a ValueSpec describes it.
/// @return null for a type that has no values (6, 8 and numbers outside the table).   [any]
std::unique_ptr<HostValue> MakeValue(const ValueSpec& spec);

} // namespace stagehost
