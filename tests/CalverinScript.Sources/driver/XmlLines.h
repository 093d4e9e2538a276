#pragma once

#include <string>
#include <vector>

class TiXmlElement;

using Lines = std::vector<std::string>;

/// An element and all below it, one line each: a point for each level, the tag, the attributes in their order.
Lines XmlLines(const TiXmlElement& element);
/// The same of a text; nothing when it does not parse.
Lines XmlLines(const std::string& xml);
