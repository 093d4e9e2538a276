#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

/// How a case that ran in a process of its own came to its end.
struct CaseEnd {
    std::chrono::milliseconds limit{0};
    bool isInTime = false; ///< false: it was killed at its limit
    int exitCode = -1;     ///< 128 and the signal's number behind a crash
    std::string report;    ///< what it wrote to its descriptor; of a long one the last 64 KB and more
};

/// Runs work in a copy of this process, which has had one thread until now. Its standard output is a file that nobody
/// reads: what stands on ours comes from us alone.
/// @param work gets the descriptor for its report; its result is the exit code.   [main]
CaseEnd RunInProcess(const std::function<int(int descriptor)>& work, std::chrono::milliseconds limit);

/// What stands outside of the module in this process, for a comparison.   [any]
struct ProcessFigures {
    int threads = 0;
    int descriptors = 0;
};
ProcessFigures MeasureProcess();

/// The state of the process that no module may change, a line each: locale, working folder, file mask, signals that are
/// blocked, caught or ignored, rounding of the processor, the standard streams and how much was written to the output,
/// environment.   [main]
std::vector<std::string> DescribeSurroundings();
