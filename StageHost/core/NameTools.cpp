#include "NameTools.h"

#include <algorithm>
#include <string_view>

namespace stagehost {

namespace {

constexpr std::size_t kLongestName = 128;
constexpr std::string_view kSeparators = ".;\"/\\<>&";

bool IsNameCharacter(char character) {
    const auto code = static_cast<unsigned char>(character);
    const bool control = code < 0x20 || (code >= 0x7F && code < 0xA0);
    return !control && kSeparators.find(character) == std::string_view::npos;
}

} // namespace

NameTools::NameTools(FaceTable& faces)
    : HostFace(faces) {
    OfferAs("IObjectNameTools");
}

KXPCode NameTools::Reserved1(void*) {
    return KXP_NOT_IMPLEMENTED;
}

KXPCode NameTools::Reserved2(void*) {
    return KXP_NOT_IMPLEMENTED;
}

KXPCode NameTools::Reserved3(void*) {
    return KXP_NOT_IMPLEMENTED;
}

KXPCode NameTools::Reserved4(void*) {
    return KXP_NOT_IMPLEMENTED;
}

std::uint32_t NameTools::IsValidName(const char* name) {
    return IsObjectName(name) ? 1 : 0;
}

bool IsObjectName(const char* name) {
    return name != nullptr && WhyNoObjectName(name).empty();
}

std::string WhyNoObjectName(const std::string& name) {
    if (name.empty())
        return "is empty";
    if (name.size() > kLongestName)
        return "has " + std::to_string(name.size()) + " characters, " + std::to_string(kLongestName) + " at most";
    if (name.front() == ' ' || name.back() == ' ')
        return "has a blank at an end";
    const auto bad = std::find_if_not(name.begin(), name.end(), &IsNameCharacter);
    if (bad == name.end())
        return {};
    return kSeparators.find(*bad) == std::string_view::npos ? "has a control character"
                                                            : std::string("has the character ") + *bad;
}

} // namespace stagehost
