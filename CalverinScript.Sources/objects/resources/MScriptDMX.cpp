#include "MScriptDMX.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "BufferConversion.h"
#include "MScriptParamList.h"

namespace {

int WithinUniverse(int value) {
    return std::clamp(value, 0, int{KXP_DMX_CHANNELS});
}

} // namespace

MScriptDMX::MScriptDMX(ScriptObjectType type, IDMXResource* universe, IScriptObjectOwner* owner)
    : MScriptPort(type, universe, owner) {}

MScriptDMX::~MScriptDMX() {
    MScriptDMX::LetGo();
}

bool MScriptDMX::WriteBlock(const QScriptValue& svData, int iStartChannel, int iChannelCount) {
    if (GetObjectType() != ScriptObjectType::DmxOut || !IsBuffer(svData))
        return false;
    const QByteArray levels = BytesFromBuffer(svData);
    const auto* data = reinterpret_cast<const std::uint8_t*>(levels.constData());
    const int count = std::min(WithinUniverse(iChannelCount), levels.size());
    bool written = false;
    UsePort([&](IDMXResource& universe) {
        written = universe.WriteBlock(data, WithinUniverse(iStartChannel), count, 0) != 0;
    });
    return written;
}

QScriptValue MScriptDMX::ReadBlock(int iStartChannel, int iChannelCount) {
    const auto read = GetObjectType() == ScriptObjectType::DmxIn ? &IDMXResource::ReadInput : &IDMXResource::ReadOutput;
    const int count = WithinUniverse(iChannelCount);
    std::array<std::uint8_t, KXP_DMX_CHANNELS> levels{};
    bool given = false;
    UsePort([&](IDMXResource& universe) {
        given = (universe.*read)(levels.data(), WithinUniverse(iStartChannel), count) != 0;
    });
    if (!given || engine() == nullptr)
        return QScriptValue();
    return BufferFromBytes(engine(), QByteArray(reinterpret_cast<const char*>(levels.data()), count));
}

void MScriptDMX::Open(const QScriptValue& svOpenListener) {
    OpenPort(svOpenListener);
}

void MScriptDMX::Close(const QScriptValue& svCloseListener) {
    ClosePort(svCloseListener);
}

void MScriptDMX::On(const QString& sEvent, const QScriptValue& svListener) {
    Listen(sEvent, svListener);
}

void MScriptDMX::OnData(IDMXResource* resource, const std::uint8_t* data, std::int32_t length,
                        std::uint32_t /*reserved*/) {
    if (!IsMine(resource) || GetObjectType() != ScriptObjectType::DmxIn || data == nullptr || length < 1)
        return;
    QByteArray frame(KXP_DMX_CHANNELS, '\0');
    std::memcpy(frame.data(), data, static_cast<std::size_t>(WithinUniverse(length)));
    MScriptParamList values;
    values.Add(frame);
    Raise("data", values);
}
