#include "ScriptDoor.h"

#include <QRegularExpression>
#include <QScriptContext>
#include <QScriptSyntaxCheckResult>

#include "ShowClock.h"

namespace stagehost {

namespace {

constexpr int kLongestCallMs = 3000;
constexpr int kLookMs = 50; // less often costs nothing, and an end comes soon enough

QString TooLong() {
    return QStringLiteral("the script does not come back within %1 ms and is broken off").arg(kLongestCallMs);
}

/// "onLine(...) at fake.js:12"; functions of the program have no file.
const QRegularExpression& TraceLine() {
    static const QRegularExpression kLine(QStringLiteral("^(.*?)\\(.*\\) at (.+):(\\d+)$"),
                                          QRegularExpression::DotMatchesEverythingOption);
    return kLine;
}

QString CallName(const QString& function) {
    if (function == QLatin1String("<global>"))
        return QStringLiteral("the top level");
    return function == QLatin1String("<anonymous>") ? QStringLiteral("a function without a name") : function;
}

} // namespace

ScriptDoor::ScriptDoor(std::function<void(const ScriptFailure& failure)> tell)
    : m_tell(std::move(tell)) {
    m_engine.setProcessEventsInterval(kLookMs);
    m_guard.setSingleShot(true);
    QObject::connect(&m_guard, &QTimer::timeout, &m_guard, [this] { BreakOff(); });
}

std::optional<ScriptFailure> ScriptDoor::Run(const QString& text, const QString& file) {
    m_file = file;
    m_source = text.split(QLatin1Char('\n'));
    m_catches = text.contains(QLatin1String("catch")) || text.contains(QLatin1String("finally"));
    const auto check = QScriptEngine::checkSyntax(text);
    if (check.state() != QScriptSyntaxCheckResult::Valid) {
        const QString place = QStringLiteral("%1:%2:%3: SyntaxError: ")
                                  .arg(file)
                                  .arg(check.errorLineNumber())
                                  .arg(check.errorColumnNumber());
        const QString message =
            check.errorMessage().isEmpty() ? QStringLiteral("the text ends too early") : check.errorMessage();
        return ScriptFailure{place + message, {SourceLine(check.errorLineNumber())}};
    }
    std::optional<ScriptFailure> failure;
    Enter([&] {
        m_engine.evaluate(text, file);
        failure = TakeFailure();
    });
    return failure;
}

/// Events come in while the script runs, so what they bring has to wait here.
void ScriptDoor::Enter(std::function<void()> work) {
    m_waiting.push_back(std::move(work));
    if (m_isInside)
        return;
    m_isInside = true;
    while (!m_waiting.empty()) {
        const std::function<void()> next = std::move(m_waiting.front());
        m_waiting.pop_front();
        m_guard.start(MachineTime(std::chrono::milliseconds(kLongestCallMs)));
        next();
        m_guard.stop();
    }
    m_isInside = false;
}

QScriptValue ScriptDoor::Call(QScriptValue function, const QScriptValueList& arguments) {
    std::optional<ScriptFailure> failure;
    const QScriptValue result = Call(std::move(function), arguments, failure);
    if (failure)
        m_tell(*failure);
    return result;
}

QScriptValue ScriptDoor::Call(QScriptValue function, const QScriptValueList& arguments,
                              std::optional<ScriptFailure>& failure) {
    m_engine.pushContext(); // an engine lets events in, and takes an abort, only while one of its contexts is open
    const QScriptValue result = function.call(QScriptValue(), arguments);
    m_engine.popContext();
    failure = TakeFailure();
    return result;
}

/// Runs inside the script, which lets events in. An error tells where the script is; one that could catch it is
/// aborted.
void ScriptDoor::BreakOff() {
    m_isBrokenOff = true;
    if (!m_catches)
        m_engine.currentContext()->throwError(TooLong());
    else
        m_engine.abortEvaluation();
    m_guard.start(MachineTime(std::chrono::milliseconds(kLookMs)));
}

std::optional<ScriptFailure> ScriptDoor::TakeFailure() {
    const bool wasBrokenOff = std::exchange(m_isBrokenOff, false);
    if (!m_engine.hasUncaughtException())
        return wasBrokenOff ? std::optional(FailureAt(TooLong(), {}, 0)) : std::nullopt;
    ScriptFailure failure = FailureAt(m_engine.uncaughtException().toString(), m_engine.uncaughtExceptionBacktrace(),
                                      m_engine.uncaughtExceptionLineNumber());
    m_engine.clearExceptions();
    return failure;
}

/// The calls of the script's own file alone: what stands behind its objects is no business of its author.
ScriptFailure ScriptDoor::FailureAt(const QString& message, const QStringList& backtrace, int line) const {
    ScriptFailure failure;
    QStringList calls;
    int first = 0;
    for (const QString& call : backtrace) {
        const auto match = TraceLine().match(call);
        if (!match.hasMatch() || match.captured(2) != m_file)
            continue;
        const int at = match.captured(3).toInt();
        first = first == 0 ? at : first;
        calls += QStringLiteral("at %1 (%2:%3)").arg(CallName(match.captured(1))).arg(m_file).arg(at);
    }
    const int shown = first == 0 ? line : first;
    failure.text = shown > 0 ? QStringLiteral("%1:%2: %3").arg(m_file).arg(shown).arg(message)
                             : QStringLiteral("%1: %2").arg(m_file, message);
    failure.place = (shown > 0 ? QStringList(SourceLine(shown)) : QStringList()) + calls;
    return failure;
}

QString ScriptDoor::SourceLine(int line) const {
    return QStringLiteral("| ") + m_source.value(line - 1).trimmed();
}

} // namespace stagehost
