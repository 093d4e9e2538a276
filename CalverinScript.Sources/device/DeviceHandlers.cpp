#include "MCalverinScript_Device.h"

#include <utility>

#include <QTimerEvent>

#include "HostText.h"
#include "MScriptThread.h"
#include "RunWithinMemory.h"
#include "ScriptHandlers.h"

void MCalverinScript_Device::OnScriptThreadStarted(MScriptThread* thread) {
    crossing.OnThreadStarted(thread);
}

void MCalverinScript_Device::OnScriptThreadEnding() {
    handlers->ClearAll();
    crossing.OnThreadEnding(*this);
}

int MCalverinScript_Device::PostScriptEvent(const QString& name, const MScriptParamList* params,
                                            MScriptCommonEvent* event) {
    if (params != nullptr && event != nullptr)
        PostScriptEvents(name, {*params}, event);
    return 1;
}

void MCalverinScript_Device::PostScriptEvents(const QString& name, std::vector<MScriptParamList> events,
                                              MScriptCommonEvent* event) {
    for (const MScriptParamList& params : events)
        Q_EMIT SignalExecuteScriptEventCallBack(name, params, event);
    PostTask([this, name, events = std::move(events), event] {
        for (const MScriptParamList& params : events)
            SlotExecuteScriptEventCallBack(name, params, event);
    });
}

bool MCalverinScript_Device::SlotExecuteScriptEventCallBack(const QString& name, const MScriptParamList& params,
                                                            MScriptCommonEvent* event) {
    handlers->OnEvent(name, params, event);
    return false;
}

void MCalverinScript_Device::PostPropertyChange(const char* object, const char* property, const char* value,
                                                bool objectFollows) {
    if (object == nullptr || property == nullptr || value == nullptr)
        return;
    if (!RunWithinMemory([&] { TakePropertyChange(object, property, value, objectFollows); }))
        TellWantOfMemory("a change");
}

void MCalverinScript_Device::TakePropertyChange(const char* object, const char* property, const char* value,
                                                bool objectFollows) {
    QString name = FromHostText(object);
    QString propertyName = FromHostText(property);
    QString text = FromHostText(value);
    const std::uint64_t bytes = (name.size() + propertyName.size() + text.size()) * sizeof(QChar);
    if (!handlers->NoteChange(bytes))
        return;
    Q_EMIT SignalOnPropertyChange(name, propertyName, text, objectFollows);
    PostTask([this, bytes, objectFollows, name = std::move(name), propertyName = std::move(propertyName),
              text = std::move(text)] {
        handlers->ForgetChange(bytes);
        SlotOnPropertyChange(name, propertyName, text, objectFollows);
    });
}

void MCalverinScript_Device::SlotOnPropertyChange(const QString& object, const QString& /*property*/,
                                                  const QString& value, bool /*objectFollows*/) {
    handlers->OnChange(object, value);
}

unsigned int MCalverinScript_Device::SlotSetPropertyChangeCallback(const QScriptValue& function) {
    if (!function.isFunction())
        return KXP_NOT_IMPLEMENTED;
    handlers->SetOnChange(function);
    return KXP_OK;
}

int MCalverinScript_Device::SlotSetInterval(const QScriptValue& expression, int delay) {
    return handlers->StartTimer(ScriptTimers::Kind::Interval, expression, delay);
}

void MCalverinScript_Device::SlotClearInterval(int id) {
    handlers->ClearTimer(ScriptTimers::Kind::Interval, id);
}

int MCalverinScript_Device::SlotSetTimeout(const QScriptValue& expression, int delay) {
    return handlers->StartTimer(ScriptTimers::Kind::TimeOut, expression, delay);
}

void MCalverinScript_Device::SlotClearTimeout(int id) {
    handlers->ClearTimer(ScriptTimers::Kind::TimeOut, id);
}

void MCalverinScript_Device::timerEvent(QTimerEvent* fired) {
    if (!RunWithinMemory([&] { handlers->OnTimer(fired->timerId()); }))
        TellWantOfMemory("a timer");
}

MyAsyncDeviceExecContext* MCalverinScript_Device::MakeAsyncContext(const QScriptValue& function) {
    return handlers->MakeRequest(function);
}

void MCalverinScript_Device::ForgetAsyncContext(MyAsyncDeviceExecContext* context) {
    handlers->ForgetRequest(context);
}

void MCalverinScript_Device::DropAsyncResult(MyAsyncDeviceExecContext* context) {
    handlers->DropAnswer(context);
}
