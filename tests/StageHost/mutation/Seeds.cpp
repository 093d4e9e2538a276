#include "Seeds.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

std::string SeedFile(const std::string& name) {
    std::ifstream file(std::string(SOURCES "/") + name, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

std::vector<std::string> SeedLines(const std::string& name) {
    std::istringstream text(SeedFile("tests/StageHost/mutation/seeds/" + name));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) {
        if (!line.empty())
            lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> SeedFolder(const std::string& folder, const std::string& ending) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(std::string(SOURCES "/") + folder)) {
        if (entry.path().extension() == ending)
            names.push_back(folder + "/" + entry.path().filename().string());
    }
    std::sort(names.begin(), names.end()); // the same cases everywhere
    std::vector<std::string> texts;
    for (const std::string& name : names)
        texts.push_back(SeedFile(name));
    return texts;
}
