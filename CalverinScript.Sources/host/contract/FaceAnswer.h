#pragma once

#include <cstring>
#include <initializer_list>

#include "IMInterface.h"

/// One name that an object answers to, and the pointer to that face.
struct KXPFace {
    const char* name;
    void* pointer;
};

/// What every QueryInterface does: refuses null arguments, clears *out, and looks the name up among the faces.
/// @return 0 found, 0x10000000 not offered, 0x10000001 name or out is null.   [any]
inline KXPCode AnswerFace(const char* name, void** out, std::initializer_list<KXPFace> faces) {
    if (name == nullptr || out == nullptr)
        return KXP_BAD_INTERFACE_ARG;
    *out = nullptr;
    for (const KXPFace& face : faces) {
        if (std::strcmp(name, face.name) != 0)
            continue;
        *out = face.pointer;
        return KXP_OK;
    }
    return KXP_NO_INTERFACE;
}
