#pragma once

#include <string>

#include "Cases.h"
#include "Options.h"

/// How one case went.
struct CaseResult {
    enum class Verdict { Passed, Failed, Skipped };
    Verdict verdict = Verdict::Failed;
    std::string finding;  ///< what is wrong, or why it was skipped; empty when it passed
    std::string lastStep; ///< what went on then
    std::string frames;   ///< of a crash, a line each
    std::string notes;    ///< what else is worth knowing, a line each
    double seconds = 0;
    bool hasSlowRelease = false; ///< Release of a device takes longer than it may
};

/// Runs a case in a process of its own, which is ended at the limit of its level.   [main]
CaseResult RunCase(const Case& one, const Options& options);

/// The command line that runs it again in the same way.
std::string Reproduction(const Case& one, const Options& options);
