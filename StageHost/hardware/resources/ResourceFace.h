#pragma once

#include <string>

#include "FaceAnswer.h"
#include "IResource.h"

namespace stagehost {

/// Who a resource is: "IResourceProxy".
class ResourceIdentity final : public IResourceProxy {
public:
    /// @param owner the resource, which answers for all its faces.
    ResourceIdentity(IMInterface& owner, std::int32_t id, std::string name)
        : m_owner(owner)
        , m_id(id)
        , m_name(std::move(name)) {}
    ~ResourceIdentity() = default;

    KXPCode QueryInterface(const char* name, void** out) override { return m_owner.QueryInterface(name, out); }
    KXPCode Release() override { return KXP_OK; }
    const char* GetName() override { return m_name.c_str(); }
    std::int32_t GetResourceID() override { return m_id; }

private:
    IMInterface& m_owner;
    const std::int32_t m_id;
    const std::string m_name;
};

/// What all resources have in common: their faces, and the places that nobody calls. The host owns its resources, so
/// Release changes nothing.
template <typename Interface>
class ResourceFace : public Interface {
public:
    /// @param interfaceName a literal.
    ResourceFace(std::int32_t id, const std::string& name, const char* interfaceName)
        : m_identity(*this, id, name)
        , m_interfaceName(interfaceName) {}
    virtual ~ResourceFace() = default;
    ResourceFace(const ResourceFace&) = delete;
    ResourceFace& operator=(const ResourceFace&) = delete;

    KXPCode QueryInterface(const char* name, void** out) override {
        auto* self = static_cast<Interface*>(this);
        return AnswerFace(name, out,
                          {{"IMInterface", static_cast<IMInterface*>(self)},
                           {"IResourceProxy", static_cast<IResourceProxy*>(&m_identity)},
                           {m_interfaceName, self}});
    }
    KXPCode Release() override { return KXP_OK; }
    KXPCode Reserved3() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved4() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved6() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved7() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved8() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved11() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved12() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved13() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved14() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved15() override { return KXP_NOT_IMPLEMENTED; }
    KXPCode Reserved16() override { return KXP_NOT_IMPLEMENTED; }

private:
    ResourceIdentity m_identity;
    const char* const m_interfaceName;
};

} // namespace stagehost
