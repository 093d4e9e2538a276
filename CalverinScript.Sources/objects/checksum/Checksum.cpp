#include "Checksum.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <numeric>

#include <QScriptEngine>

#include "BufferConversion.h"
#include "BufferMemory.h"
#include "StoppableLoop.h"

struct Checksum::TypeRow {
    const char* name;
    Type type;
    int countOfBytes;
};

constexpr Checksum::TypeRow Checksum::kTypes[] = {{"Sum", Type::Sum, 1},
                                                  {"Xor", Type::Xor, 1},
                                                  {"Or", Type::Or, 1},
                                                  {"Crc16", Type::Crc16, 2},
                                                  {"Crc8", Type::Crc8, 1}};

namespace {

// Tables of the default masks, so that a new object only copies them.
constexpr ReflectedCrc<std::uint16_t> kDefaultCrc16(0xA001);
constexpr ReflectedCrc<std::uint8_t> kDefaultCrc8(0x8C);

/// Bytes that are added without a look at whether the script is to end.
constexpr int kPartBytes = 4096;

QByteArray DataOf(const QScriptValue& value) {
    return value.isString() ? value.toString().toLatin1() : BytesFromBuffer(value);
}

/// Where a result is read as a text that ends with a zero byte.
QByteArray UpToZero(const QByteArray& bytes) {
    const int zero = bytes.indexOf('\0');
    return zero < 0 ? bytes : bytes.left(zero);
}

} // namespace

Checksum::Checksum()
    : m_crc16Table(kDefaultCrc16)
    , m_crc8Table(kDefaultCrc8) {}

void Checksum::Init(const QString& _sChecksumType, int _iCountOfBytes, bool _bTwosComp, bool _bASCIIcoded) {
    SetChecksumType(_sChecksumType);
    if (_iCountOfBytes > 0)
        SetCountOfBytes(_iCountOfBytes);
    SetTwoComplement(_bTwosComp);
    SetAsciiCoded(_bASCIIcoded);
}

void Checksum::SetChecksumType(const QString& _sChecksumType) {
    const auto* row = std::find_if(std::begin(kTypes), std::end(kTypes),
                                   [&](const TypeRow& r) { return _sChecksumType == QLatin1String(r.name); });
    if (row == std::end(kTypes))
        return;
    m_type = row->type;
    m_countOfBytes = row->countOfBytes;
}

void Checksum::SetCRC16InitialValue(int _iCRC16Initial) {
    m_crc16Initial = static_cast<std::uint16_t>(_iCRC16Initial);
    m_crc16 = m_crc16Initial;
}

void Checksum::SetCRC16Mask(int _iCRC16Mask) {
    m_crc16Table = ReflectedCrc<std::uint16_t>(static_cast<std::uint16_t>(_iCRC16Mask));
}

void Checksum::SetCRC8InitialValue(int _iCRC8Initial) {
    m_crc8Initial = static_cast<std::uint8_t>(_iCRC8Initial);
    m_crc8 = m_crc8Initial;
}

void Checksum::SetCRC8Mask(int _iCRC8Mask) {
    m_crc8Table = ReflectedCrc<std::uint8_t>(static_cast<std::uint8_t>(_iCRC8Mask));
}

void Checksum::ResetChecksumToCompute() {
    m_register8 = 0;
    m_register16 = 0;
    m_crc16 = m_crc16Initial;
    m_crc8 = m_crc8Initial;
}

void Checksum::UpdateChecksumToCompute(const QScriptValue& svData) {
    WithMemoryFor(context(), 0, [&] {
        Add(DataOf(svData));
        return QScriptValue();
    });
}

void Checksum::Add(const QByteArray& bytes) {
    StoppableLoop loop(engine());
    for (int begin = 0; begin < bytes.size() && loop.GoesOn(); begin += kPartBytes)
        AddPart(QByteArray::fromRawData(bytes.constData() + begin, qMin(kPartBytes, bytes.size() - begin)));
}

void Checksum::AddPart(const QByteArray& bytes) {
    const auto fold = [&](auto start, auto step) {
        return std::accumulate(bytes.begin(), bytes.end(), start, [&](auto sum, char c) {
            return static_cast<decltype(start)>(step(sum, static_cast<unsigned char>(c)));
        });
    };
    const auto size = static_cast<std::size_t>(bytes.size());
    switch (m_type) {
    case Type::Xor:
        m_register8 = fold(m_register8, std::bit_xor<>());
        break;
    case Type::Or:
        m_register8 = fold(m_register8, std::bit_or<>());
        break;
    case Type::Sum:
        if (m_countOfBytes == 1)
            m_register8 = fold(m_register8, std::plus<>());
        else
            m_register16 = fold(m_register16, std::plus<>());
        break;
    case Type::Crc16:
        m_register16 = m_crc16 = m_crc16Table.Run(m_crc16, bytes.constData(), size);
        break;
    case Type::Crc8:
        m_register8 = m_crc8 = m_crc8Table.Run(m_crc8, bytes.constData(), size);
        break;
    }
}

QScriptValue Checksum::GetComputedChecksum() {
    return BufferFromBytes(engine(), TakeResult());
}

QByteArray Checksum::TakeResult() {
    if (m_countOfBytes == 1) {
        if (m_twosComplement)
            m_register8 = static_cast<std::uint8_t>(-m_register8);
        return Encoded(m_register8, 1);
    }
    if (m_twosComplement)
        m_register16 = static_cast<std::uint16_t>(-m_register16);
    return Encoded(m_register16, 2);
}

/// The low byte first means the whole text backwards when the result is text.
QByteArray Checksum::Encoded(unsigned value, int bytes) const {
    QByteArray result;
    for (int i = bytes - 1; i >= 0; --i)
        result.append(static_cast<char>(value >> static_cast<unsigned>(i * CHAR_BIT)));
    if (m_asciiCoded)
        result = result.toHex().toUpper();
    if (!m_highByteFirst)
        std::reverse(result.begin(), result.end());
    return UpToZero(result);
}

QScriptValue Checksum::ComputeChecksum(const QScriptValue& svData, int iChecksumPos) {
    constexpr int kLongestResult = 4;
    return WithMemoryFor(context(), 0, [&] {
        QByteArray data = DataOf(svData);
        const qint64 size = qint64(qMax(iChecksumPos, data.size())) + kLongestResult;
        if (size > kMaxBufferBytes)
            return RefuseSize(context(), size);
        ResetChecksumToCompute();
        Add(data);
        data.insert(iChecksumPos < 0 ? data.size() : iChecksumPos, TakeResult());
        ResetChecksumToCompute();
        return BufferFromBytes(engine(), data);
    });
}
