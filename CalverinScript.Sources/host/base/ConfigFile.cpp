#include "ConfigFile.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <optional>

#include "ModuleFile.h"

namespace {

std::string Trimmed(const std::string& text) {
    const char* const blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos)
        return std::string();
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string Unquoted(const std::string& text) {
    const bool quoted =
        text.size() >= 2 && text.front() == text.back() && (text.front() == '"' || text.front() == '\'');
    return quoted ? text.substr(1, text.size() - 2) : text;
}

bool SameName(const std::string& a, const std::string& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

std::optional<std::string> ReadValue(const std::string& path, const char* section, const char* key) {
    std::ifstream file(path);
    std::string line;
    bool inSection = false;
    while (std::getline(file, line)) {
        line = Trimmed(line);
        if (line.empty() || line.front() == ';')
            continue;
        if (line.front() == '[') {
            inSection = SameName(Trimmed(line.substr(1, line.find(']') - 1)), section);
            continue;
        }
        const std::size_t equals = line.find('=');
        if (inSection && equals != std::string::npos && SameName(Trimmed(line.substr(0, equals)), key))
            return Unquoted(Trimmed(line.substr(equals + 1)));
    }
    return std::nullopt;
}

} // namespace

std::string ConfigPath(const void* moduleHandle, const char* extension) {
    std::string path = moduleHandle != nullptr ? ModuleFileOf(moduleHandle) : ExecutableFile();
    if (path.empty())
        return path;
    const std::size_t point = path.rfind('.');
    const std::size_t slash = path.find_last_of("/\\");
    if (point != std::string::npos && (slash == std::string::npos || point > slash))
        path.resize(point);
    return path + "." + (extension != nullptr ? extension : "ini");
}

int ReadConfigInt(const std::string& path, const char* section, const char* key, int fallback) {
    const std::optional<std::string> value = ReadValue(path, section, key);
    return value ? std::atoi(value->c_str()) : fallback;
}

std::string ReadConfigText(const std::string& path, const char* section, const char* key, const char* fallback) {
    return ReadValue(path, section, key).value_or(fallback);
}
