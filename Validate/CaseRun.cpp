#include "CaseRun.h"

#include <exception>
#include <sstream>

#include "CaseProcess.h"
#include "GuardedPages.h"
#include "ReportLine.h"

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
    } catch (const std::exception& finding) {
        WriteReportLine(descriptor, "failed", finding.what());
    }
    return 0;
}

std::string After(const std::string& line, const std::string& kind) {
    return line.rfind(kind + ": ", 0) == 0 ? line.substr(kind.size() + 2) : std::string();
}

CaseResult Judge(const CaseEnd& end) {
    CaseResult result;
    result.finding = end.isInTime ? "the process ends with code " + std::to_string(end.exitCode) : "does not come back";
    std::istringstream lines(end.report);
    bool isCrash = false;
    for (std::string line; std::getline(lines, line);) {
        if (const std::string step = After(line, "step"); !step.empty()) {
            result.lastStep = step;
        } else if (const std::string note = After(line, "note"); !note.empty()) {
            result.notes += note + '\n';
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
    return "kxpvalidate " + options.moduleFile + " --only " + one.name + " --level " + std::to_string(options.level) +
           " --seed " + std::to_string(options.seed);
}
