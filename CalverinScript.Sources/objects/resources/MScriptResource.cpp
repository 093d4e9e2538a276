#include "MScriptResource.h"

#include <QString>

#include "FaceAnswer.h"
#include "IScriptObjectOwner.h"
#include "MScriptParamList.h"

MScriptResource::MScriptResource(ScriptObjectType type, IResource* resource, IScriptObjectOwner* owner)
    : m_owner(owner)
    , m_link(std::make_shared<ResourceLink>(resource, owner, this)) {
    m_type = type;
}

MScriptResource::~MScriptResource() = default;

void MScriptResource::Listen(const QString& event, const QScriptValue& listener) {
    if (!m_link->IsShut())
        SetListener(event, listener);
}

const char* MScriptResource::OwnerName() {
    if (m_owner == nullptr)
        return "";
    const std::string name = m_owner->GetDeviceName();
    const std::lock_guard<std::mutex> guard(m_nameLock);
    if (m_ownerNames.empty() || m_ownerNames.back() != name)
        m_ownerNames.push_back(name);
    return m_ownerNames.back().c_str();
}

void MScriptResource::Raise(const char* event, const MScriptParamList& values) {
    if (m_owner != nullptr)
        m_owner->PostScriptEvent(QString::fromLatin1(event), &values, this);
}

KXPCode MScriptResource::AnswerHandler(const char* name, void** out, IResourceHandler* self, const char* ownName,
                                       void* own) const {
    return AnswerFace(name, out, {{"IMInterface", self}, {ownName, own}});
}
