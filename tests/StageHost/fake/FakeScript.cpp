#include "FakeScript.h"

#include <sstream>

FakeScript FakeScript::Parse(const std::string& text) {
    FakeScript script;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string statement;
        words >> statement >> std::ws;
        std::string rest;
        if (statement == "function") {
            std::string name;
            words >> name >> std::ws;
            std::getline(words, rest);
            script.functions[name] = rest;
        } else if (statement == "error") {
            std::getline(words, script.error);
        } else if (statement == "hang") {
            script.hangs = true;
        }
    }
    return script;
}

std::string FakeScript::FunctionList() const {
    std::string list;
    for (const auto& function : functions)
        list += function.first + "\n";
    return list;
}
