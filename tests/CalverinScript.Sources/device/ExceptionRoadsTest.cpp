#include <algorithm>

#include <QRegularExpression>
#include <QScriptEngine>

#include "LoggedDevice.h"
#include "LogLines.h"
#include "MScriptEngineAgent.h"

namespace {

/// A script that is loaded, and whose function F is then called.
struct ThrowingScript {
    const char* sentence;
    const char* script;
};

constexpr ThrowingScript kCorpus[] = {
    {"nothing is thrown", "({ F: function() { return 1; } })"},
    {"an error of the top level", "var a = 1;\nthrow new Error('top');"},
    {"a syntax error", "({ F: function() { return 1 }"},
    {"a syntax error in a later line", "var a = 1;\n\nvar b = ;"},
    {"an unknown name at the top level", "unknown.name;"},
    {"an error as the value", "new Error('value')"},
    {"an error of a function", "({ F: function() { throw new Error('function'); } })"},
    {"an error in a later line", "({ F: function() {\n\n\n throw new Error('line four'); } })"},
    {"an error without a message", "({ F: function() { throw new Error(); } })"},
    {"an error with line ends in its message", "({ F: function() { throw new Error('a\\nb'); } })"},
    {"an error with letters beyond ASCII", "({ F: function() { throw new Error('caf\\u00e9 \\u20ac'); } })"},
    {"a type error", "({ F: function() { null.x; } })"},
    {"a call of what is no function", "({ F: function() { var x = 1; x(); } })"},
    {"an unknown name", "({ F: function() { unknown(); } })"},
    {"a range error", "({ F: function() { new Array(-1); } })"},
    {"an error deep in calls",
     "({ F: function() { (function g(n) { if (n == 0) throw new Error('deep'); g(n - 1); })(50); } })"},
    {"an error that is caught", "({ F: function() { try { throw new Error('caught'); } catch (e) { return 2; } } })"},
    {"an error caught by a caller",
     "({ F: function() { function g() { throw new Error('caught'); } try { g(); } catch (e) {} } })"},
    {"an error that is thrown again",
     "({ F: function() { try { throw new Error('again'); } catch (e) { throw e; } } })"},
    {"another error instead",
     "({ F: function() { try { throw new Error('first'); } catch (e) { throw new Error('second'); } } })"},
    {"an error past a finally", "({ F: function() { try { throw new Error('finally'); } finally { var x = 1; } } })"},
    {"an error swallowed by a finally",
     "({ F: function() { try { throw new Error('swallowed'); } finally { return 3; } } })"},
    {"a syntax error in evaluated text", "({ F: function() { eval('var = 1'); } })"},
    {"an error in a text that is parsed", "({ F: function() { JSON.parse('{'); } })"},
    {"an error in a text that is parsed, caught", "({ F: function() { try { JSON.parse('{'); } catch (e) {} } })"},
    {"an error in a constructor", "({ F: function() { function C() { throw new Error('constructor'); } new C(); } })"},
    {"an error of a thrown class", "({ F: function() { throw new TypeError('mine'); } })"},
    {"an error that is returned", "({ F: function() { return new Error('returned'); } })"},
    {"an error in the start function", "({ _mStart: function() { throw new Error('start'); }, F: function() {} })"},
    {"an error in the start function that is caught",
     "({ _mStart: function() { try { x.y(); } catch (e) {} }, F: function() {} })"},
    {"an error in the stop function", "({ _mStop: function() { throw new Error('stop'); }, F: function() {} })"},
};

/// Values that are thrown and are no errors: they do not know their line.
constexpr ThrowingScript kOtherValues[] = {
    {"a text of the top level", "throw 'text';"},
    {"a text", "({ F: function() { throw 'text'; } })"},
    {"an empty text", "({ F: function() { throw ''; } })"},
    {"a number", "({ F: function() { throw 42; } })"},
    {"a boolean", "({ F: function() { throw false; } })"},
    {"null", "({ F: function() { throw null; } })"},
    {"undefined", "({ F: function() { throw undefined; } })"},
    {"an object", "({ F: function() { throw { message: 'no error' }; } })"},
    {"an object with a text form", "({ F: function() { throw { toString: function() { return 'shown'; } }; } })"},
};

/// Exceptions that cross a native function of the engine on their way out.
constexpr ThrowingScript kThroughNativeCode[] = {
    {"an error in evaluated text", "({ F: function() { eval('throw new Error(\"eval\")'); } })"},
    {"an error in evaluated text that is caught", "({ F: function() { try { eval('throw 1'); } catch (e) {} } })"},
    {"an error in a comparison", "({ F: function() { [2, 1].sort(function() { throw new Error('compare'); }); } })"},
    {"an error in a comparison, caught",
     "({ F: function() { try { [2, 1].sort(function() { throw new Error('c'); }); } catch (e) {} } })"},
    {"an error in a replacement",
     "({ F: function() { 'a'.replace(/a/, function() { throw new Error('replace'); }); } })"},
    {"an error in a getter", "({ F: function() { var o = { get x() { throw new Error('getter'); } }; return o.x; } })"},
};

/// What a script's failures look like from outside.
struct Report {
    std::vector<std::string> errors;
    std::vector<LogLine> lines;
    std::string result;
};

/// More about a failure: what an agent hears of at the throw has less.
bool IsDetail(const LogLine& line) {
    return line.text.find(std::string("] ") + KXP_LOG_DETAIL) != std::string::npos;
}

std::string WithoutLineNumber(const std::string& text) {
    static const QRegularExpression number(QStringLiteral("line[: ]-?[0-9]+,"));
    return QString::fromLatin1(text.c_str()).replace(number, QStringLiteral("line,")).toLatin1().toStdString();
}

class ExceptionRoads : public LoggedDevice {
protected:
    void InstallAgent() {
        OnScriptThread([this] {
            QScriptEngine* engine = device->GetEngine();
            engine->setAgent(new MScriptEngineAgent(engine, device));
        });
    }

    /// Runs a script on a device of its own and notes what it reports.
    Report Run(const char* script, bool withAgent) {
        EndDevice();
        MakeDevice();
        device->Start();
        if (withAgent)
            InstallAgent();
        GivenAnEmptyLog();
        const std::size_t before = variables.error.History().size();
        device->EvaluateScriptCommand(QString::fromLatin1(script), false);
        Report report;
        report.result = Call("F");
        device->Stop();
        const std::vector<std::string> history = variables.error.History();
        report.errors.assign(history.begin() + static_cast<std::ptrdiff_t>(before), history.end());
        report.lines = Log();
        report.lines.erase(std::remove_if(report.lines.begin(), report.lines.end(), &IsDetail), report.lines.end());
        return report;
    }
};

TEST_F(ExceptionRoads, ReportTheSameTextsAndLinesWithAndWithoutAnAgent) {
    for (const ThrowingScript& row : kCorpus) {
        const Report plain = Run(row.script, false);
        const Report withAgent = Run(row.script, true);
        EXPECT_EQ(plain.errors, withAgent.errors) << row.sentence;
        EXPECT_EQ(plain.lines, withAgent.lines) << row.sentence;
        EXPECT_EQ(plain.result, withAgent.result) << row.sentence;
    }
}

/// The engine does not know the line of the throw yet when an agent hears of it; an error carries its line itself.
TEST_F(ExceptionRoads, DifferInTheLineOfAThrownValueThatIsNoError) {
    for (const ThrowingScript& row : kOtherValues) {
        const Report plain = Run(row.script, false);
        const Report withAgent = Run(row.script, true);
        EXPECT_EQ(plain.result, withAgent.result) << row.sentence;
        ASSERT_EQ(plain.errors.size(), withAgent.errors.size()) << row.sentence;
        for (std::size_t i = 0; i < plain.errors.size(); ++i)
            EXPECT_EQ(WithoutLineNumber(plain.errors[i]), WithoutLineNumber(withAgent.errors[i])) << row.sentence;
        ASSERT_EQ(plain.lines.size(), withAgent.lines.size()) << row.sentence;
        for (std::size_t i = 0; i < plain.lines.size(); ++i)
            EXPECT_EQ(WithoutLineNumber(plain.lines[i].text), WithoutLineNumber(withAgent.lines[i].text))
                << row.sentence;
    }
}

/// The engine looks for a handler only up to the next native function, so an agent hears of the same exception
/// again behind each of them, and of one that script beyond it will catch. Without an agent only what leaves
/// the script is reported.
TEST_F(ExceptionRoads, DifferByWhatAnAgentHearsInsideNativeFunctions) {
    for (const ThrowingScript& row : kThroughNativeCode) {
        const Report plain = Run(row.script, false);
        const Report withAgent = Run(row.script, true);
        const bool uncaught = plain.errors.size() == 2;
        EXPECT_EQ(plain.errors.size(), uncaught ? 2u : 1u) << row.sentence;
        EXPECT_EQ(withAgent.errors.size(), plain.errors.size() + 1) << row.sentence;
        if (uncaught) {
            EXPECT_EQ(withAgent.errors.back(), plain.errors.back()) << row.sentence;
        }
        EXPECT_EQ(plain.result, withAgent.result) << row.sentence;
    }
}

TEST_F(ExceptionRoads, ReportNothingWhenNothingLeavesTheScript) {
    for (const bool withAgent : {false, true}) {
        const Report report =
            Run("({ F: function() { try { throw new Error('caught'); } catch (e) { return 2; } } })", withAgent);
        EXPECT_EQ(report.result, "2");
        EXPECT_TRUE(
            std::all_of(report.errors.begin(), report.errors.end(), [](const std::string& e) { return e.empty(); }));
        EXPECT_TRUE(
            std::none_of(report.lines.begin(), report.lines.end(), [](const LogLine& l) { return l.level == 5; }));
    }
}

TEST_F(ExceptionRoads, ReportAnUncaughtErrorOnce) {
    for (const bool withAgent : {false, true}) {
        const Report report = Run("({ F: function() {\n throw new Error('boom'); } })", withAgent);
        EXPECT_EQ(std::count(report.errors.begin(), report.errors.end(), "Script: boom"), 1) << withAgent;
        EXPECT_EQ(std::count(report.lines.begin(), report.lines.end(),
                             (LogLine{5, "CalverinScript_ [Desk] Uncaught Exception - line:2, message: boom"})),
                  1)
            << withAgent;
    }
}

TEST_F(ExceptionRoads, ReportTheSameForATimer) {
    std::vector<std::vector<std::string>> errors;
    for (const bool withAgent : {false, true}) {
        EndDevice();
        MakeDevice();
        device->Start();
        if (withAgent)
            InstallAgent();
        device->EvaluateScriptCommand(QStringLiteral("({})"), false);
        const std::size_t before = variables.error.History().size();
        OnScriptThread([this] {
            device->SlotSetTimeout(
                device->GetEngine()->evaluate(QStringLiteral("(function() { throw new Error('timer'); })")), 0);
        });
        ASSERT_TRUE(variables.error.WaitForHistory(before + 1));
        OnScriptThread([] {});
        const std::vector<std::string> history = variables.error.History();
        errors.emplace_back(history.begin() + static_cast<std::ptrdiff_t>(before), history.end());
        device->Stop();
    }
    EXPECT_EQ(errors[0], std::vector<std::string>{"Script: timer"});
    EXPECT_EQ(errors[1], errors[0]);
}

} // namespace
