#include "MScriptIOChannel.h"

#include "IScriptObjectOwner.h"
#include "MScriptParamList.h"

namespace {

IIOResource* ResourceOf(IIOResourceChannel* channel) {
    return channel != nullptr ? channel->GetResource() : nullptr;
}

} // namespace

MScriptIOChannel::MScriptIOChannel(ScriptObjectType type, IIOResourceChannel* channel, IScriptObjectOwner* owner)
    : MScriptResource(type, ResourceOf(channel), owner)
    , m_channel(channel)
    , m_resource(ResourceOf(channel)) {
    if (channel == nullptr)
        GetLink()->Shut();
}

MScriptIOChannel::~MScriptIOChannel() {
    MScriptIOChannel::LetGo();
}

void MScriptIOChannel::Attach() {
    GetLink()->Use([this] { m_channel->AddHandler(this); });
}

bool MScriptIOChannel::LetGo() {
    return LetGoOnce([this] {
        if (m_channel != nullptr)
            m_channel->RemoveHandler(this);
        if (m_isHandler)
            m_resource->Close(this);
    });
}

bool MScriptIOChannel::SetValue(int iValue, bool bFlush) {
    bool taken = false;
    if (!GetLink()->Use([&] { taken = m_channel->SetValue(iValue) != 0; }))
        return false;
    if (bFlush && Owner() != nullptr)
        Owner()->FlushChannels();
    return taken;
}

int MScriptIOChannel::GetValue() {
    int value = 0;
    GetLink()->Use([&] { value = m_channel->GetValue(); });
    return value;
}

void MScriptIOChannel::Open(const QScriptValue& svOpenListener) {
    Listen(QStringLiteral("open"), svOpenListener);
    if (m_resource == nullptr)
        return;
    const auto open = [this] {
        m_isHandler = true;
        m_resource->Open(this);
    };
    OpenUnlessLetGo(open, [this] { m_resource->Close(this); });
}

void MScriptIOChannel::Close(const QScriptValue& svCloseListener) {
    Listen(QStringLiteral("close"), svCloseListener);
    if (m_resource == nullptr)
        return;
    GetLink()->Use([this] {
        m_resource->Close(this);
        m_isHandler = false;
    });
}

void MScriptIOChannel::On(const QString& sEvent, const QScriptValue& svListener) {
    Listen(sEvent, svListener);
}

void MScriptIOChannel::OnValueChanged(IIOResourceChannel* channel, std::int32_t value, std::uint32_t /*reserved*/) {
    if (channel != m_channel || Owner() == nullptr)
        return;
    MScriptParamList values;
    values.Add(int{value});
    Raise("data", values);
}

KXPCode MScriptIOChannel::Reserved2(void* /*argument1*/, void* /*argument2*/, void* /*argument3*/,
                                    void* /*argument4*/) {
    return KXP_OK;
}

const char* MScriptIOChannel::GetOwnerName(IIOResourceChannel* channel) {
    return channel == m_channel ? OwnerName() : "";
}

KXPCode MScriptIOChannel::QueryInterface(const char* name, void** out) {
    return AnswerHandler(name, out, this, "IIOResourceChannelHandler", static_cast<IIOResourceChannelHandler*>(this));
}

KXPCode MScriptIOChannel::Reserved4(void* /*argument1*/, void* /*argument2*/, void* /*argument3*/,
                                    void* /*argument4*/) {
    return KXP_OK;
}
