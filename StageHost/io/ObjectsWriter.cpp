#include "ObjectsWriter.h"

#include <QJsonArray>

#include "BorderText.h"

namespace stagehost {

namespace {

void Insert(QJsonObject& object, const char* key, const QJsonValue& value) {
    object.insert(QLatin1String(key), value);
}

void InsertText(QJsonObject& object, const char* key, const std::string& text) {
    if (!text.empty())
        Insert(object, key, FromBorderText(text));
}

template <typename Items, typename Write>
void InsertList(QJsonObject& object, const char* key, const Items& items, Write write) {
    QJsonArray list;
    for (const auto& item : items)
        list.append(write(item));
    if (!list.isEmpty())
        Insert(object, key, list);
}

QJsonObject TextMap(const std::vector<std::pair<std::string, std::string>>& pairs) {
    QJsonObject object;
    for (const auto& [name, value] : pairs)
        object.insert(FromBorderText(name), FromBorderText(value));
    return object;
}

QJsonValue Parameter(const ActionParameter& parameter) {
    const QString text = FromBorderText(parameter.text);
    return parameter.isVariable ? QJsonValue(QJsonObject{{QStringLiteral("variable"), text}}) : QJsonValue(text);
}

/// A thing with a name and a conduct.
template <typename Spec>
QJsonObject Named(const Spec& spec) {
    QJsonObject object{{QStringLiteral("name"), FromBorderText(spec.name)}};
    WriteConduct(spec.conduct, object);
    return object;
}

QJsonObject Line(const TaskLineSpec& line) {
    QJsonObject object{{QStringLiteral("at"), line.at}};
    InsertText(object, "label", line.label);
    WriteAction(line.action, object);
    return object;
}

QJsonObject Task(const TaskSpec& task) {
    QJsonObject object = Named(task);
    InsertList(object, "lines", task.lines, &Line);
    return object;
}

template <typename Spec>
QJsonObject Acting(const Spec& spec) {
    QJsonObject object = Named(spec);
    WriteAction(spec.action, object);
    return object;
}

QJsonObject Screen(const UserScreenSpec& screen) {
    QJsonObject object = Named(screen);
    InsertList(object, "pages", screen.pages, [](const std::string& page) { return FromBorderText(page); });
    return object;
}

QJsonObject Group(const UserGroupSpec& group) {
    QJsonObject object = Named(group);
    InsertList(object, "members", group.members, [](const std::string& member) { return FromBorderText(member); });
    InsertList(object, "groups", group.groups, &Group);
    return object;
}

QJsonObject Object(const ObjectSpec& spec) {
    QJsonObject object = Named(spec);
    if (!spec.properties.empty())
        Insert(object, "properties", TextMap(spec.properties));
    InsertList(object, "objects", spec.objects, &Object);
    return object;
}

} // namespace

void WriteObjects(const ShowSpec& objects, QJsonObject& root) {
    InsertList(root, "tasks", objects.tasks, &Task);
    InsertList(root, "cues", objects.cues, &Acting<CueSpec>);
    InsertList(root, "screens", objects.screens, &Screen);
    InsertList(root, "groups", objects.groups, &Group);
    InsertList(root, "objects", objects.objects, &Object);
    InsertList(root, "shows", objects.shows, &Acting<LoadableShowSpec>);
}

void WriteAction(const ActionSpec& action, QJsonObject& object) {
    if (!action.sets.empty())
        Insert(object, "set", TextMap(action.sets));
    QJsonObject ramps;
    for (const auto& ramp : action.ramps)
        ramps.insert(FromBorderText(ramp.channel),
                     QJsonObject{{QStringLiteral("to"), ramp.to}, {QStringLiteral("time"), ramp.time}});
    if (!ramps.isEmpty())
        Insert(object, "ramp", ramps);
    InsertText(object, "device", action.device);
    InsertText(object, "command", action.command);
    QJsonObject parameters;
    for (const auto& parameter : action.parameters)
        parameters.insert(FromBorderText(parameter.name), Parameter(parameter));
    if (!parameters.isEmpty())
        Insert(object, "params", parameters);
    InsertText(object, "stored", action.stored);
    InsertText(object, "task", action.task);
    if (!action.task.empty())
        Insert(object, "action", QLatin1String(kTaskActionNames[static_cast<int>(action.taskAction)]));
    InsertText(object, "cue", action.cue);
}

void WriteConduct(Conduct conduct, QJsonObject& object) {
    if (conduct != Conduct::Normal)
        Insert(object, "requests", QLatin1String(kConductNames[static_cast<int>(conduct)]));
}

} // namespace stagehost
