#include "CaseRun.h"

#include <sstream>

#include "CaseProcess.h"
#include "GuardedPages.h"
#include "ReportLine.h"
#include "ThrownText.h"

namespace {

using Verdict = CaseResult::Verdict;

/// Half a minute, and four times more with each level beyond the third.
std::chrono::milliseconds LimitOf(int level) {
    const std::chrono::seconds base(30);
    return level <= 3 ? base : base * (1 << (2 * (level - 3)));
}

/// In the child. The verdict goes with the report.
int Work(const Case& one, const Options& options, int descriptor) {
    ReportCrashesTo(descriptor);
    try {
        Trial trial(options.moduleFile, options.level, options.seed, descriptor);
        one.run(trial);
        WriteReportLine(descriptor, "passed", "");
    } catch (const Skipped& skipped) {
        WriteReportLine(descriptor, "skipped", skipped.what());
    } catch (const SlowRelease& finding) {
        WriteReportLine(descriptor, "slow", "");
        WriteReportLine(descriptor, "failed", finding.what());
    } catch (const Finding& finding) {
        WriteReportLine(descriptor, "failed", finding.what());
    } catch (...) {
        WriteReportLine(descriptor, "failed",
                        TextOfThrown() + " leaves the module; promised: nothing throws across the border");
    }
    return 0;
}

/// As a word of a shell.
std::string ShellWord(const std::string& word) {
    constexpr const char* plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-./+=:,@%";
    if (!word.empty() && word.find_first_not_of(plain) == std::string::npos)
        return word;
    std::string quoted = "'";
    for (const char character : word)
        quoted += character == '\'' ? std::string("'\\''") : std::string(1, character);
    return quoted + "'";
}

std::string After(const std::string& line, const std::string& kind) {
    return line.rfind(kind + ": ", 0) == 0 ? line.substr(kind.size() + 2) : std::string();
}

/// What a process that tells nothing of itself has come to.
std::string WithoutResult(const CaseEnd& end) {
    constexpr int kKilled = 128 + 9; // by us
    if (!end.isInTime)
        return "does not come back; promised: it does, and the limit is " + std::to_string(end.limit.count() / 1000) +
               " s";
    if (end.exitCode == kKilled)
        return "the descriptor on which the case tells its result was closed; promised: the module closes what it has "
               "opened";
    return "the process of the case ends with code " + std::to_string(end.exitCode) +
           " and without a result; promised: the module ends no process";
}

CaseResult Judge(const CaseEnd& end) {
    CaseResult result;
    result.finding = WithoutResult(end);
    std::istringstream lines(end.report);
    bool isCrash = false;
    for (std::string line; std::getline(lines, line);) {
        if (const std::string step = After(line, "step"); !step.empty()) {
            result.lastStep = step;
        } else if (const std::string note = After(line, "note"); !note.empty()) {
            result.notes += note + '\n';
        } else if (line == "slow: ") {
            result.hasSlowRelease = true;
        } else if (line == "passed: ") {
            result.verdict = Verdict::Passed;
        } else if (const std::string why = After(line, "skipped"); !why.empty()) {
            result.verdict = Verdict::Skipped;
            result.finding = why;
        } else if (const std::string wrong = After(line, "failed"); !wrong.empty()) {
            result.finding = wrong;
        } else if (line.rfind("crash: ", 0) == 0) {
            isCrash = true;
            result.finding = line;
        } else if (isCrash) {
            result.frames += line + '\n';
        }
    }
    if (isCrash || end.exitCode != 0)
        result.verdict = Verdict::Failed; // it may have passed and then crashed on its way out
    else if (result.verdict == Verdict::Passed)
        result.finding.clear();
    return result;
}

} // namespace

CaseResult RunCase(const Case& one, const Options& options) {
    const auto begin = std::chrono::steady_clock::now();
    const CaseEnd end =
        RunInProcess([&](int descriptor) { return Work(one, options, descriptor); }, LimitOf(options.level));
    CaseResult result = Judge(end);
    result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    return result;
}

std::string Reproduction(const Case& one, const Options& options) {
    return "kxpvalidate " + ShellWord(options.moduleFile) + " --only " + one.name + " --level " +
           std::to_string(options.level) + " --seed " + std::to_string(options.seed);
}
