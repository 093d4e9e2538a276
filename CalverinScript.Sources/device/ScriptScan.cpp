#include "ScriptScan.h"

#include <QScriptValueIterator>

#include "ScriptGlobals.h"

namespace {

bool IsPublishedFunction(const QString& name, const QScriptValue& value) {
    return value.isFunction() && !name.startsWith(QLatin1Char('_'));
}

/// What stands between the first "(" and the next ")".
QString ParameterText(const QString& sourceText) {
    const int open = sourceText.indexOf(QLatin1Char('('));
    const int close = sourceText.indexOf(QLatin1Char(')'), open + 1);
    return open >= 0 && close >= 0 ? sourceText.mid(open + 1, close - open - 1) : QString();
}

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

void ScanGlobal(ScriptSet& set) {
    set.variables.Clear();
    set.monitors.Clear();
    set.settings.Clear();
    set.functions.Clear();
    const bool isGlobalObject = set.global.strictlyEquals(set.engine->globalObject());
    QScriptValueIterator member(set.global);
    while (member.hasNext()) {
        member.next();
        if (isGlobalObject && BuiltInNames().contains(member.name()))
            continue;
        if (IsPublishedFunction(member.name(), member.value()))
            set.functions.Add(CommandFromFunction(member.name(), member.value().toString()));
    }
}
