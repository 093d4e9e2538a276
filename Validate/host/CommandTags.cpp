#include "CommandTags.h"

#include <cstdlib>
#include <string_view>

namespace {

constexpr std::string_view kTag = "<Command";
constexpr const char* kBlanks = " \t\r\n";

/// The value of an attribute. @param inside of a tag, behind its name.
std::string AttributeOf(std::string_view inside, std::string_view wanted) {
    while (true) {
        const auto begin = inside.find_first_not_of(kBlanks);
        const auto equals = inside.find('=');
        const auto quote = inside.find_first_of("\"'", equals);
        const auto end = quote != std::string_view::npos ? inside.find(inside[quote], quote + 1) : quote;
        if (begin > equals || end == std::string_view::npos)
            return {};
        const std::string_view name = inside.substr(begin, inside.find_first_of("= \t\r\n", begin) - begin);
        if (name == wanted)
            return std::string(inside.substr(quote + 1, end - quote - 1));
        inside.remove_prefix(end + 1);
    }
}

} // namespace

std::vector<CommandTag> CommandsOf(const char* definition) {
    const std::string_view text = definition != nullptr ? definition : "";
    std::vector<CommandTag> commands;
    for (auto place = text.find(kTag); place != std::string_view::npos; place = text.find(kTag, place + 1)) {
        const std::string_view rest = text.substr(place + kTag.size());
        if (rest.find_first_of(kBlanks) != 0)
            continue;                                                   // <Commands>
        const std::string_view inside = rest.substr(0, rest.find('<')); // no attribute has one
        commands.push_back({std::atoi(AttributeOf(inside, "ID").c_str()), AttributeOf(inside, "Name")});
    }
    return commands;
}
