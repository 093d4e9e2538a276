#include "ScriptDoor.h"

#include <algorithm>

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

const QLatin1String kNameless("<anonymous>");
const QString kWord = QStringLiteral("function");

/// "onLine(...) at fake.js:12"; functions of the engine and the program have no file: "forEach() at -1".
const QRegularExpression& TraceLine() {
    static const QRegularExpression kLine(QStringLiteral("^(.*?)\\(.*\\) at (?:(.+):(\\d+)|-1)$"),
                                          QRegularExpression::DotMatchesEverythingOption);
    return kLine;
}

/// Where a function without a name stands. The engine tells its text with a head of its own making, and with a
/// semicolon that its author may have left out at the end.
QRegularExpressionMatchIterator PlacesOf(const QString& function, const QString& source) {
    const int brace = function.indexOf(QLatin1Char('{')) + 1;
    QString body = function.mid(brace, function.lastIndexOf(QLatin1Char('}')) - brace).trimmed();
    if (body.endsWith(QLatin1Char(';')))
        body.chop(1);
    const QString form = QStringLiteral("\\bfunction\\s*\\([^)]*\\)\\s*\\{\\s*%1\\s*;?\\s*\\}");
    return QRegularExpression(form.arg(QRegularExpression::escape(body))).globalMatch(source);
}

QString Shown(const QStringList& lines, int line) {
    return QStringLiteral("| ") + lines.value(line - 1).trimmed();
}

} // namespace

std::optional<ScriptFailure> SyntaxFailure(const QString& text, const QString& file) {
    const auto check = QScriptEngine::checkSyntax(text);
    if (check.state() == QScriptSyntaxCheckResult::Valid)
        return std::nullopt;
    const QString place =
        QStringLiteral("%1:%2:%3: SyntaxError: ").arg(file).arg(check.errorLineNumber()).arg(check.errorColumnNumber());
    const QString message =
        check.errorMessage().isEmpty() ? QStringLiteral("the text ends too early") : check.errorMessage();
    return ScriptFailure{place + message, {Shown(text.split(QLatin1Char('\n')), check.errorLineNumber())}};
}

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
    if (auto failure = SyntaxFailure(text, file))
        return failure;
    std::optional<ScriptFailure> failure;
    Enter([&] {
        m_engine.evaluate(text, file);
        failure = TakeFailure({});
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

QScriptValue ScriptDoor::Call(const QScriptValue& function, const QScriptValueList& arguments, const Called& called) {
    std::optional<ScriptFailure> failure;
    const QScriptValue result = Call(function, arguments, called, failure);
    if (failure)
        m_tell(*failure);
    return result;
}

QScriptValue ScriptDoor::Call(QScriptValue function, const QScriptValueList& arguments, const Called& called,
                              std::optional<ScriptFailure>& failure) {
    m_engine.pushContext(); // an engine lets events in, and takes an abort, only while one of its contexts is open
    const QScriptValue result = function.call(QScriptValue(), arguments);
    m_engine.popContext();
    failure = TakeFailure(called);
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

std::optional<ScriptFailure> ScriptDoor::TakeFailure(const Called& called) {
    const bool wasBrokenOff = std::exchange(m_isBrokenOff, false);
    if (!m_engine.hasUncaughtException())
        return wasBrokenOff ? std::optional(FailureAt(TooLong(), {}, 0, {})) : std::nullopt;
    const QString message = m_engine.uncaughtException().toString();
    const QStringList backtrace = m_engine.uncaughtExceptionBacktrace();
    const int line = m_engine.uncaughtExceptionLineNumber();
    m_engine.clearExceptions();
    return FailureAt(message, backtrace, line, called);
}

/// The calls of the script's own file alone: what stands behind its objects is no business of its author.
ScriptFailure ScriptDoor::FailureAt(const QString& message, const QStringList& backtrace, int line,
                                    const Called& called) const {
    std::vector<Frame> frames;
    for (const QString& call : backtrace) {
        const auto match = TraceLine().match(call);
        frames.push_back({match.captured(1), match.captured(2), match.captured(3).toInt()});
    }
    ScriptFailure failure;
    QStringList calls;
    int shown = 0;
    for (std::size_t place = 0; place < frames.size(); ++place) {
        if (frames[place].file != m_file)
            continue;
        shown = shown == 0 ? frames[place].line : shown;
        calls += QStringLiteral("at %1 (%2:%3)").arg(CallName(frames, place, called), m_file).arg(frames[place].line);
    }
    shown = frames.empty() ? line : shown;
    failure.text = shown > 0 ? QStringLiteral("%1:%2: %3").arg(m_file).arg(shown).arg(message)
                             : QStringLiteral("%1: %2").arg(m_file, message);
    failure.place = (shown > 0 ? QStringList(SourceLine(shown)) : QStringList()) + calls;
    return failure;
}

/// The engine knows only names behind the word "function".
QString ScriptDoor::CallName(const std::vector<Frame>& frames, std::size_t place, const Called& called) const {
    const Frame& frame = frames[place];
    if (frame.function == QLatin1String("<global>"))
        return QStringLiteral("the top level");
    if (frame.function != kNameless)
        return frame.function;
    const auto isOurs = [&](const Frame& outer) { return outer.file == m_file; };
    const auto outer = frames.begin() + static_cast<std::ptrdiff_t>(place) + 1;
    if (called && std::none_of(outer, frames.end(), isOurs))
        return called();
    if (outer != frames.end() && outer->file.isEmpty() && !outer->function.startsWith(QLatin1Char('<')))
        return outer->function + QStringLiteral("'s function"); // forEach's
    const QString kept = KeptName(frame.line);
    return kept.isEmpty() ? QStringLiteral("a function without a name") : kept;
}

/// The name of the function that a line is in; empty unless that is certain: there is one whose text holds the line,
/// and no other begins in it before.
QString ScriptDoor::KeptName(int line) const {
    const QString source = m_source.join(QLatin1Char('\n'));
    const int end = static_cast<int>(m_source.mid(0, line).join(QLatin1Char('\n')).size());
    const int begin = end - static_cast<int>(m_source.value(line - 1).size());
    QString name;
    int nearest = -1;
    for (const Kept& kept : m_kept ? m_kept() : std::vector<Kept>()) {
        for (auto found = PlacesOf(kept.text, source); found.hasNext();) {
            const auto match = found.next();
            if (match.capturedEnd() < begin || match.capturedStart() > end || match.capturedStart() < nearest)
                continue;
            nearest = match.capturedStart();
            const int inner = source.indexOf(kWord, nearest + kWord.size());
            name = inner < 0 || inner > end ? kept.name : QString();
        }
    }
    return name;
}

QString ScriptDoor::SourceLine(int line) const {
    return Shown(m_source, line);
}

} // namespace stagehost
