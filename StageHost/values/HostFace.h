#pragma once

#include "FaceTable.h"

namespace stagehost {

/// One face of the host's root object: the two operations of IMInterface, which all faces answer alike. The host owns
/// its faces, so Release changes nothing.
template <typename Interface>
class HostFace : public Interface {
public:
    explicit HostFace(FaceTable& faces)
        : m_faces(faces) {}
    virtual ~HostFace() = default;
    HostFace(const HostFace&) = delete;
    HostFace& operator=(const HostFace&) = delete;

    KXPCode QueryInterface(const char* name, void** out) override { return m_faces.Find(name, out); }
    KXPCode Release() override { return KXP_OK; }

protected:
    /// Offers this face under its name. The caller is the constructor of the last class.
    void OfferAs(const char* name) { m_faces.Offer(name, static_cast<Interface*>(this)); }
    /// The same while a flag of the last class says so.
    void OfferAsWhile(const std::atomic<bool>& isOffered, const char* name) {
        m_faces.OfferWhile(isOffered, name, static_cast<Interface*>(this));
    }

private:
    FaceTable& m_faces;
};

} // namespace stagehost
