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
    : crc16Table(kDefaultCrc16)
    , crc8Table(kDefaultCrc8) {}

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
    type = row->type;
    countOfBytes = row->countOfBytes;
}

void Checksum::SetCRC16InitialValue(int _iCRC16Initial) {
    crc16Initial = static_cast<std::uint16_t>(_iCRC16Initial);
    crc16 = crc16Initial;
}

void Checksum::SetCRC16Mask(int _iCRC16Mask) {
    crc16Table = ReflectedCrc<std::uint16_t>(static_cast<std::uint16_t>(_iCRC16Mask));
}

void Checksum::SetCRC8InitialValue(int _iCRC8Initial) {
    crc8Initial = static_cast<std::uint8_t>(_iCRC8Initial);
    crc8 = crc8Initial;
}

void Checksum::SetCRC8Mask(int _iCRC8Mask) {
    crc8Table = ReflectedCrc<std::uint8_t>(static_cast<std::uint8_t>(_iCRC8Mask));
}

void Checksum::ResetChecksumToCompute() {
    register8 = 0;
    register16 = 0;
    crc16 = crc16Initial;
    crc8 = crc8Initial;
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
    switch (type) {
    case Type::Xor:
        register8 = fold(register8, std::bit_xor<>());
        break;
    case Type::Or:
        register8 = fold(register8, std::bit_or<>());
        break;
    case Type::Sum:
        if (countOfBytes == 1)
            register8 = fold(register8, std::plus<>());
        else
            register16 = fold(register16, std::plus<>());
        break;
    case Type::Crc16:
        register16 = crc16 = crc16Table.Run(crc16, bytes.constData(), size);
        break;
    case Type::Crc8:
        register8 = crc8 = crc8Table.Run(crc8, bytes.constData(), size);
        break;
    }
}

QScriptValue Checksum::GetComputedChecksum() {
    return BufferFromBytes(engine(), TakeResult());
}

QByteArray Checksum::TakeResult() {
    if (countOfBytes == 1) {
        if (twosComplement)
            register8 = static_cast<std::uint8_t>(-register8);
        return Encoded(register8, 1);
    }
    if (twosComplement)
        register16 = static_cast<std::uint16_t>(-register16);
    return Encoded(register16, 2);
}

/// The low byte first means the whole text backwards when the result is text.
QByteArray Checksum::Encoded(unsigned value, int bytes) const {
    QByteArray result;
    for (int i = bytes - 1; i >= 0; --i)
        result.append(static_cast<char>(value >> static_cast<unsigned>(i * CHAR_BIT)));
    if (asciiCoded)
        result = result.toHex().toUpper();
    if (!highByteFirst)
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
