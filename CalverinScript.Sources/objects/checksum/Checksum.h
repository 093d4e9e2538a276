#pragma once

#include <cstdint>

#include <QByteArray>
#include <QObject>
#include <QScriptable>
#include <QScriptValue>

#include "ReflectedCrc.h"

/// The script class `Checksum`: a sum, XOR, OR or CRC over a Buffer or a text, in one go or block by block, as a Buffer of one or
/// two bytes, raw or as hexadecimal text.
///
/// Data is a text, one byte for each character (Latin-1), or a Buffer; any other value is no data. Bad data and unknown names have
/// no effect. Method and parameter names and defaults are the script interface.   [the engine's thread]
class Checksum : public QObject, public QScriptable {
    Q_OBJECT

public:
    Checksum();

    /// Sets the type and both flags, and the count of bytes when it is above 0. The registers stay as they are.
    Q_INVOKABLE void Init(const QString& _sChecksumType = QStringLiteral("Sum"), int _iCountOfBytes = 0,
                          bool _bTwosComp = false, bool _bASCIIcoded = false);
    /// "Sum", "Xor", "Or", "Crc16" or "Crc8", exactly. Sets the type's own count of bytes too.
    Q_INVOKABLE void SetChecksumType(const QString& _sChecksumType = QStringLiteral("Sum"));
    /// 1 gives the 8-bit register, anything else the 16-bit one, whichever of them the type writes.
    Q_INVOKABLE void SetCountOfBytes(int _iCountOfBytes) { m_countOfBytes = _iCountOfBytes; }
    Q_INVOKABLE void SetTwoComplement(bool _bTwosComp) { m_twosComplement = _bTwosComp; }
    Q_INVOKABLE void SetAsciiCoded(bool _bASCIIcoded) { m_asciiCoded = _bASCIIcoded; }
    Q_INVOKABLE void SetHighByteFirst(bool _bHighByte) { m_highByteFirst = _bHighByte; }
    Q_INVOKABLE void SetCRC16InitialValue(int _iCRC16Initial = 0);
    /// The polynomial as a right-shifting register uses it: 0xA001 stands for 0x8005.
    Q_INVOKABLE void SetCRC16Mask(int _iCRC16Mask = 0xA001);
    Q_INVOKABLE void SetCRC8InitialValue(int _iCRC8Initial = 255);
    Q_INVOKABLE void SetCRC8Mask(int _iCRC8Mask = 0x8C);
    /// Clears the registers and starts the CRCs at their initial values.
    Q_INVOKABLE void ResetChecksumToCompute();
    Q_INVOKABLE void UpdateChecksumToCompute(const QScriptValue& svData);
    /// The result so far as a new Buffer. A raw result ends before its first zero byte. Two's complement negates the register
    /// itself, so a second call negates it back.
    Q_INVOKABLE QScriptValue GetComputedChecksum();
    /// A new Buffer: the data with its checksum inserted at a position, at the end when that is negative. The registers are reset
    /// before and after.
    Q_INVOKABLE QScriptValue ComputeChecksum(const QScriptValue& svData, int iChecksumPos = -1);

private:
    enum class Type { Sum = 0, Xor = 1, Crc16 = 2, Or = 3, Crc8 = 6 };
    struct TypeRow;
    static const TypeRow kTypes[];

    void Add(const QByteArray& bytes);
    void AddPart(const QByteArray& bytes);
    QByteArray TakeResult();
    QByteArray Encoded(unsigned value, int bytes) const;

    Type m_type = Type::Sum;
    int m_countOfBytes = 1;
    bool m_twosComplement = false;
    bool m_asciiCoded = false;
    bool m_highByteFirst = true;
    std::uint8_t m_register8 = 0;
    std::uint16_t m_register16 = 0;
    std::uint16_t m_crc16Initial = 0;
    std::uint16_t m_crc16 = 0;
    ReflectedCrc<std::uint16_t> m_crc16Table;
    std::uint8_t m_crc8Initial = 255;
    std::uint8_t m_crc8 = 255;
    ReflectedCrc<std::uint8_t> m_crc8Table;
};
