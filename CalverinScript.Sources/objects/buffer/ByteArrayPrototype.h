#pragma once

#include <QByteArray>
#include <QObject>
#include <QScriptable>
#include <QScriptValue>

/// The methods of a Buffer, called on the script's `this`. Positions and counts are in bytes; out of range they are
/// clamped, and nothing but want of memory throws. On a `this` that is no Buffer they do nothing. Parameter names and
/// defaults are the script interface.   [the engine's thread]
class ByteArrayPrototype : public QObject, public QScriptable {
    Q_OBJECT

public:
    explicit ByteArrayPrototype(QObject* parent)
        : QObject(parent) {}

public Q_SLOTS:
    /// The variant that holds the bytes, not a Buffer.
    QScriptValue valueOf() const;
    /// The bytes from iStart to before iEnd as text; see BufferText.h. A negative iEnd is the length.
    QScriptValue toString(const QString& sEncoding = QStringLiteral("utf8"), int iStart = 0, int iEnd = -1) const;
    /// Copies a stretch over bytes of the target, which never grows. Both may be the same Buffer.
    void copy(const QScriptValue& svTargetBuffer, int iTargetStart = 0, int iSourceStart = 0,
              int iSourceEnd = -1) const;
    /// Writes a text over bytes of this Buffer, which never grows. @return the bytes written.
    QScriptValue write(const QString& sString, int iOffset = 0, int iLength = -1,
                       const QString& sEncoding = QStringLiteral("utf8"));
    /// Joins the Buffers of an array and gives the first iTotalLength bytes. A lone Buffer of an array with one element
    /// is given back itself. Looks at the array alone, never at `this`.
    QScriptValue concat(const QScriptValue& svList, int iTotalLength = -1) const;
    /// Sets the bytes from iOffset to before iEnd to a number, or to the first character of a text.
    void fill(const QScriptValue& svValue, int iOffset = 0, int iEnd = -1);
    QScriptValue left(int len) const;
    QScriptValue middle(int pos, int len = -1) const;
    QScriptValue right(int len) const;

private:
    QByteArray* Bytes() const;
    QScriptValue NewBuffer(const QByteArray& bytes) const;
    template <typename Cut>
    QScriptValue CutOut(Cut cut) const;
};
