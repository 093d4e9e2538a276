#include "ScriptStopper.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEvent>
#include <QScriptEngine>
#include <QTimer>

#include "FaultText.h"
#include "ScriptFault.h"

namespace {

/// A script that never comes back, and somebody who stops it from an event that the engine lets through.
class EndlessScript : public testing::Test {
protected:
    std::string StoppedAt(const char* script) {
        const QString text = QString::fromUtf8(script);
        engine.setProcessEventsInterval(10);
        engine.pushContext(); // an engine takes an abort only while one of its contexts is open
        ScriptStopper stopper;
        stopper.LookAt(text);
        QTimer again;
        QObject::connect(&again, &QTimer::timeout, &again, [&] { stopper.Stop(engine); });
        again.start(20);
        engine.pushContext();
        const QScriptValue published = engine.evaluate(text, QStringLiteral(""), 1);
        engine.popContext();
        if (!stopper.HasStopped())
            published.property(QStringLiteral("Run")).call(published);
        again.stop();
        EXPECT_TRUE(stopper.HasStopped());
        return LinesOf(FaultReader().ReadStopped(engine, text), QStringLiteral("a.js"))
            .join(QLatin1Char('\n'))
            .toStdString();
    }

    QScriptEngine engine;
};

} // namespace

TEST_F(EndlessScript, IsToldWithItsFunctionLineAndCalls) {
    EXPECT_EQ(StoppedAt("function spin(n) {\n"
                        "  for (;;)\n"
                        "    n += 1;\n"
                        "}\n"
                        "({ Run: function () {\n"
                        "  spin(5);\n"
                        "} })"),
              "a.js:3: stopped in spin, which did not come back\n"
              "| n += 1;\n"
              "| ^\n"
              "at spin (a.js:3)\n"
              "at Run (a.js:6)");
}

TEST_F(EndlessScript, IsToldAtItsTopLevel) {
    const std::string told = StoppedAt("var a = 1;\nwhile (true) { a++; }\n");
    EXPECT_EQ(told.substr(0, 43), "a.js:2: stopped in the top level, which did");
}

TEST_F(EndlessScript, EndsAlsoWhenItCatchesEverything) {
    const std::string told =
        StoppedAt("({ Run: function () {\n  for (;;) { try {\n    for (;;) {}\n  } catch (e) {} }\n} })");
    EXPECT_NE(told.find("stopped in Run, which did not come back"), std::string::npos) << told;
}

TEST_F(EndlessScript, EndsAlsoInsideAFinally) {
    EXPECT_NE(StoppedAt("({ Run: function () {\n  try { for (;;) {} } finally { for (;;) {} }\n} })")
                  .find("a.js:2: stopped in Run"),
              std::string::npos);
}

TEST_F(EndlessScript, EndsAlsoWhenItsArgumentsCannotBeShown) {
    StoppedAt("function spin(x) { for (;;) {} }\n"
              "({ Run: function () { spin({ toString: function () { for (;;) {} } }); } })");
}
