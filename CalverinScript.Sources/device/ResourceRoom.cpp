#include "ResourceRoom.h"

#include <algorithm>
#include <utility>

#include <QObject>

#include "DriverTables.h"
#include "IIOResource.h"
#include "IResourceProvider.h"
#include "MScriptDMX.h"
#include "MScriptIOChannel.h"
#include "MScriptMngRemote.h"
#include "MScriptSerial.h"
#include "ScriptFacing.h"

namespace {

constexpr int kTypeOfFirstWidget = static_cast<int>(ScriptObjectType::Serial);
static_assert(static_cast<int>(ScriptObjectType::AnalogOut) - kTypeOfFirstWidget ==
                  kLastResourceWidget - kFirstResourceWidget,
              "the kinds of objects follow the kinds of fields");

ScriptObjectType TypeOf(const ResourceRequest& request) {
    return static_cast<ScriptObjectType>(request.widget - kFirstResourceWidget + kTypeOfFirstWidget);
}

QString NameOf(const ResourceRequest& request) {
    const QString resource =
        QStringLiteral("%1 %2").arg(QLatin1String(WidgetName(request.widget))).arg(request.resourceId);
    return request.channelType < 0 ? resource : resource + QStringLiteral(" channel %1").arg(request.channelIndex);
}

/// The channel that a request names; null when there is none.
IIOResourceChannel* ChannelOf(IMInterface* found, const ResourceRequest& request) {
    auto* io = QueryFace<IIOResource>(found, "IIOResource");
    if (io == nullptr)
        return nullptr;
    return io->GetChannel(static_cast<std::uint32_t>(request.channelType), request.channelIndex);
}

/// An object for what the host has given; none when that is not what it was asked for.
template <typename Object, typename Resource, typename... Type>
std::unique_ptr<MScriptResource> ObjectFor(Resource* resource, IScriptObjectOwner& owner, Type... type) {
    if (resource == nullptr)
        return nullptr;
    return std::make_unique<ScriptFacing<Object>>(type..., resource, &owner);
}

std::unique_ptr<MScriptResource> Make(const ResourceRequest& request, IMInterface* found, IScriptObjectOwner& owner) {
    switch (request.family) {
    case KXP_SERIAL_RESOURCE:
        return ObjectFor<MScriptSerial>(QueryFace<ISerialResource>(found, "ISerialResource"), owner);
    case KXP_DMX_RESOURCE:
        return ObjectFor<MScriptDMX>(QueryFace<IDMXResource>(found, "IDMXResource"), owner, TypeOf(request));
    default:
        return ObjectFor<MScriptIOChannel>(ChannelOf(found, request), owner, TypeOf(request));
    }
}

} // namespace

ResourceRoom::ResourceRoom(MScriptMngRemote& remote)
    : m_remote(remote) {}

ResourceRoom::~ResourceRoom() {
    Close();
}

void ResourceRoom::Close() {
    m_isClosed = true;
    LetGo();
}

void ResourceRoom::Take(const std::vector<ResourceRequest>& wanted, IResourceProvider* provider) {
    LetGo();
    if (m_isClosed)
        return;
    m_requests = wanted;
    for (const ResourceRequest& request : wanted)
        if (!TakeOne(request, provider))
            return;
}

/// An id below 0 is that of a setting that names no resource yet.
/// @return false when the host has come back for another change meanwhile.
bool ResourceRoom::TakeOne(const ResourceRequest& request, IResourceProvider* provider) {
    if (request.resourceId < 0 || Find(request) != nullptr)
        return true;
    const unsigned change = m_changes;
    IMInterface* const found =
        provider != nullptr ? provider->GetResource(static_cast<std::uint32_t>(request.family), request.resourceId,
                                                    static_cast<std::uint32_t>(request.subtype))
                            : nullptr;
    if (change != m_changes)
        return false;
    std::unique_ptr<MScriptResource> object = Make(request, found, m_remote);
    if (!object) {
        m_remote.TraceMessage(QStringLiteral("%1: the host has no such resource").arg(NameOf(request)),
                              QStringLiteral("ERROR"));
        return true;
    }
    dynamic_cast<QObject&>(*object).moveToThread(m_remote.thread());
    object->Attach();
    const bool isWanted = change == m_changes;
    std::vector<Taken> late;
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        (isWanted ? m_taken : late).push_back({request, std::move(object)});
    }
    if (!isWanted)
        LetGoOf(std::move(late));
    return isWanted;
}

MScriptResource* ResourceRoom::Find(const ResourceRequest& request) {
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto found =
        std::find_if(m_taken.begin(), m_taken.end(), [&](const Taken& taken) { return taken.request == request; });
    return found != m_taken.end() ? found->object.get() : nullptr;
}

void ResourceRoom::LetGo() {
    ++m_changes;
    std::vector<Taken> going;
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        going.swap(m_taken);
    }
    m_requests.clear();
    LetGoOf(std::move(going));
}

/// All are cut off before the first is waited for.
void ResourceRoom::LetGoOf(std::vector<Taken> going) {
    for (const Taken& taken : going)
        taken.object->GetLink()->Shut();
    std::vector<std::unique_ptr<MScriptResource>> objects;
    for (Taken& taken : going) {
        if (!taken.object->LetGo())
            m_remote.TraceMessage(QStringLiteral("%1: a call is still inside the host").arg(NameOf(taken.request)),
                                  QStringLiteral("ERROR"));
        objects.push_back(std::move(taken.object));
    }
    m_remote.RetireResources(std::move(objects));
}
