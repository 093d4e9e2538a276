#include <memory>
#include <utility>

#include "HostCalls.h"
#include "HTTPClient.h"
#include "IScriptDevice.h"
#include "MDate.h"
#include "MScriptResource.h"
#include "MScriptUDP.h"
#include "MTime.h"
#include "ScriptFacing.h"
#include "StoppableLoop.h"
#include "TCPClient.h"

// Timers, enumerations, dates, times and the factories of objects.

namespace {

constexpr int kDaysOfWeek = 7;

MDate DateOf(const QString& text) {
    MDate date;
    date.SetFromText(ToHostText(text).constData());
    return date;
}

MTime TimeOf(const QString& text, int type) {
    MTime time;
    time.SetType(type);
    time.SetFromText(ToHostText(text).constData());
    return time;
}

} // namespace

int MScriptMngRemote::SetInterval(const QScriptValue& expression, int delay) {
    return m_device != nullptr ? m_device->SetInterval(expression, delay) : -1;
}

void MScriptMngRemote::ClearInterval(int timerId) {
    if (m_device != nullptr)
        m_device->ClearInterval(timerId);
}

int MScriptMngRemote::SetTimeout(const QScriptValue& expression, int delay) {
    return m_device != nullptr ? m_device->SetTimeout(expression, delay) : -1;
}

void MScriptMngRemote::ClearTimeout(int timerId) {
    if (m_device != nullptr)
        m_device->ClearTimeout(timerId);
}

int MScriptMngRemote::EnumStringToIndex(const QScriptValue& Items, const QString& sItem) {
    if (!Items.isArray())
        return -1;
    const quint32 length = Items.property(QStringLiteral("length")).toUInt32();
    StoppableLoop loop(Items.engine());
    for (quint32 i = 0; i < length && loop.GoesOn(); ++i)
        if (Items.property(i).toString() == sItem)
            return static_cast<int>(i);
    return -1;
}

int MScriptMngRemote::DateStringToDay(const QString& sDate) {
    return DateOf(sDate).GetDay();
}

int MScriptMngRemote::DateStringToMonth(const QString& sDate) {
    return DateOf(sDate).GetMonth();
}

int MScriptMngRemote::DateStringToYear(const QString& sDate) {
    return DateOf(sDate).GetYear();
}

/// The calendar counts from Monday 0, scripts from Sunday 1.
int MScriptMngRemote::DateStringToDayOfWeekAsNumber(const QString& sDate) {
    return (DateOf(sDate).GetWeekday() + 1) % kDaysOfWeek + 1;
}

int MScriptMngRemote::TimeStringToHours(const QString& sTime, int iTimeCodeType) {
    return TimeOf(sTime, iTimeCodeType).GetHours();
}

int MScriptMngRemote::TimeStringToMinutes(const QString& sTime, int iTimeCodeType) {
    return TimeOf(sTime, iTimeCodeType).GetMinutes();
}

int MScriptMngRemote::TimeStringToSeconds(const QString& sTime, int iTimeCodeType) {
    return TimeOf(sTime, iTimeCodeType).GetSeconds();
}

int MScriptMngRemote::TimeStringToFrames(const QString& sTime, int iTimeCodeType) {
    return TimeOf(sTime, iTimeCodeType).GetFrames();
}

/// Without a device a script is only looked at: its objects are there and stay idle.
template <typename Object>
QScriptValue MScriptMngRemote::Create() {
    if (m_engine == nullptr)
        return QScriptValue();
    auto object = std::make_unique<ScriptFacing<Object>>(m_device != nullptr ? this : nullptr);
    const QScriptValue view = object->ToScript(*m_engine);
    m_eventSources.Own(std::move(object));
    return view;
}

QScriptValue MScriptMngRemote::CreateSocket(const QString& sType) {
    return sType == QLatin1String("udp4") ? Create<MScriptUDP>() : Create<TCPClient>();
}

QScriptValue MScriptMngRemote::CreateHTTPClient() {
    return Create<HTTPClient>();
}

QScriptValue MScriptMngRemote::GetResource(const QScriptValue& svSignature) {
    MScriptResource* const resource =
        m_engine != nullptr && m_device != nullptr ? m_device->FindResource(svSignature) : nullptr;
    if (resource == nullptr)
        return QScriptValue();
    if (m_eventSources.Borrow(*resource)) {
        resource->ForgetState();
        m_takenResources.Add(*resource);
    }
    return resource->GetView(*m_engine);
}
