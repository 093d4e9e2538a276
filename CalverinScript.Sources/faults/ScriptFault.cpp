#include "ScriptFault.h"

#include <QRegularExpression>
#include <QScriptContext>
#include <QScriptEngine>
#include <QScriptValue>
#include <QStringList>

#include "SourceTokens.h"
#include "SyntaxAdvice.h"
#include "UnknownNames.h"

namespace {

constexpr const char* kTopLevel = "<eval>"; ///< as the engine calls what a text itself does

QString MemberText(const QScriptValue& exception, const char* name) {
    return exception.property(QLatin1String(name)).toString();
}

QString WhatOf(const QScriptValue& exception) {
    if (!exception.isError())
        return exception.toString();
    const QString name = MemberText(exception, "name");
    const QString message = MemberText(exception, "message");
    return message.isEmpty() ? name : name + QStringLiteral(": ") + message;
}

/// The offset in the script at which the failing expression begins, as the engine leaves it on an error; -1 for none.
int OffsetOf(const QScriptValue& exception) {
    const QScriptValue offset =
        exception.isObject() ? exception.property(QStringLiteral("expressionBeginOffset")) : QScriptValue();
    return offset.isNumber() ? offset.toInt32() : -1;
}

QString NoteOn(const QString& what) {
    static const QRegularExpression kUnknown(QStringLiteral("^ReferenceError: Can't find variable: (\\S+)$"));
    const QRegularExpressionMatch match = kUnknown.match(what);
    return match.hasMatch() ? InsteadOfUnknown(match.captured(1)) : QString();
}

/// Whether a syntax error is that of the script itself, and not of a text that it has had read.
bool IsOfTheScript(const QScriptValue& exception, const std::vector<FaultFrame>& stack) {
    return exception.isError() && MemberText(exception, "name") == QLatin1String("SyntaxError") && stack.empty();
}

} // namespace

void FaultReader::Prepare(const QString& text) {
    if (m_text == text)
        return;
    m_text = text;
    m_names = FunctionNames(text);
}

/// The engine's lines are "name(arguments) at LINE", where arguments may be anything.
/// @param offset of the fault; -1 when it is not known.
std::vector<FaultFrame> FaultReader::StackOf(const QScriptEngine& engine, int offset) const {
    std::vector<FaultFrame> stack;
    const QStringList entries =
        engine.hasUncaughtException() ? engine.uncaughtExceptionBacktrace() : engine.currentContext()->backtrace();
    for (const QString& entry : entries) {
        const int line = entry.mid(entry.lastIndexOf(QLatin1String(" at ")) + 4).section(QLatin1Char(':'), -1).toInt();
        if (line <= 0)
            continue;
        const QString name = entry.section(QLatin1Char('('), 0, 0);
        const bool isInnermost = stack.empty() && offset >= 0 && LineOf(m_text, offset) == line;
        const bool isNamed = !name.startsWith(QLatin1Char('<'));
        stack.push_back({isNamed                            ? name
                         : name == QLatin1String(kTopLevel) ? QStringLiteral("the top level")
                                                            : m_names.OnLine(line, isInnermost ? offset : -1),
                         line});
    }
    return stack;
}

/// An offset that is not on the line belongs to another text.
void FaultReader::Point(ScriptFault& fault, int line, int offset) const {
    fault.line = line;
    if (line <= 0)
        return;
    fault.source = TextOfLine(m_text, line);
    const int start = StartOfLine(m_text, line);
    if (offset >= start && offset < start + fault.source.size()) {
        fault.mark = offset - start;
        fault.column = fault.mark + 1;
        return;
    }
    while (fault.mark < fault.source.size() && fault.source[fault.mark].isSpace())
        ++fault.mark;
}

ScriptFault FaultReader::Read(const QScriptEngine& engine, const QScriptValue& exception, const QString& text) {
    Prepare(text);
    ScriptFault fault;
    fault.what = WhatOf(exception);
    fault.stack = StackOf(engine, OffsetOf(exception));
    const int line = engine.hasUncaughtException() ? engine.uncaughtExceptionLineNumber()
                                                   : exception.property(QStringLiteral("lineNumber")).toInt32();
    if (IsOfTheScript(exception, fault.stack)) {
        const SyntaxAdvice advice = AdviceOn(text, line);
        fault.what = QStringLiteral("SyntaxError: ") + advice.what;
        fault.note = advice.note;
        Point(fault, advice.line, advice.column > 0 ? StartOfLine(text, advice.line) + advice.column - 1 : -1);
        return fault;
    }
    fault.note = NoteOn(fault.what);
    const bool isElsewhere = exception.isError() && !exception.property(QStringLiteral("fileName")).isValid() &&
                             !fault.stack.empty() && fault.stack.size() > 1;
    if (isElsewhere && fault.stack.front().function == QLatin1String("the top level"))
        fault.stack.erase(fault.stack.begin()); // of a text that the script has evaluated
    Point(fault, isElsewhere ? fault.stack.front().line : line, isElsewhere ? -1 : OffsetOf(exception));
    return fault;
}

ScriptFault FaultReader::ReadStopped(const QScriptEngine& engine, const QString& text) {
    Prepare(text);
    ScriptFault fault;
    fault.stack = StackOf(engine, -1);
    Point(fault, engine.uncaughtExceptionLineNumber(), -1);
    const QString function = fault.stack.empty() ? m_names.OnLine(fault.line) : fault.stack.front().function;
    fault.what = function.isEmpty() ? QStringLiteral("stopped here, since the script did not come back")
                                    : QStringLiteral("stopped in %1, which did not come back").arg(function);
    return fault;
}
