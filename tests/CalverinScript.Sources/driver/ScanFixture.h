#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include <QScriptEngine>

#include "ScriptScan.h"
#include "TypedValue.h"
#include "VariableAccessor.h"

/// A script that is evaluated and read, with a host of a few variables.
class ScanFixture : public testing::Test, protected IScanHost {
protected:
    /// Makes a variable of the host.
    TypedValue& GivenHostVariable(const std::string& name, std::uint32_t type, const std::string& text = "");
    /// Makes a variable of the device "Desk".
    TypedValue& GivenDeviceVariable(const std::string& name, std::uint32_t type, const std::string& text = "");

    ScanResult Analyse(const std::string& script) { return Scan(script, true); }
    ScanResult Run(const std::string& script) { return Scan(script, false); }
    /// Evaluates more script, with the published value as `published`. @return the value as text.
    std::string Evaluate(const std::string& script);

    IData* FindHostVariable(const QString& name) override;
    IData* FindDeviceVariable(const QString& name) override;
    bool IsValidName(const QString& name) override;

    bool removeDefaults = false;
    std::set<std::string> refusedNames;
    std::atomic<bool> closed{false};
    AccessorPool accessors{closed};
    QScriptEngine engine;
    QScriptValue published;

private:
    ScanResult Scan(const std::string& script, bool stopMode);

    std::map<std::string, std::unique_ptr<TypedValue>> m_hostVariables;
    std::map<std::string, std::unique_ptr<TypedValue>> m_deviceVariables;
};

/// "name:type=value" of each variable or setting, blanks between.
template <typename Records>
std::string Told(const Records& records) {
    std::string text;
    for (const auto& record : records)
        text += (text.empty() ? "" : " ") + record.name.toStdString() + ":" + record.type.toStdString() + "=" +
                record.value.toStdString();
    return text;
}

/// "name(out Result, in a)" of each command, blanks between.
std::string Told(const ScriptCommands& commands);

/// "name=value" of each property, blanks between.
std::string Told(const ScriptProperties& properties);
