#include "ScriptScan.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <QScriptEngine>
#include <QScriptValueIterator>

#include "DriverTables.h"
#include "EnumHelpers.h"
#include "HostData.h"
#include "HostText.h"
#include "ScriptInfo.h"
#include "ScriptMembers.h"
#include "VariableAccessor.h"

namespace {

/// A name that a host can carry: there is one, it has no control characters, and in 8-bit text nothing of it is lost.
bool IsHostName(const QString& name) {
    const bool isPrintable =
        std::none_of(name.begin(), name.end(), [](QChar c) { return c.category() == QChar::Other_Control; });
    return !name.isEmpty() && isPrintable && FromHostText(ToHostText(name).constData()) == name;
}

bool IsPublishedFunction(const ScriptMember& member) {
    return member.value.isFunction() && !member.name.startsWith(QLatin1Char('_')) && IsHostName(member.name);
}

/// What stands between the first "(" and the next ")".
QString ParameterText(const QString& sourceText) {
    const int open = sourceText.indexOf(QLatin1Char('('));
    const int close = sourceText.indexOf(QLatin1Char(')'), open + 1);
    return open >= 0 && close >= 0 ? sourceText.mid(open + 1, close - open - 1) : QString();
}

bool IsWhole32(double number) {
    return std::trunc(number) == number && number >= std::numeric_limits<std::int32_t>::min() &&
           number <= std::numeric_limits<std::int32_t>::max();
}

/// Type, kind and text of a plain value. @return false for values
/// that have no type: truth values, numbers that are none.
template <typename Record>
bool TakePlainValue(const QScriptValue& value, Record& record, QString* valueType) {
    const char* kind = nullptr;
    if (value.isNumber() && IsWhole32(value.toNumber())) {
        kind = "Integer";
        record.value = QString::number(value.toInt32());
    } else if (value.isNumber() && std::isfinite(value.toNumber())) {
        kind = "Real";
        record.value = QString::number(value.toNumber(), 'g', std::numeric_limits<double>::digits10);
    } else if (value.isString()) {
        kind = "String";
        record.value = value.toString();
    }
    if (kind == nullptr)
        return false;
    if (valueType != nullptr)
        *valueType = QLatin1String(kind);
    record.type = QLatin1String(kind) + QLatin1String("Data");
    return true;
}

class Scan {
public:
    explicit Scan(const ScanRequest& request)
        : m_request(request) {}

    ScanResult Run() {
        const QScriptValue info = FindInfo(m_request.published);
        if (m_request.stopMode)
            m_result.removeDefaults = ReadInfoOptions(info);
        for (const ScriptMember& member : MembersOf(m_request.published))
            if (m_request.hiddenNames == nullptr || !m_request.hiddenNames->contains(member.name))
                TakeTopLevel(member);
        if (m_request.stopMode)
            ApplyInfo(info, m_result);
        return std::move(m_result);
    }

private:
    void TakeTopLevel(const ScriptMember& member) {
        PublishGroup group = PublishGroup::Host;
        if (IsPublishedFunction(member)) {
            m_result.functions.push_back(CommandFromFunction(member.name, ScriptText(member.value)));
        } else if (member.value.isObject() && !member.value.isFunction() && FindPublishGroup(member.name, group)) {
            const QVector<ScriptMember> members = MembersOf(member.value);
            if (!m_request.stopMode && m_request.enumHelpers != nullptr && member.name == QLatin1String("Device"))
                m_request.enumHelpers->Install(member.value);
            for (const ScriptMember& inner : members)
                TakeMember(group, member.value, inner);
        }
    }

    void TakeMember(PublishGroup group, const QScriptValue& object, const ScriptMember& member) {
        if (member.value.isNull() || member.value.isFunction())
            return;
        if (group == PublishGroup::Setup)
            TakeSetting(member);
        else if (member.value.isObject())
            TakeObject(member);
        else if (group == PublishGroup::Host)
            BindMember(object, member.name, VariableOrigin::Host, member.name);
        else
            TakeDeviceMember(object, member);
    }

    void TakeObject(const ScriptMember& object) {
        for (const ScriptMember& inner : MembersOf(object.value))
            if (!inner.value.isNull() && !inner.value.isFunction())
                BindMember(object.value, inner.name, VariableOrigin::Host, object.name + QLatin1Char('.') + inner.name);
    }

    void TakeDeviceMember(const QScriptValue& object, const ScriptMember& member) {
        MScriptVariable variable;
        variable.name = member.name;
        if (IsNewVariable(member.name) && TakePlainValue(member.value, variable, &variable.valueType)) {
            variable.defaultScriptValue = variable.value;
            m_variableNames.insert(member.name);
            m_result.variables.push_back(variable);
        }
        BindMember(object, member.name, VariableOrigin::Device, member.name);
    }

    bool IsNewVariable(const QString& name) const {
        const bool keepsDefaults = !m_result.removeDefaults.value_or(m_request.removeDefaults);
        const bool taken = name == QLatin1String("Activity") || name == QLatin1String("Timerail") ||
                           (keepsDefaults && IsDefaultVariable(name)) || m_variableNames.contains(name);
        return !taken && IsHostName(name) && (m_request.host == nullptr || m_request.host->IsValidName(name));
    }

    /// Notes a variable that the host has and lets the member stand for it.
    void BindMember(QScriptValue object, const QString& member, VariableOrigin origin, const QString& name) {
        if (m_request.host == nullptr || !IsHostName(name))
            return;
        const VisitGate::Visit visit(m_request.accessors != nullptr ? &m_request.accessors->GetGate() : nullptr);
        if (!visit.IsAllowed())
            return;
        IData* data = origin == VariableOrigin::Host ? m_request.host->FindHostVariable(name)
                                                     : m_request.host->FindDeviceVariable(name);
        if (data == nullptr)
            return;
        if (!m_monitored.contains(data)) {
            m_monitored.insert(data);
            m_result.monitors.push_back(VariableFromData(*data));
        }
        if (!m_request.stopMode && m_request.accessors != nullptr)
            m_request.accessors->Bind(object, member, origin, name, data);
    }

    void TakeSetting(const ScriptMember& member) {
        MScriptSetting setting;
        setting.name = member.name;
        if (member.name.isEmpty() || !TakePlainValue(member.value, setting, nullptr))
            return;
        setting.widget = FindDataKind(setting.type)->widget;
        m_result.settings.push_back(setting);
    }

    const ScanRequest& m_request;
    ScanResult m_result;
    QSet<QString> m_variableNames;
    QSet<IData*> m_monitored;
};

} // namespace

MScriptCommand CommandFromFunction(const QString& name, const QString& sourceText) {
    MScriptCommand command;
    command.name = name;
    MScriptCommandParam result;
    result.name = QStringLiteral("Result");
    result.direction = ParamDirection::Out;
    command.params.append(result);
    const QStringList names = ParameterText(sourceText).remove(QLatin1Char(' ')).split(QLatin1Char(','));
    for (const QString& paramName : names) {
        if (paramName.isEmpty())
            continue;
        MScriptCommandParam param;
        param.name = paramName;
        command.params.append(param);
    }
    return command;
}

MScriptVariable VariableFromData(IData& data) {
    MScriptVariable variable;
    variable.data = &data;
    variable.name = FromHostText(data.GetName());
    variable.instanceId = data.GetInstanceID();
    const DataKind* kind = FindDataKindOfCode(data.GetDataType());
    variable.type = kind != nullptr ? QLatin1String(kind->element) : QLatin1String("");
    variable.value = TextOf(data);
    variable.defaultScriptValue = variable.value;
    return variable;
}

ScanResult ScanGlobal(const ScanRequest& request) {
    ScanResult result;
    if (!request.published.isObject())
        return result;
    result = Scan(request).Run();
    request.published.engine()->clearExceptions();
    return result;
}
