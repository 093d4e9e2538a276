#include "DatagramParts.h"

#include <algorithm>

#include "MStringParser.h"

namespace {

constexpr std::size_t kLongestAddress = 255;

} // namespace

std::vector<std::string> BindAddresses(const char* text) {
    MStringParser parser(text);
    std::vector<std::string> addresses;
    const MStringParser::Parts* parts = parser.Split(';');
    if (parts == nullptr)
        return addresses;
    for (const std::string& part : *parts)
        if (part.size() <= kLongestAddress && addresses.size() < kMostBindAddresses)
            addresses.push_back(part);
    return addresses;
}

DatagramPart PartInside(int size, int offset, int length) {
    if (offset > size)
        return {size, 0};
    const int first = std::max(offset, 0);
    return {first, std::min(std::max(length, 0), size - first)};
}
