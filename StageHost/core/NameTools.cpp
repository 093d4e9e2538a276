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
    const std::string_view text = name == nullptr ? "" : name;
    return !text.empty() && text.size() <= kLongestName && text.front() != ' ' && text.back() != ' ' &&
           std::all_of(text.begin(), text.end(), &IsNameCharacter);
}

} // namespace stagehost
