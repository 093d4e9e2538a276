#include "ByteArrayPrototype.h"

#include <algorithm>
#include <cstring>

#include <QScriptEngine>

#include "BufferConversion.h"
#include "BufferMemory.h"
#include "BufferText.h"
#include "ByteArrayClass.h"
#include "StoppableLoop.h"

namespace {

/// A position that scripts give: clamped to the length.
int Within(int position, int length) {
    return qBound(0, position, length);
}

/// The end of a stretch: the length when negative.
int EndWithin(int end, int length) {
    return end < 0 ? length : qMin(end, length);
}

/// The byte for a number or a text; an empty text and a character that is not Latin-1 give zero.
char FillByte(const QScriptValue& value) {
    if (value.isNumber())
        return static_cast<char>(value.toInt32());
    const QString text = value.toString();
    return text.isEmpty() ? '\0' : text.at(0).toLatin1();
}

/// The buffers of an array, in order.
QScriptValueList BuffersOf(const QScriptValue& array) {
    QScriptValueList buffers;
    const quint32 length = array.property(QStringLiteral("length")).toUInt32();
    StoppableLoop loop(array.engine());
    for (quint32 i = 0; i < length && loop.GoesOn(); ++i) {
        const QScriptValue element = array.property(i);
        if (IsBuffer(element))
            buffers.append(element);
    }
    return buffers;
}

qint64 TotalLength(const QScriptValueList& buffers) {
    qint64 total = 0;
    for (const QScriptValue& buffer : buffers)
        total += ByteArrayClass::BytesOf(buffer)->size();
    return total;
}

QByteArray FirstBytes(const QScriptValueList& buffers, int count) {
    QByteArray joined;
    joined.reserve(count);
    for (const QScriptValue& buffer : buffers) {
        const QByteArray* bytes = ByteArrayClass::BytesOf(buffer);
        joined.append(bytes->constData(), qMin(bytes->size(), count - joined.size()));
    }
    return joined;
}

} // namespace

QByteArray* ByteArrayPrototype::Bytes() const {
    return ByteArrayClass::BytesOf(thisObject());
}

QScriptValue ByteArrayPrototype::NewBuffer(const QByteArray& bytes) const {
    return BufferFromBytes(engine(), bytes);
}

QScriptValue ByteArrayPrototype::valueOf() const {
    return thisObject().data();
}

QScriptValue ByteArrayPrototype::toString(const QString& sEncoding, int iStart, int iEnd) const {
    const QByteArray* bytes = Bytes();
    if (bytes == nullptr)
        return QScriptValue(QString());
    const int start = qMax(iStart, 0);
    const int end = qMax(iEnd < 0 ? bytes->size() : iEnd, start);
    return WithMemoryFor(context(), 0, [&] {
        const QByteArray slice = bytes->mid(start, end - start);
        const qint64 longest = LongestText(slice.size(), sEncoding);
        if (!IsTextPossible(longest))
            return RefuseSize(context(), longest);
        return QScriptValue(TextFromBytes(slice, sEncoding));
    });
}

void ByteArrayPrototype::copy(const QScriptValue& svTargetBuffer, int iTargetStart, int iSourceStart,
                              int iSourceEnd) const {
    const QByteArray* source = Bytes();
    QByteArray* target = ByteArrayClass::BytesOf(svTargetBuffer);
    if (source == nullptr || target == nullptr)
        return;
    const int targetStart = qMax(iTargetStart, 0);
    const int sourceEnd = EndWithin(iSourceEnd, source->size());
    const int sourceStart = Within(iSourceStart, sourceEnd);
    if (targetStart >= target->size())
        return;
    const int count = qMin(sourceEnd - sourceStart, target->size() - targetStart);
    WithMemoryFor(context(), target->size(), [&] {
        char* to = target->data() + targetStart;
        const char* from = source->constData() + sourceStart;
        std::memmove(to, from, static_cast<std::size_t>(count));
        return QScriptValue();
    });
}

QScriptValue ByteArrayPrototype::write(const QString& sString, int iOffset, int iLength, const QString& sEncoding) {
    QByteArray* bytes = Bytes();
    if (bytes == nullptr)
        return QScriptValue();
    return WithMemoryFor(context(), qMax(sString.size(), bytes->size()), [&] {
        const QByteArray encoded = BytesFromText(sString, sEncoding);
        const int offset = Within(iOffset, bytes->size());
        const int room = bytes->size() - offset;
        const int count = qMin(EndWithin(iLength, encoded.size()), room);
        std::copy_n(encoded.constData(), count, bytes->data() + offset);
        return QScriptValue(count);
    });
}

QScriptValue ByteArrayPrototype::concat(const QScriptValue& svList, int iTotalLength) const {
    if (!svList.isArray())
        return NewBuffer(QByteArray());
    const QScriptValueList buffers = BuffersOf(svList);
    if (buffers.size() == 1 && svList.property(QStringLiteral("length")).toUInt32() == 1)
        return buffers.first();
    const qint64 total = TotalLength(buffers);
    const qint64 count = iTotalLength < 0 ? total : qMin<qint64>(iTotalLength, total);
    return WithMemoryFor(context(), count, [&] { return NewBuffer(FirstBytes(buffers, static_cast<int>(count))); });
}

void ByteArrayPrototype::fill(const QScriptValue& svValue, int iOffset, int iEnd) {
    QByteArray* bytes = Bytes();
    if (bytes == nullptr || !(svValue.isNumber() || svValue.isString()))
        return;
    const int offset = Within(iOffset, bytes->size());
    const int end = EndWithin(iEnd, bytes->size());
    if (offset >= end)
        return;
    WithMemoryFor(context(), bytes->size(), [&] {
        std::fill(bytes->begin() + offset, bytes->begin() + end, FillByte(svValue));
        return QScriptValue();
    });
}

/// A new Buffer with what cut makes of the bytes.
template <typename Cut>
QScriptValue ByteArrayPrototype::CutOut(Cut cut) const {
    const QByteArray* bytes = Bytes();
    if (bytes == nullptr)
        return QScriptValue();
    return WithMemoryFor(context(), bytes->size(), [&] { return NewBuffer(cut(*bytes)); });
}

QScriptValue ByteArrayPrototype::left(int len) const {
    return CutOut([len](const QByteArray& bytes) { return len < 0 ? bytes : bytes.left(len); });
}

QScriptValue ByteArrayPrototype::middle(int pos, int len) const {
    return CutOut([pos, len](const QByteArray& bytes) { return bytes.mid(qMax(pos, 0), len < 0 ? -1 : len); });
}

QScriptValue ByteArrayPrototype::right(int len) const {
    return CutOut([len](const QByteArray& bytes) { return len < 0 ? bytes : bytes.right(len); });
}
