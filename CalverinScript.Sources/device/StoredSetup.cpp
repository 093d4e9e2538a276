#include "StoredSetup.h"

#include <QFileInfo>

#include "ScriptSet.h"

void StoredSetup::SetScript(const QString& fileName, const QString& text) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_scriptFileName = fileName;
    m_scriptText = text;
}

QString StoredSetup::GetScriptFileName() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_scriptFileName;
}

QString StoredSetup::GetScriptText() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_scriptText;
}

void StoredSetup::SetChoices(const SetupChoices& choices) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_choices = choices;
}

SetupChoices StoredSetup::GetChoices() const {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_choices;
}

void StoredSetup::SetRegisterAllUserGroups(bool enabled) {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_choices.registerAllUserGroups = enabled;
}

void StoredSetup::SetSettings(const ScriptSettings& settings) {
    ReplaceAll(m_settings, settings);
}

void StoredSetup::TakePanelAndLists(const DeviceSetup& setup) {
    m_userModeVisible = setup.userModeVisible.value_or(m_userModeVisible);
    m_runModeVisible = setup.runModeVisible.value_or(m_runModeVisible);
    ReplaceAll(m_settings, setup.settings);
    ReplaceAll(m_variables, setup.monitors);
}

DeviceSetup StoredSetup::Describe() const {
    DeviceSetup setup;
    setup.userModeVisible = m_userModeVisible;
    setup.runModeVisible = m_runModeVisible;
    setup.settings = GetSettings();
    setup.monitors = GetVariables();
    SetupScript script{GetChoices(), {}, {}};
    const QString fileName = GetScriptFileName();
    if (!fileName.isEmpty() && QFileInfo::exists(fileName))
        script.storedFileName = MakeStoredFileName(fileName);
    script.text = GetScriptText();
    setup.script = script;
    return setup;
}
