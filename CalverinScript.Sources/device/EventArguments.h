#pragma once

#include <initializer_list>

#include <QByteArray>
#include <QScriptString>
#include <QScriptValue>

class ByteArrayClass;
class MScriptParamList;
class QScriptEngine;
class QVariant;

/// Makes the values of events into the arguments of their listeners, for one engine. Names of properties and what is
/// mostly the same from one event to the next are kept, since floods of events come this way.   [all: script]
class EventArguments {
public:
    /// @param scriptEngine borrowed; its classes are installed already.
    explicit EventArguments(QScriptEngine& scriptEngine);

    /// Bytes become a Buffer, records plain objects, the object that raised the event what its factory gave. Values
    /// of kinds that are not in the table add nothing, so later ones move up.
    QScriptValueList Of(const MScriptParamList& params);

private:
    struct Kind;
    static const Kind kKinds[];

    /// One property of a record.
    struct Member {
        const QScriptString& name;
        QScriptValue value;
    };

    static const Kind* KindOf(const QVariant& value);
    QScriptValue Record(std::initializer_list<Member> members);
    QScriptValue Buffer(const QByteArray& bytes);
    QScriptValue AddressText(const QString& text);
    QScriptValue FromBytes(const QVariant& value);
    QScriptValue FromBool(const QVariant& value);
    QScriptValue FromInt(const QVariant& value);
    QScriptValue FromAddress(const QVariant& value);
    QScriptValue FromSocketError(const QVariant& value);
    QScriptValue FromResponse(const QVariant& value);

    QScriptEngine& m_engine;
    const QScriptValue m_global;
    const QScriptString m_bufferName, m_port, m_address, m_errorCode, m_errorText, m_data, m_statusCode, m_headers;

    const QScriptValue m_ownBuffer;  ///< the function `Buffer` as it was installed
    ByteArrayClass* const m_buffers; ///< its class, owned by the engine
    QString m_lastAddress;           ///< the text of the next
    QScriptValue m_lastAddressText;  ///< invalid at first
};
