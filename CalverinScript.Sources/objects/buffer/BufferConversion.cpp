#include "BufferConversion.h"

#include <new>

#include <QScriptEngine>

#include "BufferMemory.h"
#include "ByteArrayClass.h"

namespace {

QScriptValue ToScript(QScriptEngine* engine, const QByteArray& bytes) {
    return BufferFromBytes(engine, bytes);
}

void FromScript(const QScriptValue& value, QByteArray& bytes) {
    bytes = BytesFromBuffer(value);
}

} // namespace

bool IsBuffer(const QScriptValue& value) {
    return dynamic_cast<ByteArrayClass*>(value.scriptClass()) != nullptr;
}

QScriptValue BufferFromBytes(QScriptEngine* engine, const QByteArray& bytes) {
    const QScriptValue constructor = engine->globalObject().property(QStringLiteral("Buffer"));
    auto* buffers = qscriptvalue_cast<ByteArrayClass*>(constructor.data());
    return buffers != nullptr ? buffers->NewInstance(bytes) : engine->newVariant(bytes);
}

QByteArray BytesFromBuffer(const QScriptValue& value) {
    return value.data().toVariant().toByteArray();
}

void RegisterBufferConversion(QScriptEngine* engine) {
    qRegisterMetaType<QByteArray*>("QByteArray*");
    qRegisterMetaType<ByteArrayClass*>("ByteArrayClass*");
    qScriptRegisterMetaType<QByteArray>(engine, &ToScript, &FromScript);
}
