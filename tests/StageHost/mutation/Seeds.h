#pragma once

#include <string>
#include <vector>

/// The whole of a file of the sources; the name is relative to their root.
std::string SeedFile(const std::string& name);
/// The lines of a file of seeds beside the tests, without empty ones.
std::vector<std::string> SeedLines(const std::string& name);
/// All files of a folder of the sources with that ending.
std::vector<std::string> SeedFolder(const std::string& folder, const std::string& ending);
