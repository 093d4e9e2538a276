#include "MScriptResource.h"

#include <QByteArray>
#include <QString>
#include <QVariant>

#include "FaceAnswer.h"
#include "IScriptObjectOwner.h"
#include "MScriptParamList.h"

namespace {

std::uint64_t BytesOf(const MScriptParamList& values) {
    std::uint64_t bytes = 0;
    for (int i = 0; i < values.Count(); ++i)
        if (values.At(i).userType() == QMetaType::QByteArray)
            bytes += static_cast<std::uint64_t>(values.At(i).toByteArray().size());
    return bytes;
}

} // namespace

MScriptResource::MScriptResource(ScriptObjectType type, IResource* resource, IScriptObjectOwner* owner)
    : m_owner(owner)
    , m_link(std::make_shared<ResourceLink>(resource, owner, this))
    , m_drops(TellOfSlowScript(owner, [] { return QStringLiteral("events of a resource"); }))
    , m_backlog([this](bool full) {
        if (!full)
            m_drops.TellRest();
    }) {
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

void MScriptResource::Raise(const char* event, MScriptParamList values) {
    if (m_owner == nullptr)
        return;
    const std::uint64_t bytes = BytesOf(values);
    if (!m_backlog.GetRoom().Take(bytes)) {
        m_drops.Note(1);
        return;
    }
    values.Carry(m_backlog.Add({1, bytes}));
    m_owner->PostScriptEvent(QString::fromLatin1(event), &values, this);
}

KXPCode MScriptResource::AnswerHandler(const char* name, void** out, IResourceHandler* self, const char* ownName,
                                       void* own) const {
    return AnswerFace(name, out, {{"IMInterface", self}, {ownName, own}});
}
