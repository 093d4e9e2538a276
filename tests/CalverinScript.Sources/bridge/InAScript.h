#pragma once

#include <string>

#include <gtest/gtest.h>
#include <QCoreApplication>
#include <QScriptEngine>

#include "FakeRemotes.h"
#include "FakeScriptDevice.h"
#include "FakeVariables.h"
#include "MScriptMngRemote.h"

/// The bridge as a script sees it. An engine needs an application while it lives.
class InAScript : public testing::Test {
protected:
    InAScript() { Offer(remote); }
    /// Makes another bridge the script's `QCalverin`.
    void Offer(MScriptMngRemote& bridge) {
        engine.globalObject().setProperty(QStringLiteral("QCalverin"), engine.newQObject(&bridge));
    }
    /// The text of the value, or of the exception.
    std::string Run(const std::string& script) {
        const QScriptValue value = engine.evaluate(QString::fromUtf8(script.c_str()));
        engine.clearExceptions();
        return value.toString().toStdString();
    }

    int count = 1;
    char name[5] = "test";
    char* arguments[2] = {name, nullptr};
    QCoreApplication application{count, arguments};
    FakeScriptDevice device;
    FakeRemote older;
    FakeRemote2 newer;
    FakeVariables host;
    QScriptEngine engine;
    MScriptMngRemote remote{&device, nullptr, &newer, &host, &engine};
    MScriptMngRemote onOlder{&device, &older, nullptr, &host, &engine};
    MScriptMngRemote onNone{&device, nullptr, nullptr, nullptr, &engine};
};
