#include "MSelectorWizard.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

constexpr const char* kFaces[] = {"IMInterface", "IObjectFactory"};

} // namespace

MSelectorWizard::~MSelectorWizard() = default;

KXPCode MSelectorWizard::QueryInterface(const char* name, void** out) {
    if (name == nullptr || out == nullptr)
        return KXP_BAD_INTERFACE_ARG;
    *out = nullptr;
    if (std::none_of(std::begin(kFaces), std::end(kFaces), [&](const char* f) { return std::strcmp(name, f) == 0; }))
        return KXP_NO_INTERFACE;
    *out = static_cast<IObjectFactory*>(this);
    return KXP_OK;
}

KXPCode MSelectorWizard::Release() {
    return KXP_OK;
}

IMInterface* MSelectorWizard::CreateObject(const char* /*name*/) {
    return nullptr;
}
