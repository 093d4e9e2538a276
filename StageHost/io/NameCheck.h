#pragma once

#include <string>

#include "JsonNode.h"

namespace stagehost {

/// Complains about what is no name of an object, and tells why it is none.
/// @param name what the node holds. @param what what is named, such as "a device".
void CheckName(const JsonNode& node, const std::string& name, const char* what);

} // namespace stagehost
