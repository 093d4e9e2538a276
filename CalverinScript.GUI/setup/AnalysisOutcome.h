#pragma once

#include <optional>

#include <QString>

class MCalverinScript_Device;
class QScriptEngine;

/// What the analysis of a script came to.
struct AnalysisOutcome {
    bool succeeded = false;
    QString text; ///< what the device said last: "Evaluation Ok" or what is wrong
    int line = 0; ///< of the error, from 1; 0 when there is none
};

/// Analyses a script for a device, at once and on the calling thread. The lists of the device's analysis are those of this script
/// from then on.   [host main]
AnalysisOutcome AnalyseScript(MCalverinScript_Device& device, const QString& text, QScriptEngine& engine);

/// What AnalyseScript would find, when the device has analysed that text last; nothing otherwise.   [host main]
std::optional<AnalysisOutcome> RecallAnalysis(const MCalverinScript_Device& device, const QString& text);

/// Loads a file for an analysis and tells what the device said of it; `succeeded` is whether it could be read.   [host main]
AnalysisOutcome LoadForAnalysis(MCalverinScript_Device& device, const QString& path);
