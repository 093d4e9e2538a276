#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <QScriptEngine>

/// A sentence, a script and the text of what it gives.
struct ScriptCase {
    const char* sentence;
    const char* script;
    const char* result;
};

/// An engine with the script classes and a function `gc` that collects what the script has dropped.
class ScriptFixture : public testing::Test {
protected:
    ScriptFixture();

    /// Runs a script. @return its value as text; "threw " and the error when it throws.
    std::string Run(const std::string& script);
    /// Runs each case and compares.
    void Check(const std::vector<ScriptCase>& cases);

    /// Resident memory of this process.
    static long ResidentKilobytes();

    QScriptEngine engine;
};
