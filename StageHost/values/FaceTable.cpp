#include "FaceTable.h"

namespace stagehost {

KXPCode FaceTable::Find(const char* name, void** out) const {
    if (name == nullptr || out == nullptr)
        return KXP_BAD_INTERFACE_ARG;
    *out = nullptr;
    for (const auto& [offered, face] : m_faces) {
        if (offered == name) {
            *out = face;
            return KXP_OK;
        }
    }
    return KXP_NO_INTERFACE;
}

} // namespace stagehost
