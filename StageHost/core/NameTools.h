#pragma once

#include <string>

#include "HostFace.h"
#include "IHostServices.h"

namespace stagehost {

/// The host's rule for names: 1 to 128 characters, no control characters, no blank at either end, and none of the
/// characters that separate names or paths elsewhere: . ; " / \ < > &
class NameTools final : public HostFace<IObjectNameTools> {
public:
    explicit NameTools(FaceTable& faces);

    KXPCode Reserved1(void* argument) override;
    KXPCode Reserved2(void* argument) override;
    KXPCode Reserved3(void* argument) override;
    KXPCode Reserved4(void* argument) override;
    std::uint32_t IsValidName(const char* name) override;
};

/// The rule itself.   [any]
bool IsObjectName(const char* name);

/// Why a text is no name, in words that follow "a name": "has 200 characters, 128 at most".   [any]
/// @return empty when it is one.
std::string WhyNoObjectName(const std::string& name);

} // namespace stagehost
