#pragma once

#include "KXPTypes.h"

/// Root of every interface that crosses between host and module.
///
/// An object is found by name and never constructed by the other side. All faces of one object answer `QueryInterface`
/// alike. Interfaces have no virtual destructor: `Release` is the only way to give an object up.
class IMInterface {
public:
    /// Finds another face of the same object by its exact name.
    /// @param name  borrowed, compared byte by byte.
    /// @param out   cleared first, then set to the face; no reference is added.
    /// @return 0 found, 0x10000000 not offered (*out is null), 0x10000001 name or out is null.   [any]
    virtual KXPCode QueryInterface(const char* name, void** out) = 0;

    /// Gives the object up: ends a module or a device, drops a reference of a counted one. Not for what was only lent.
    /// @return 0 always.   [host main for modules and devices, any for counted objects]
    virtual KXPCode Release() = 0;

protected:
    IMInterface() = default;
    IMInterface(const IMInterface&) = default;
    IMInterface& operator=(const IMInterface&) = default;
    ~IMInterface() = default;
};

/// QueryInterface with the type of the face that the name stands
/// for; null when the object is null or does not offer it.
template <typename Face>
Face* QueryFace(IMInterface* object, const char* name) {
    void* face = nullptr;
    if (object == nullptr || object->QueryInterface(name, &face) != KXP_OK)
        return nullptr;
    return static_cast<Face*>(face);
}
