#include "MCalverinScript_Device.h"

#include <QScriptEngine>
#include <QTimerEvent>

#include "DeviceMarshalling.h"
#include "DeviceTexts.h"
#include "EventArguments.h"
#include "HostText.h"
#include "MScriptCommonEvent.h"
#include "MScriptMngRemote.h"

int MCalverinScript_Device::StartTimer(ScriptTimers::Kind kind, const QScriptValue& function, int delayMs) {
    const int id = timers.Start(kind, function, delayMs);
    if (id == 0)
        remote->TraceMessage(NoTimerFor(delayMs), QStringLiteral("ALARM"));
    return id;
}

int MCalverinScript_Device::SlotSetInterval(const QScriptValue& expression, int delay) {
    return StartTimer(ScriptTimers::Kind::Interval, expression, delay);
}

void MCalverinScript_Device::SlotClearInterval(int id) {
    timers.Clear(ScriptTimers::Kind::Interval, id);
}

int MCalverinScript_Device::SlotSetTimeout(const QScriptValue& expression, int delay) {
    return StartTimer(ScriptTimers::Kind::TimeOut, expression, delay);
}

void MCalverinScript_Device::SlotClearTimeout(int id) {
    timers.Clear(ScriptTimers::Kind::TimeOut, id);
}

void MCalverinScript_Device::timerEvent(QTimerEvent* fired) {
    const int id = fired->timerId();
    if (!entrance.IsInside()) {
        FireTimer(id);
    } else {
        timers.Defer(id);
        entrance.Defer();
    }
}

void MCalverinScript_Device::FireDeferredTimers() {
    while (timers.HasDeferred() && !ending)
        FireTimer(*timers.TakeDeferred());
}

void MCalverinScript_Device::FireTimer(int id) {
    const ScriptEntrance::Entry entry(entrance);
    const QScriptValue function = timers.Take(id);
    if (function.isFunction())
        CallScript(function, {});
    CheckUncaught();
}

void MCalverinScript_Device::ClearTimers() {
    timers.ClearAll();
    callbacks.Clear();
}

MyAsyncDeviceExecContext* MCalverinScript_Device::MakeAsyncContext(const QScriptValue& function) {
    if (!function.isFunction())
        return nullptr;
    auto* context = new MyAsyncDeviceExecContext(remote.get(), remote->GetAsyncContexts());
    callbacks.Note(context, function);
    return context;
}

bool MCalverinScript_Device::SlotExecuteCallBack(MyAsyncDeviceExecContext* context) {
    return RunSlot(MarshalledCallTable::kExecuteCallBack, [&] {
        const std::shared_ptr<MyAsyncDeviceExecContext> held = remote->HoldAsyncContext(context);
        if (held == nullptr)
            return true;
        if (const auto call = callbacks.Take(*held)) {
            CallScript(call->function, call->arguments);
            CheckUncaught();
        }
        if (held->IsOver())
            remote->SettleAsyncContext(context);
        return true;
    });
}

void MCalverinScript_Device::DropAsyncResult(MyAsyncDeviceExecContext* context) {
    const std::shared_ptr<MyAsyncDeviceExecContext> held = remote->HoldAsyncContext(context);
    if (held == nullptr)
        return;
    remote->SettleAsyncContext(context);
    PostTask([this, held] {
        const std::lock_guard<std::recursive_mutex> guard(mutex);
        callbacks.Forget(held.get());
    });
}

bool MCalverinScript_Device::SlotExecuteScriptEventCallBack(const QString& name, const MScriptParamList& params,
                                                            MScriptCommonEvent* event) {
    if (ending)
        return false;
    const ScriptEntrance::Entry entry(entrance);
    if (!remote->TakeRaised(event))
        return false;
    event->Lock();
    const QScriptValue listener = event->GetListener(name);
    if (listener.isFunction())
        CallScript(listener, eventArguments->Of(params));
    event->Unlock();
    CheckUncaught();
    return false;
}

unsigned int MCalverinScript_Device::SlotSetPropertyChangeCallback(const QScriptValue& function) {
    if (!function.isFunction())
        return KXP_NOT_IMPLEMENTED;
    callbacks.SetOnChange(function);
    return KXP_OK;
}

void MCalverinScript_Device::PostPropertyChange(const char* object, const char* property, const char* value,
                                                bool objectFollows) {
    if (object == nullptr || property == nullptr || value == nullptr)
        return;
    const QString name = FromHostText(object);
    const QString propertyName = FromHostText(property);
    const QString text = FromHostText(value);
    Q_EMIT SignalOnPropertyChange(name, propertyName, text, objectFollows);
    entrance.Post([=] { SlotOnPropertyChange(name, propertyName, text, objectFollows); });
}

void MCalverinScript_Device::SlotOnPropertyChange(const QString& object, const QString& /*property*/,
                                                  const QString& value, bool /*objectFollows*/) {
    if (ending)
        return;
    const ScriptEntrance::Entry entry(entrance);
    const QScriptValue function = callbacks.GetOnChange();
    if (!function.isFunction())
        return;
    CallScript(function, {QScriptValue(object), QScriptValue(value)});
    CheckUncaught();
}
