#include "Options.h"

#include <charconv>

namespace {

bool ReadNumber(const std::string& text, std::uint64_t& number) {
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    return read.ec == std::errc() && read.ptr == end;
}

std::string TakeValue(const std::string& option, const std::string& value, Options& options) {
    std::uint64_t number = 0;
    if (option == "--only") {
        options.only.push_back(value);
        return value.empty() ? "--only needs a case; --list shows them" : std::string();
    }
    if (!ReadNumber(value, number))
        return option + " needs a number, not \"" + value + "\"";
    if (option == "--seed")
        options.seed = number;
    else if (number < 1 || number > 10)
        return "a level is 1 to 10";
    else
        options.level = static_cast<int>(number);
    return {};
}

bool TakeSwitch(const std::string& word, Options& options) {
    for (const auto& [name, place] :
         {std::pair("--json", &options.json), {"--list", &options.list}, {"--help", &options.help}})
        if (word == name)
            return *place = true;
    return false;
}

} // namespace

std::string ReadOptions(int count, char** words, Options& options) {
    for (int number = 1; number < count; ++number) {
        const std::string word = words[number];
        const bool hasValue = word == "--only" || word == "--level" || word == "--seed";
        if (hasValue && number + 1 == count)
            return word + " needs a value";
        if (hasValue) {
            std::string problem = TakeValue(word, words[++number], options);
            if (!problem.empty())
                return problem;
        } else if (!TakeSwitch(word, options)) {
            if (word.rfind("--", 0) == 0 || !options.moduleFile.empty())
                return "\"" + word + "\" is not understood";
            options.moduleFile = word;
        }
    }
    return options.moduleFile.empty() && !options.list && !options.help ? "which module?" : std::string();
}

std::string HelpText() {
    return "kxpvalidate MODULE [--level 1-10] [--only CASE]... [--seed N] [--json]\n"
           "kxpvalidate --list\n\n"
           "Holds a module file to the contract of the host: each case runs in a process of its own, with a host that\n"
           "deletes all it may delete, and any touch of what is gone is a crash that is told.\n\n"
           "  --level  how much of it, 3 if not given; each level is four times the one before\n"
           "  --only   one case alone; may be given for some\n"
           "  --seed   what the dice begin with, 1 if not given\n"
           "  --json   the results for programs\n"
           "  --list   the cases with what each promises\n\n"
           "Exit codes: 0 all passed, 1 a case failed, 2 bad use\n";
}
