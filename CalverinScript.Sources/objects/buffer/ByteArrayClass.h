#pragma once

#include <array>

#include <QByteArray>
#include <QMetaType>
#include <QObject>
#include <QScriptClass>
#include <QScriptString>
#include <QScriptValue>

Q_DECLARE_METATYPE(QByteArray*)

class ByteArrayPrototype;
class QScriptContext;

/// The script class of `Buffer`, the byte array of the script world: `b[3]` and `b.length` work like an array's.
///
/// An instance is a script object of this class whose data is a variant with one QByteArray. The bytes belong to that
/// variant and are changed in place, so all references to the object see it. One class object serves one engine.
///
/// Element access remembers the two objects that it last looked at, and keeps those two alive for it: finding the bytes
/// of an object costs more than the access. All on the engine's thread.
class ByteArrayClass : public QObject, public QScriptClass {
    Q_OBJECT

public:
    /// Makes the class and registers the conversions of QByteArray with the engine, which owns the class.
    explicit ByteArrayClass(QScriptEngine* scriptEngine);
    ~ByteArrayClass() override;

    /// The function that scripts know as `Buffer`.
    QScriptValue Constructor() const { return m_constructor; }
    /// A new object with these bytes. @throw std::bad_alloc
    QScriptValue NewInstance(const QByteArray& bytes);
    /// A new object with so many zero bytes; none for a negative
    /// size. @return the script error when they cannot be had.
    QScriptValue NewInstance(QScriptContext* context, int size);

    /// The bytes of a Buffer, to be changed in place, valid while the object lives.
    /// @return null for any other value.
    static QByteArray* BytesOf(const QScriptValue& value);

    QueryFlags queryProperty(const QScriptValue& object, const QScriptString& name, QueryFlags flags,
                             uint* id) override;
    QScriptValue property(const QScriptValue& object, const QScriptString& name, uint id) override;
    void setProperty(QScriptValue& object, const QScriptString& name, uint id, const QScriptValue& value) override;
    QScriptValue::PropertyFlags propertyFlags(const QScriptValue& object, const QScriptString& name, uint id) override;
    QScriptClassPropertyIterator* newIterator(const QScriptValue& object) override;
    QScriptValue prototype() const override { return m_prototype; }
    QString name() const override;

private:
    /// An object that was looked at lately. It is kept alive, so
    /// that its bytes stay where they are and its id stays unique.
    struct Recent {
        QScriptValue object;
        qint64 id = -1;
        QByteArray* bytes = nullptr;
    };

    static QScriptValue Construct(QScriptContext* context, QScriptEngine* engine);
    QScriptValue FromArray(QScriptContext* context, const QScriptValue& array);
    QByteArray* Remembered(const QScriptValue& object);
    QByteArray* Remember(const QScriptValue& object, qint64 id);
    QScriptValue Length(const QScriptValue& object);
    bool Resize(QByteArray& bytes, qint64 size);
    void WriteShared(QByteArray& bytes, uint index, char value);

    const QScriptString m_length;
    ByteArrayPrototype* const m_methods; ///< child of the class
    QScriptValue m_prototype;            ///< its wrapper
    QScriptValue m_constructor;

    std::array<QScriptValue, 256> m_numbers; ///< of each byte, since copying a value is cheaper than making one
    std::array<Recent, 2> m_recent;          ///< a loop looks at one object or goes between two
    std::size_t m_oldest = 0;                ///< the one of the two that makes room next
    qint64 m_lastMeasured = -1;              ///< id of the object whose length was asked for last; it may have gone
};
