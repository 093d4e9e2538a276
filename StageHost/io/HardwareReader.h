#pragma once

#include <string>
#include <vector>

#include "HardwareSpec.h"
#include "JsonNode.h"

namespace stagehost {

/// Reads the resources of a show file: which port, universe or channels stand behind which number.   [host main]
class HardwareReader {
public:
    /// @param spec receives what is read; must outlive the reader.
    explicit HardwareReader(HardwareSpec& spec)
        : m_spec(spec) {}

    void Read(const JsonNode& resources);

private:
    void ReadResource(const JsonNode& node);
    std::int32_t ReadId(const JsonNode& node) const;
    std::string ReadResourceName(const JsonNode& node) const;
    void CheckAlone(const JsonNode& node, const ResourceSpec& resource) const;

    HardwareSpec& m_spec;
};

/// The names of all resources, and of all channels with that of their resource and a point in front.
std::vector<std::string> NamesOf(const HardwareSpec& spec);

} // namespace stagehost
