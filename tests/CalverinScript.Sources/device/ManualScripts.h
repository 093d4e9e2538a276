#pragma once

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

/// The scripts that a page of docs/ shows, in their order.
inline std::vector<std::string> ScriptsOfTheManual(const char* path) {
    std::ifstream file(path);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::string fence = "```js\n";
    std::vector<std::string> scripts;
    for (std::size_t at = text.find(fence); at != std::string::npos; at = text.find(fence, at)) {
        at += fence.size();
        scripts.push_back(text.substr(at, text.find("```", at) - at));
    }
    return scripts;
}
