#pragma once

#include <type_traits>
#include <utility>

#include <QScriptable>
#include <QScriptEngine>

#include "RunWithinMemory.h"

/// @file
/// The border between the script engine and this library. The engine cannot carry a C++ exception: one that comes back
/// to it from a function or method that a script has called ends the process. So want of memory becomes a script error here.

/// Throws the script error for want of memory. @param context may be null, where no script has called.   [script]
void RefuseForWantOfMemory(QScriptContext* context);

/// Whether other threads call virtual functions of an object, which they have to leave before it ends.
template <typename Object, typename = void>
struct IsSharedWithThreads : std::false_type {};
template <typename Object>
struct IsSharedWithThreads<Object, std::void_t<decltype(std::declval<Object&>().ShutThreadsOut())>> : std::true_type {};

/// An object whose methods scripts call: the class itself, behind that border.
template <typename Object>
class ScriptFacing final : public Object {
public:
    using Object::Object;
    /// The destructor of the class itself is too late: there the object is of another class already.
    ~ScriptFacing() override {
        if constexpr (IsSharedWithThreads<Object>::value)
            this->ShutThreadsOut();
    }

    int qt_metacall(QMetaObject::Call call, int id, void** arguments) override {
        int left = -1;
        if (!RunWithinMemory([&] { left = Object::qt_metacall(call, id, arguments); }))
            RefuseForWantOfMemory(CallersContext());
        return left;
    }

private:
    QScriptContext* CallersContext() const {
        if constexpr (std::is_base_of_v<QScriptable, Object>)
            return this->engine() != nullptr ? this->context() : nullptr;
        else
            return this->GetScriptEngine() != nullptr ? this->GetScriptEngine()->currentContext() : nullptr;
    }
};

/// A function that scripts call, behind that border: `engine.newFunction(&ScriptFunction<&Work>)`, or with an argument
/// of its own, `engine.newFunction(&ScriptFunction<&Work>, argument)`.
template <auto function, typename... Argument>
QScriptValue ScriptFunction(QScriptContext* context, QScriptEngine* engine, Argument... argument) {
    QScriptValue value(QScriptValue::UndefinedValue);
    if (!RunWithinMemory([&] { value = function(context, engine, argument...); }))
        RefuseForWantOfMemory(context);
    return value;
}
