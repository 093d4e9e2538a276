#include "VariableAccessor.h"

#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include <QScriptContext>
#include <QScriptEngine>

#include "FaceAnswer.h"
#include "HostData.h"
#include "ScriptFacing.h"
#include "ValueConversion.h"
#include "ValueFit.h"

namespace {

constexpr QScriptValue::PropertyFlags kAccessor{int(QScriptValue::PropertyGetter) | int(QScriptValue::PropertySetter)};

/// Turning a value into a number or a text may run script. Once that has thrown there is nothing to write.
bool HasFailed(const QScriptValue& value) {
    const QScriptEngine* engine = value.engine();
    return engine != nullptr && engine->hasUncaughtException();
}

/// An object as the plain value that a type of variable takes; times and dates take none. May run script.
QScriptValue PlainValueFor(std::uint32_t type, const QScriptValue& object) {
    switch (type) {
    case KXP_INTEGER_DATA:
    case KXP_ENUM_DATA:
        return QScriptValue(object.toInt32());
    case KXP_REAL_DATA:
        return QScriptValue(object.toNumber());
    case KXP_TIME_DATA:
    case KXP_DATE_DATA:
        return object;
    default:
        return QScriptValue(object.toString());
    }
}

} // namespace

/// What the native function of an accessor knows. Written by whoever looks the variable up, read by the script thread.
struct AccessorPool::BoundVariable {
    BoundVariable(AccessorPool& owner, QString variableName)
        : pool(owner)
        , name(std::move(variableName)) {}

    QScriptValue Read() {
        QScriptValue value(QScriptValue::UndefinedValue);
        Visit([&](IData& host) { value = ReadHostValue(host); });
        return value;
    }
    void Write(const QScriptValue& value) {
        Visit([&](IData& host) { WriteHostValue(host, value); });
    }
    /// Tells of a text that the variable has dropped, and of a number that is none. A new visit: while the host took the value it
    /// may have replaced what the variable stands for.
    void TellMisfit(const QScriptValue& value) {
        const bool isSuspect = value.isString() || (value.isNumber() && !std::isfinite(value.toNumber()));
        if (!isSuspect || !pool.m_tellMisfit)
            return;
        QString why;
        const QString text = value.toString();
        Visit([&](IData& host) { why = WhyMisfit(host, text); });
        if (!why.isEmpty())
            pool.m_tellMisfit(name, text, why);
    }
    std::optional<std::uint32_t> Type() {
        std::optional<std::uint32_t> type;
        Visit([&](IData& host) { type = host.GetDataType(); });
        return type;
    }

    AccessorPool& pool;
    const QString name;
    std::atomic<IData*> data{nullptr};

private:
    /// Does work on the host's value, unless there is none or it must not be touched.
    template <typename Work>
    void Visit(Work work) {
        const VisitGate::Visit visit(pool.m_gate);
        IData* host = data.load(std::memory_order_acquire);
        if (host != nullptr && visit.IsAllowed() && !pool.m_closed.load(std::memory_order_relaxed))
            work(*host);
    }
};

AccessorPool::AccessorPool(const std::atomic<bool>& closed)
    : m_closed(closed) {}

AccessorPool::~AccessorPool() = default;

void AccessorPool::Bind(QScriptValue& object, const QString& member, VariableOrigin origin, const QString& name,
                        IData* data) {
    BoundVariable* variable = nullptr;
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        std::unique_ptr<BoundVariable>& place = m_variables[{origin, name}];
        if (place == nullptr)
            place = std::make_unique<BoundVariable>(*this, name);
        place->data = data;
        variable = place.get();
    }
    const QScriptValue function = object.engine()->newFunction(&ScriptFunction<&AccessorPool::Access, void*>, variable);
    if (!(object.propertyFlags(member, QScriptValue::ResolveLocal) & kAccessor))
        object.setProperty(member, QScriptValue());
    object.setProperty(member, function, kAccessor);
}

/// Asks the host without the lock. It may replace its values from inside, and what it gives then is not kept: the newer
/// call has looked everything up.
void AccessorPool::Rebind(VariableOrigin origin, const std::function<IData*(const QString& name)>& find) {
    std::vector<std::pair<QString, BoundVariable*>> known;
    unsigned number = 0;
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        number = ++m_rebinds[origin];
        for (const auto& [key, variable] : m_variables)
            if (key.first == origin)
                known.emplace_back(key.second, variable.get());
    }
    for (const auto& [name, variable] : known) {
        IData* const found = find(name);
        const std::lock_guard<std::mutex> guard(m_lock);
        if (number != m_rebinds[origin])
            return;
        variable->data = found;
    }
}

/// Called with one argument to write and without to read. What a value means for the type may run script, which may do
/// anything, so that is found out outside the host's value.
QScriptValue AccessorPool::Access(QScriptContext* context, QScriptEngine* /*engine*/, void* variable) {
    auto& bound = *static_cast<BoundVariable*>(variable);
    if (context->argumentCount() == 0)
        return bound.Read();
    const QScriptValue value = context->argument(0);
    if (!value.isObject()) {
        bound.Write(value);
        bound.TellMisfit(value);
    } else if (const std::optional<std::uint32_t> type = bound.Type()) {
        const QScriptValue plain = PlainValueFor(*type, value);
        if (!plain.isObject() && !HasFailed(value))
            bound.Write(plain);
    }
    return value;
}

QScriptValue ReadHostValue(IData& data) {
    switch (data.GetDataType()) {
    case KXP_INTEGER_DATA:
    case KXP_ENUM_DATA:
        return QScriptValue(data.GetIntValue());
    case KXP_REAL_DATA:
        return QScriptValue(data.GetRealValue());
    default:
        return QScriptValue(TextOf(data));
    }
}

namespace {

void WriteTime(IData& data, const QScriptValue& value) {
    if (value.isString()) {
        SetText(data, value.toString());
        return;
    }
    auto* time = QueryFace<ITimeData>(&data, "ITimeData");
    const double frames = value.isNumber() ? value.toNumber() : std::nan("");
    if (std::isfinite(frames) && time != nullptr)
        SetText(data, TimeTextOfFrames(frames, time->GetTimeCodeType()));
}

void WriteDate(IData& data, const QScriptValue& value) {
    const double days = value.isNumber() ? value.toNumber() : std::nan("");
    if (value.isString())
        SetText(data, value.toString());
    else if (std::isfinite(days) && std::trunc(days) == days)
        SetText(data, DateTextOfDays(days));
}

void WriteText(IData& data, const QScriptValue& value) {
    const QString text = value.toString();
    if (!HasFailed(value))
        SetText(data, text);
}

void WriteWholeNumber(IData& data, const QScriptValue& value) {
    const qint32 number = value.toInt32();
    if (!HasFailed(value))
        data.SetIntValue(number, 0, 0);
}

void WriteNumber(IData& data, const QScriptValue& value) {
    const double number = value.toNumber();
    if (!HasFailed(value) && std::isfinite(number))
        data.SetRealValue(number, 0, 0);
}

} // namespace

void WriteHostValue(IData& data, const QScriptValue& value) {
    const std::uint32_t type = data.GetDataType();
    if (type == KXP_TIME_DATA)
        WriteTime(data, value);
    else if (type == KXP_DATE_DATA)
        WriteDate(data, value);
    else if (value.isString())
        SetText(data, value.toString());
    else if (type == KXP_INTEGER_DATA || type == KXP_ENUM_DATA)
        WriteWholeNumber(data, value);
    else if (type == KXP_REAL_DATA)
        WriteNumber(data, value);
    else
        WriteText(data, value);
}
