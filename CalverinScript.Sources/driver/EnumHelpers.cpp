#include "EnumHelpers.h"

#include <QDateTime>
#include <QHash>
#include <QScriptContext>
#include <QScriptEngine>

#include "HostText.h"
#include "IData.h"
#include "ScriptFacing.h"
#include "ScriptMembers.h"
#include "VisitGate.h"

namespace {

constexpr int kDeepest = 100;
/// A longer array is taken for one of holes.
constexpr quint32 kLongestWalk = 1000000;

using Copies = QHash<qint64, QScriptValue>;

/// The length of an array whose elements can be walked; 0 otherwise.
quint32 LengthToWalk(const QScriptValue& value) {
    const quint32 length = value.isArray() ? value.property(QStringLiteral("length")).toUInt32() : 0;
    return length <= kLongestWalk ? length : 0;
}

QScriptValue EmptyLike(const QScriptValue& value, QScriptEngine& engine) {
    if (value.isArray())
        return engine.newArray(LengthToWalk(value));
    return value.isDate() ? engine.newDate(value.toNumber()) : engine.newObject();
}

QScriptValue CopyOf(const QScriptValue& value, Copies& copies, int depth);

/// Elements by their places, which is much faster than by their names. Holes stay holes.
void CopyElements(const QScriptValue& array, quint32 length, QScriptValue& copy, Copies& copies, int depth) {
    for (quint32 i = 0; i < length; ++i) {
        const QScriptValue element = array.property(i, QScriptValue::ResolveLocal);
        if (element.isValid())
            copy.setProperty(i, CopyOf(element, copies, depth));
    }
}

void CopyMembers(const QScriptValue& object, QScriptValue& copy, Copies& copies, int depth) {
    for (const ScriptMember& member : MembersOf(object))
        copy.setProperty(member.name, CopyOf(member.value, copies, depth));
}

QScriptValue CopyOf(const QScriptValue& value, Copies& copies, int depth) {
    if (!value.isObject() || value.isFunction() || depth > kDeepest)
        return value;
    const auto known = copies.constFind(value.objectId());
    if (known != copies.constEnd())
        return *known;
    QScriptValue copy = EmptyLike(value, *value.engine());
    copies.insert(value.objectId(), copy);
    if (const quint32 length = LengthToWalk(value))
        CopyElements(value, length, copy, copies, depth + 1);
    else
        CopyMembers(value, copy, copies, depth + 1);
    return copy;
}

} // namespace

QScriptValue DeepCopy(const QScriptValue& value) {
    Copies copies;
    return CopyOf(value, copies, 0);
}

void EnumHelpers::Install(QScriptValue object) {
    QScriptEngine* engine = object.engine();
    object.setProperty(QStringLiteral("EnumClear"),
                       engine->newFunction(&ScriptFunction<&EnumHelpers::Clear, void*>, this));
    object.setProperty(QStringLiteral("EnumAdd"), engine->newFunction(&ScriptFunction<&EnumHelpers::Add, void*>, this));
}

/// The entry of a variable in `Info`; invalid unless it has an array of items.
QScriptValue EnumHelpers::EntryWithItems(const QString& name) const {
    const QScriptValue entry =
        m_target.published().property(QStringLiteral("Info")).property(QStringLiteral("Variables")).property(name);
    return entry.property(QStringLiteral("Items")).isArray() ? entry : QScriptValue();
}

QStringList EnumHelpers::ItemsOf(const QString& name) const {
    QStringList items;
    for (const ScriptMember& item : MembersOf(EntryWithItems(name).property(QStringLiteral("Items"))))
        items.append(ScriptText(item.value));
    return items;
}

/// @return false when there is no such enumeration.
bool EnumHelpers::Change(const QString& name, const std::function<void(IEnumData&)>& change) const {
    const VisitGate::Visit visit(m_target.gate);
    IEnumData* data = visit.IsAllowed() ? m_target.enumNamed(name) : nullptr;
    if (data != nullptr)
        change(*data);
    return data != nullptr;
}

QScriptValue EnumHelpers::Clear(QScriptContext* context, QScriptEngine* engine, void* self) {
    const auto& helpers = *static_cast<EnumHelpers*>(self);
    const QString name = context->argument(0).toString();
    QScriptValue entry = context->argumentCount() > 0 ? helpers.EntryWithItems(name) : QScriptValue();
    if (!entry.isObject() || !helpers.Change(name, [](IEnumData& data) { data.ClearItems(0, 0); }))
        return QScriptValue(KXP_NOT_IMPLEMENTED);
    entry.setProperty(QStringLiteral("Items"), engine->newArray());
    return QScriptValue(KXP_OK);
}

QScriptValue EnumHelpers::Add(QScriptContext* context, QScriptEngine* /*engine*/, void* self) {
    const auto& helpers = *static_cast<EnumHelpers*>(self);
    const QString name = context->argument(0).toString();
    const QString item = context->argument(1).toString();
    QScriptValue entry = context->argumentCount() > 1 ? helpers.EntryWithItems(name) : QScriptValue();
    const auto add = [&](IEnumData& data) { data.AddItem(ToHostText(item).constData()); };
    if (!entry.isObject() || !helpers.Change(name, add))
        return QScriptValue(KXP_NOT_IMPLEMENTED);
    QScriptValue items = DeepCopy(entry.property(QStringLiteral("Items")));
    items.setProperty(items.property(QStringLiteral("length")).toUInt32(), QScriptValue(item));
    entry.setProperty(QStringLiteral("Items"), items);
    return QScriptValue(KXP_OK);
}
