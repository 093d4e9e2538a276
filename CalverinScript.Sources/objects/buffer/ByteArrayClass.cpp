#include "ByteArrayClass.h"

#include <utility>

#include <QScriptEngine>
#include <QVariant>

#include "BufferConversion.h"
#include "BufferMemory.h"
#include "BufferText.h"
#include "ByteArrayClassPropertyIterator.h"
#include "ByteArrayPrototype.h"
#include "ScriptFacing.h"
#include "StoppableLoop.h"

namespace {

/// The id under which `length` is asked for; no index has it.
constexpr uint kLengthId = 0xFFFFFFFF;

constexpr int kIgnoredCost = 256; ///< bytes up to which the engine's collector ignores what an object costs

char ByteOfElement(const QScriptValue& element) {
    if (element.isNumber())
        return static_cast<char>(element.toInt32());
    const QByteArray text = element.toString().toUtf8();
    return text.isEmpty() ? '\0' : text.at(0);
}

} // namespace

ByteArrayClass::ByteArrayClass(QScriptEngine* scriptEngine)
    : QObject(scriptEngine)
    , QScriptClass(scriptEngine)
    , m_length(scriptEngine->toStringHandle(QStringLiteral("length")))
    , m_methods(new ScriptFacing<ByteArrayPrototype>(this)) {
    RegisterBufferConversion(scriptEngine);
    m_prototype =
        scriptEngine->newQObject(m_methods, QScriptEngine::QtOwnership,
                                 QScriptEngine::SkipMethodsInEnumeration | QScriptEngine::ExcludeSuperClassMethods |
                                     QScriptEngine::ExcludeSuperClassProperties);
    const QScriptValue object = scriptEngine->globalObject().property(QStringLiteral("Object"));
    m_prototype.setPrototype(object.property(QStringLiteral("prototype")));
    m_constructor = scriptEngine->newFunction(&ScriptFunction<&ByteArrayClass::Construct>, m_prototype);
    for (std::size_t i = 0; i < m_numbers.size(); ++i)
        m_numbers[i] = QScriptValue(scriptEngine, static_cast<int>(i));
    m_constructor.setData(scriptEngine->newVariant(QVariant::fromValue(this)));
}

ByteArrayClass::~ByteArrayClass() = default;

QString ByteArrayClass::name() const {
    return QStringLiteral("Buffer");
}

QScriptValue ByteArrayClass::NewInstance(const QByteArray& bytes) {
    if (bytes.size() > kIgnoredCost)
        engine()->reportAdditionalMemoryCost(bytes.size());
    return engine()->newObject(this, engine()->newVariant(bytes));
}

QScriptValue ByteArrayClass::NewInstance(QScriptContext* context, int size) {
    return WithMemoryFor(context, size, [&] { return NewInstance(QByteArray(qMax(size, 0), '\0')); });
}

QScriptValue ByteArrayClass::Construct(QScriptContext* context, QScriptEngine* /*engine*/) {
    auto* self = qscriptvalue_cast<ByteArrayClass*>(context->callee().data());
    if (self == nullptr)
        return QScriptValue();
    const QScriptValue first = context->argument(0);
    if (const QByteArray* bytes = BytesOf(first))
        return self->NewInstance(*bytes);
    if (first.isString()) {
        const QScriptValue second = context->argument(1);
        const QString encoding = second.isString() ? second.toString() : QString();
        const QString text = first.toString();
        return WithMemoryFor(context, text.size(), [&] { return self->NewInstance(BytesFromText(text, encoding)); });
    }
    if (first.isArray())
        return self->FromArray(context, first);
    return self->NewInstance(context, first.toInt32());
}

QScriptValue ByteArrayClass::FromArray(QScriptContext* context, const QScriptValue& array) {
    const quint32 length = array.property(m_length).toUInt32();
    return WithMemoryFor(context, length, [&] {
        QByteArray bytes(static_cast<int>(length), '\0');
        StoppableLoop loop(engine());
        for (quint32 i = 0; i < length && loop.GoesOn() && !engine()->hasUncaughtException(); ++i)
            bytes[i] = ByteOfElement(array.property(i));
        return NewInstance(bytes);
    });
}

QByteArray* ByteArrayClass::BytesOf(const QScriptValue& value) {
    if (dynamic_cast<ByteArrayClass*>(value.scriptClass()) == nullptr)
        return nullptr;
    return qscriptvalue_cast<QByteArray*>(value.data());
}

QByteArray* ByteArrayClass::Remembered(const QScriptValue& object) {
    const qint64 id = object.objectId();
    for (const Recent& recent : m_recent)
        if (recent.id == id)
            return recent.bytes;
    return Remember(object, id);
}

QByteArray* ByteArrayClass::Remember(const QScriptValue& object, qint64 id) {
    Recent& recent = m_recent.at(m_oldest);
    m_oldest = 1 - m_oldest;
    recent = {object, id, qscriptvalue_cast<QByteArray*>(object.data())};
    return recent.bytes;
}

/// A copy of the data tells the size in a quarter of the time that finding the bytes takes, which pays for the many objects that
/// are asked for their length and then no more.
QScriptValue ByteArrayClass::Length(const QScriptValue& object) {
    const qint64 id = object.objectId();
    if (std::exchange(m_lastMeasured, id) != id) {
        const QVariant data = object.data().toVariant();
        if (data.userType() == QMetaType::QByteArray)
            return QScriptValue(static_cast<const QByteArray*>(data.constData())->size());
    }
    const QByteArray* bytes = Remembered(object);
    return bytes != nullptr ? QScriptValue(bytes->size()) : QScriptValue();
}

bool ByteArrayClass::Resize(QByteArray& bytes, qint64 size) {
    const QScriptValue result = WithMemoryFor(engine()->currentContext(), size, [&] {
        const int before = bytes.size();
        bytes.resize(static_cast<int>(size));
        if (size > before) {
            std::fill(bytes.begin() + before, bytes.end(), '\0');
            engine()->reportAdditionalMemoryCost(static_cast<int>(size) - before);
        }
        return QScriptValue();
    });
    return !result.isValid();
}

QScriptClass::QueryFlags ByteArrayClass::queryProperty(const QScriptValue& object, const QScriptString& name,
                                                       QueryFlags flags, uint* id) {
    bool isIndex = false;
    const quint32 index = name.toArrayIndex(&isIndex);
    if (!isIndex) {
        *id = kLengthId;
        return name == m_length ? flags : QueryFlags();
    }
    const QByteArray* bytes = Remembered(object);
    if (bytes == nullptr)
        return {};
    *id = index;
    if (index >= static_cast<uint>(bytes->size()))
        flags &= ~HandlesReadAccess;
    return flags;
}

QScriptValue ByteArrayClass::property(const QScriptValue& object, const QScriptString& /*name*/, uint id) {
    if (id == kLengthId)
        return Length(object);
    const QByteArray* bytes = Remembered(object);
    if (bytes == nullptr || id >= static_cast<uint>(bytes->size()))
        return QScriptValue();
    return m_numbers[static_cast<uchar>(bytes->at(static_cast<int>(id)))];
}

/// Turning the value into a number may run script, which may change the bytes, so that comes first.
void ByteArrayClass::setProperty(QScriptValue& object, const QScriptString& /*name*/, uint id,
                                 const QScriptValue& value) {
    const qint32 number = value.toInt32();
    QByteArray* bytes = Remembered(object);
    if (bytes == nullptr || (value.isObject() && engine()->hasUncaughtException()))
        return;
    if (id == kLengthId) {
        Resize(*bytes, qMax(number, 0));
        return;
    }
    if (id >= static_cast<uint>(bytes->size()) && !Resize(*bytes, qint64(id) + 1))
        return;
    if (bytes->isDetached())
        bytes->data()[id] = static_cast<char>(number);
    else
        WriteShared(*bytes, id, static_cast<char>(number));
}

/// Bytes that another Buffer shares are copied first.
void ByteArrayClass::WriteShared(QByteArray& bytes, uint index, char value) {
    WithMemoryFor(engine()->currentContext(), bytes.size(), [&] {
        bytes.data()[index] = value;
        return QScriptValue();
    });
}

QScriptValue::PropertyFlags ByteArrayClass::propertyFlags(const QScriptValue& /*object*/, const QScriptString& /*name*/,
                                                          uint id) {
    if (id == kLengthId)
        return QScriptValue::Undeletable | QScriptValue::SkipInEnumeration;
    return QScriptValue::Undeletable;
}

QScriptClassPropertyIterator* ByteArrayClass::newIterator(const QScriptValue& object) {
    return new ByteArrayClassPropertyIterator(object);
}
