#include "ScriptAnalysis.h"

#include "ConfigFile.h"
#include "DeviceTexts.h"
#include "HostValues.h"
#include "IModuleServices.h"
#include "IProgramOwner.h"
#include "LimitedRun.h"
#include "ScriptEvaluation.h"
#include "ScriptGlobals.h"
#include "StoredSetup.h"
#include "VariableLookup.h"

ScriptAnalysis::ScriptAnalysis(IModuleServices* module, const HostServices& services, HostValues& values,
                               StoredSetup& setup, IScriptReports& reports)
    : m_module(module)
    , m_services(services)
    , m_values(values)
    , m_setup(setup)
    , m_reports(reports) {}

bool ScriptAnalysis::RunOn(QScriptEngine& engine, const QString& text) {
    SetUpAnalysisGlobals(engine);
    m_set.engine = &engine;
    const bool result = Run(text);
    m_set.engine = nullptr;
    return result;
}

bool ScriptAnalysis::LoadFile(const char* fileName) {
    return ReadScriptFile(m_set, fileName, m_reports);
}

bool ScriptAnalysis::LoadText(const QString& text) {
    m_set.scriptFileName = QStringLiteral("");
    m_set.scriptText = text;
    m_reports.ReportScriptFile(m_set.scriptFileName);
    m_reports.ReportScriptText(m_set.scriptText);
    return true;
}

bool ScriptAnalysis::Run(const QString& text) {
    if (m_set.engine == nullptr)
        return false;
    const std::chrono::milliseconds limit = Limit();
    m_text = text;
    m_removed = m_setup.GetRemovalForAnalysis();
    m_isGood = false;
    LimitedRun run(*m_set.engine, limit);
    VariableLookup lookup(m_services, m_values, m_setup.Variables());
    LookupOnCallersThread host(run, lookup);
    ScanRequest request;
    request.removeDefaults = m_removed;
    request.host = &host;
    request.accessors = &m_values.Accessors();
    std::optional<EvaluationFailure> failure;
    ScanResult found;
    MScriptDescription description;
    const LimitedRun::Outcome outcome = run.Run([&] {
        m_set.global = EvaluateText(*m_set.engine, text);
        failure = TakeFailure(*m_set.engine, m_set.global);
        if (failure)
            return;
        found = ScanPublished(m_set, request);
        description.Take(m_set.global);
    });
    m_endedByItself = outcome == LimitedRun::Outcome::InTime;
    if (!m_endedByItself)
        failure = EvaluationFailure{ScriptFailure(AnalysisFailure(outcome, limit)), std::nullopt};
    if (failure) {
        Report(*failure, true, m_reports);
        return false;
    }
    m_setup.SetScriptsRemoval(found.removeDefaults);
    Publish(m_set, found);
    m_description = description;
    m_isGood = true;
    m_reports.ReportError(QLatin1String(DeviceText::kAnalysed), true);
    return true;
}

bool ScriptAnalysis::Knows(const QString& text) const {
    return m_isGood && m_text == text && m_removed == m_setup.GetRemovalForAnalysis();
}

/// The configuration file says it in seconds.
std::chrono::milliseconds ScriptAnalysis::Limit() const {
    char path[IModuleServices::kConfigPathSize] = {};
    if (m_module != nullptr)
        m_module->GetConfigFilePath(path);
    const int seconds = ReadConfigInt(path, "ANALYSIS", "limit", 0);
    return seconds > 0 ? std::chrono::milliseconds(std::chrono::seconds(seconds)) : kAnalysisLimit;
}
