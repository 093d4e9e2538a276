#pragma once

#include <functional>

#include <QScriptValue>
#include <QString>
#include <QStringList>

class IEnumData;
class VisitGate;
class QScriptContext;
class QScriptEngine;

/// The two functions that a running script finds on `Device`: `EnumClear(name)` and `EnumAdd(name, item)`. They change
/// the items of an enumeration of the device, in the host and in `Info.Variables.<name>.Items` alike, which has to be
/// an array there. Codes: 0 done, 19 too few arguments, no such enumeration or no such array.
class EnumHelpers {
public:
    /// What the functions work on; asked at each call.   [the engine's thread]
    struct Target {
        std::function<QScriptValue()> published;                  ///< the value that the script ended with
        std::function<IEnumData*(const QString& name)> enumNamed; ///< by its name without the device's; null for none
        VisitGate* gate = nullptr; ///< entered around the use of an enumeration; null where values stay
    };

    explicit EnumHelpers(Target target)
        : m_target(std::move(target)) {}
    EnumHelpers(const EnumHelpers&) = delete;
    EnumHelpers& operator=(const EnumHelpers&) = delete;

    /// Puts the functions on an object. This must outlive the object's engine.   [the engine's thread]
    void Install(QScriptValue object);

    /// The items that `Info` has for a variable; none where it has no array of them.   [the engine's thread]
    QStringList ItemsOf(const QString& name) const;

private:
    static QScriptValue Clear(QScriptContext* context, QScriptEngine* engine, void* self);
    static QScriptValue Add(QScriptContext* context, QScriptEngine* engine, void* self);
    QScriptValue EntryWithItems(const QString& name) const;
    bool Change(const QString& name, const std::function<void(IEnumData&)>& change) const;

    const Target m_target;
};

/// A copy of a value: objects, arrays and dates member by member, functions and all beyond 100 levels by reference. An
/// object that is there twice, or inside itself, is so in the copy too.   [the engine's thread]
QScriptValue DeepCopy(const QScriptValue& value);
