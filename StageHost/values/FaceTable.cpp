#include "FaceTable.h"

namespace stagehost {

KXPCode FaceTable::Find(const char* name, void** out) const {
    if (name == nullptr || out == nullptr)
        return KXP_BAD_INTERFACE_ARG;
    *out = nullptr;
    for (const Row& row : m_faces) {
        if (row.name == name && (row.isOffered == nullptr || *row.isOffered)) {
            *out = row.face;
            return KXP_OK;
        }
    }
    return KXP_NO_INTERFACE;
}

} // namespace stagehost
