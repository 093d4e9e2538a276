#include "ScriptFacing.h"

#include <new>

#include <gtest/gtest.h>

#include <QObject>
#include <QScriptable>
#include <QScriptEngine>

namespace {

/// An object whose methods find no memory.
class Starving : public QObject, public QScriptable {
    Q_OBJECT

public:
    Q_INVOKABLE int Count() { throw std::bad_alloc(); }
    Q_INVOKABLE int Two() const { return 2; }
};

QScriptValue Starve(QScriptContext* /*context*/, QScriptEngine* /*engine*/) {
    throw std::bad_alloc();
}

QScriptValue StarveWith(QScriptContext* /*context*/, QScriptEngine* /*engine*/, void* calls) {
    ++*static_cast<int*>(calls);
    throw std::bad_alloc();
}

/// Scripts that call what finds no memory.
class BorderOfTheEngine : public testing::Test {
protected:
    BorderOfTheEngine() {
        QScriptValue global = engine.globalObject();
        global.setProperty(QStringLiteral("object"), engine.newQObject(&object));
        global.setProperty(QStringLiteral("starve"), engine.newFunction(&ScriptFunction<&Starve>));
        global.setProperty(QStringLiteral("starveWith"),
                           engine.newFunction(&ScriptFunction<&StarveWith, void*>, &calls));
    }
    std::string Run(const char* script) {
        return engine.evaluate(QString::fromLatin1(script)).toString().toStdString();
    }

    QScriptEngine engine;
    ScriptFacing<Starving> object;
    int calls = 0;
};

constexpr const char* kRefusal = "RangeError: not enough memory";

TEST_F(BorderOfTheEngine, WantOfMemoryInAMethodIsAnErrorOfTheScript) {
    EXPECT_EQ(Run("object.Count()"), kRefusal);
    EXPECT_TRUE(engine.hasUncaughtException());
    EXPECT_EQ(Run("try { object.Count() } catch (e) { e.message }"), "not enough memory");
    EXPECT_EQ(Run("object.Two()"), "2") << "the object goes on";
}

TEST_F(BorderOfTheEngine, WantOfMemoryInAFunctionIsAnErrorOfTheScript) {
    EXPECT_EQ(Run("starve()"), kRefusal);
    EXPECT_EQ(Run("starveWith()"), kRefusal);
    EXPECT_EQ(calls, 1);
}

TEST_F(BorderOfTheEngine, WantOfMemoryInACallOfNoScriptIsNobodysError) {
    int result = 0;
    void* arguments[] = {&result};
    const int method = object.metaObject()->indexOfMethod("Count()");
    EXPECT_LT(QMetaObject::metacall(&object, QMetaObject::InvokeMetaMethod, method, arguments), 0);
    EXPECT_FALSE(engine.hasUncaughtException());
}

} // namespace

#include "ScriptFacingTest.moc"
