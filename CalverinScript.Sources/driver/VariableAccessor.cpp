#include "VariableAccessor.h"

#include <chrono>
#include <cmath>

#include <QScriptContext>
#include <QScriptEngine>

#include "FaceAnswer.h"
#include "HostData.h"
#include "ValueConversion.h"

namespace {

/// How long a replacement waits for a script that is inside the host.
constexpr std::chrono::milliseconds kReplaceWait{200};
/// How long a script waits for a replacement. Longer means that the host waits for the script.
constexpr std::chrono::milliseconds kAccessWait{2000};

constexpr QScriptValue::PropertyFlags kAccessor{int(QScriptValue::PropertyGetter) | int(QScriptValue::PropertySetter)};

} // namespace

/// What the native function of an accessor knows. Written by whoever looks the variable up, read by the script thread.
struct AccessorPool::BoundVariable {
    explicit BoundVariable(AccessorPool& owner)
        : pool(owner) {}
    AccessorPool& pool;
    std::atomic<IData*> data{nullptr};
};

/// One access. It waits while values are replaced, unless it is made inside another one, for which the replacement waits.
class AccessorPool::Visit {
public:
    explicit Visit(AccessorPool& pool)
        : m_pool(pool) {
        std::unique_lock<std::mutex> guard(pool.m_lock);
        m_allowed =
            pool.m_changed.wait_for(guard, kAccessWait, [&pool] { return !pool.m_replacing || pool.m_inside > 0; });
        ++pool.m_inside;
    }
    ~Visit() {
        {
            const std::lock_guard<std::mutex> guard(m_pool.m_lock);
            --m_pool.m_inside;
        }
        m_pool.m_changed.notify_all();
    }
    Visit(const Visit&) = delete;
    Visit& operator=(const Visit&) = delete;
    bool IsAllowed() const { return m_allowed && !m_pool.m_closed.load(std::memory_order_relaxed); }

private:
    AccessorPool& m_pool;
    bool m_allowed = false;
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
            place = std::make_unique<BoundVariable>(*this);
        place->data = data;
        variable = place.get();
    }
    const QScriptValue function = object.engine()->newFunction(&AccessorPool::Access, variable);
    if (!(object.propertyFlags(member, QScriptValue::ResolveLocal) & kAccessor))
        object.setProperty(member, QScriptValue());
    object.setProperty(member, function, kAccessor);
}

void AccessorPool::Rebind(VariableOrigin origin, const std::function<IData*(const QString& name)>& find) {
    const std::lock_guard<std::mutex> guard(m_lock);
    for (auto& entry : m_variables)
        if (entry.first.first == origin)
            entry.second->data = find(entry.first.second);
}

void AccessorPool::Replace(const std::function<void()>& work) {
    {
        std::unique_lock<std::mutex> guard(m_lock);
        m_replacing = true;
        m_changed.wait_for(guard, kReplaceWait, [this] { return m_inside == 0; });
    }
    work();
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_replacing = false;
    }
    m_changed.notify_all();
}

/// Called with one argument to write and without to read.
QScriptValue AccessorPool::Access(QScriptContext* context, QScriptEngine* /*engine*/, void* variable) {
    auto& bound = *static_cast<BoundVariable*>(variable);
    const Visit visit(bound.pool);
    IData* data = bound.data.load(std::memory_order_acquire);
    const bool writes = context->argumentCount() > 0;
    if (data == nullptr || !visit.IsAllowed())
        return writes ? context->argument(0) : QScriptValue(QScriptValue::UndefinedValue);
    if (!writes)
        return ReadHostValue(*data);
    const QScriptValue value = context->argument(0);
    WriteHostValue(*data, value);
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
    const double frames = value.toNumber();
    if (value.isNumber() && std::isfinite(frames) && time != nullptr)
        SetText(data, TimeTextOfFrames(frames, time->GetTimeCodeType()));
}

void WriteDate(IData& data, const QScriptValue& value) {
    const double days = value.toNumber();
    if (value.isString())
        SetText(data, value.toString());
    else if (value.isNumber() && std::isfinite(days) && std::trunc(days) == days)
        SetText(data, DateTextOfDays(days));
}

/// Turning a value into a number or a text may run script. Once that has thrown there is nothing to write.
bool HasFailed(const QScriptValue& value) {
    const QScriptEngine* engine = value.engine();
    return engine != nullptr && engine->hasUncaughtException();
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
