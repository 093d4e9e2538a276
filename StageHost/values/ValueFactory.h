#pragma once

#include <memory>

#include "HostValue.h"

namespace stagehost {

/// Makes a live value as a ValueSpec describes it.
/// @return null for a type that has no values (6, 8 and numbers outside the table).   [any]
std::unique_ptr<HostValue> MakeValue(const ValueSpec& spec);

/// Why a text may not be entered for such a value: "takes 0 to 100, not 500". A value keeps to its limits by itself;
/// this is for those who type.
/// @return empty when it may; otherwise words that follow a name.   [any]
std::string ComplaintAbout(const ValueSpec& spec, const std::string& text);

} // namespace stagehost
