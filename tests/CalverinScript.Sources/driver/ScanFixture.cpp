#include "ScanFixture.h"

TypedValue& ScanFixture::GivenHostVariable(const std::string& name, std::uint32_t type, const std::string& text) {
    auto& place = m_hostVariables[name];
    place = std::make_unique<TypedValue>(name, type, text);
    return *place;
}

TypedValue& ScanFixture::GivenDeviceVariable(const std::string& name, std::uint32_t type, const std::string& text) {
    auto& place = m_deviceVariables[name];
    place = std::make_unique<TypedValue>("Desk." + name, type, text);
    return *place;
}

ScanResult ScanFixture::Scan(const std::string& script, bool stopMode) {
    published = engine.evaluate(QString::fromStdString(script));
    EXPECT_FALSE(engine.hasUncaughtException()) << engine.uncaughtException().toString().toStdString();
    ScanRequest request;
    request.published = published;
    request.stopMode = stopMode;
    request.removeDefaults = removeDefaults;
    request.host = this;
    request.accessors = &accessors;
    return ScanGlobal(request);
}

std::string ScanFixture::Evaluate(const std::string& script) {
    engine.globalObject().setProperty(QStringLiteral("published"), published);
    return engine.evaluate(QString::fromStdString(script)).toString().toStdString();
}

IData* ScanFixture::FindHostVariable(const QString& name) {
    const auto found = m_hostVariables.find(name.toStdString());
    return found != m_hostVariables.end() ? found->second.get() : nullptr;
}

IData* ScanFixture::FindDeviceVariable(const QString& name) {
    const auto found = m_deviceVariables.find(name.toStdString());
    return found != m_deviceVariables.end() ? found->second.get() : nullptr;
}

bool ScanFixture::IsValidName(const QString& name) {
    return refusedNames.count(name.toStdString()) == 0;
}

std::string Told(const ScriptCommands& commands) {
    std::string text;
    for (const MScriptCommand& command : commands) {
        text += (text.empty() ? "" : " ") + command.name.toStdString() + "(";
        for (int i = 0; i < command.params.size(); ++i)
            text += std::string(i > 0 ? ", " : "") +
                    (command.params[i].direction == ParamDirection::Out ? "out " : "in ") +
                    command.params[i].name.toStdString();
        text += ")";
    }
    return text;
}

std::string Told(const ScriptProperties& properties) {
    std::string text;
    for (const auto& property : properties)
        text += (text.empty() ? "" : " ") + property.first.toStdString() + "=" + property.second.toStdString();
    return text;
}
