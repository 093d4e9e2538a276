#include "ObjectsReader.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "BorderText.h"
#include "HardwareReader.h"
#include "NameCheck.h"
#include "NearNames.h"
#include "ShowKeys.h"
#include "UserGroup.h"

namespace stagehost {

namespace {

constexpr const char* kFirstPage = "Page 1";

enum Key { kTasks, kCues, kScreens, kGroups, kObjects, kShows };

JsonNode MemberOf(const JsonNode& node, const char* name) {
    return node.Member(QLatin1String(name));
}

/// The place of a text among names; complains about any other.
template <std::size_t Count>
int Choose(const JsonNode& node, const char* const (&names)[Count]) {
    if (node.IsMissing())
        return 0;
    const QString text = node.Text();
    if (!node.IsText())
        return 0;
    QStringList all;
    for (std::size_t index = 0; index < Count; ++index) {
        if (text == QLatin1String(names[index]))
            return static_cast<int>(index);
        all += Quoted(QLatin1String(names[index]));
    }
    node.Complain(QStringLiteral("expected ") + all.mid(0, all.size() - 1).join(QStringLiteral(", ")) +
                  QStringLiteral(" or ") + all.last());
    return 0;
}

QStringList Sorted(const QSet<QString>& names) {
    QStringList list = names.values();
    list.removeAll(QString());
    list.sort();
    return list;
}

template <typename Sets>
QSet<QString> United(const Sets& sets) {
    QSet<QString> all;
    for (const auto* set : sets)
        all |= *set;
    return all;
}

void CheckKnown(const JsonNode& node, const QSet<QString>& known, const QString& name, const char* kind) {
    if ((node.IsText() || node.IsMissing()) && !known.contains(name))
        node.Complain(QStringLiteral("there is no %1 \"%2\"").arg(QLatin1String(kind), name) +
                      NamesInstead(name, Sorted(known)));
}

} // namespace

ObjectsReader::ObjectsReader(Show& show)
    : m_show(show)
    , m_values(show) {
    for (const auto& variable : show.variables)
        m_variables += FromBorderText(variable.name);
    for (const auto& name : NamesOf(show.resources))
        m_resources += FromBorderText(name);
    for (const auto& device : show.devices)
        m_devices += device.name;
    for (const auto& command : show.commands)
        m_stored += command.name;
}

void ObjectsReader::Read(const JsonNode& root) {
    CollectNames(root);
    const auto list = [&root](Key key) { return MemberOf(root, kKeys[key]); };
    list(kTasks).ForEach([this](const JsonNode& node) { ReadTask(node); });
    list(kCues).ForEach([this](const JsonNode& node) { ReadCue(node); });
    list(kScreens).ForEach([this](const JsonNode& node) { ReadScreen(node); });
    list(kGroups).ForEach([this](const JsonNode& node) { m_show.objects.groups.push_back(ReadGroup(node)); });
    list(kObjects).ForEach([this](const JsonNode& node) { m_show.objects.objects.push_back(ReadObject(node, {})); });
    list(kShows).ForEach([this](const JsonNode& node) { ReadShow(node); });
}

void ObjectsReader::CollectNames(const JsonNode& root) {
    QSet<QString>* const sets[] = {&m_tasks, &m_cues, &m_screens, &m_groups, &m_objects, &m_shows};
    constexpr const char* kBelow[] = {nullptr, nullptr, nullptr, "groups", "objects", nullptr};
    for (std::size_t key = 0; key < std::size(kKeys); ++key) {
        for (const JsonNode& node : MemberOf(root, kKeys[key]).Items())
            CollectNested(node, kBelow[key], {}, *sets[key]);
    }
}

void ObjectsReader::CollectNested(const JsonNode& node, const char* below, const QString& holder,
                                  QSet<QString>& names) {
    const bool dotted = &names == &m_objects;
    const QString name = (dotted ? holder : QString()) + MemberOf(node, "name").PlainText();
    names += name;
    if (below == nullptr)
        return;
    for (const JsonNode& inner : MemberOf(node, below).Items())
        CollectNested(inner, below, name + QLatin1Char('.'), names);
}

void ObjectsReader::ReadTask(const JsonNode& node) {
    if (!node.ExpectObject(kTaskKeys))
        return;
    TaskSpec task;
    task.name = ReadName(MemberOf(node, "name"), {}, m_taken[kTasks]);
    task.conduct = ReadConduct(node);
    MemberOf(node, "lines").ForEach([&](const JsonNode& line) { ReadLine(line, task); });
    m_show.objects.tasks.push_back(std::move(task));
}

void ObjectsReader::ReadLine(const JsonNode& node, TaskSpec& task) {
    if (!node.ExpectObject(kLineKeys))
        return;
    TaskLineSpec line;
    const std::int32_t before = task.lines.empty() ? 0 : task.lines.back().at;
    line.at = MemberOf(node, "at").Whole(0).value_or(before);
    if (line.at < before)
        MemberOf(node, "at").Complain(QStringLiteral("before the line above"));
    const JsonNode label = MemberOf(node, "label");
    line.label = label.BorderText();
    const bool taken = std::any_of(task.lines.begin(), task.lines.end(),
                                   [&](const auto& other) { return !label.IsMissing() && other.label == line.label; });
    if (taken)
        label.Complain(QStringLiteral("another line has this label"));
    line.action = ReadAction(node);
    ReadCueName(MemberOf(node, "cue"), line.action);
    task.lines.push_back(std::move(line));
}

void ObjectsReader::ReadCue(const JsonNode& node) {
    if (!node.ExpectObject(kCueKeys))
        return;
    CueSpec cue;
    cue.name = ReadName(MemberOf(node, "name"), {}, m_taken[kCues]);
    cue.action = ReadAction(node);
    cue.conduct = ReadConduct(node);
    m_show.objects.cues.push_back(std::move(cue));
}

void ObjectsReader::ReadScreen(const JsonNode& node) {
    if (!node.ExpectObject(kScreenKeys))
        return;
    UserScreenSpec screen;
    screen.name = ReadName(MemberOf(node, "name"), {}, m_taken[kScreens]);
    screen.conduct = ReadConduct(node);
    MemberOf(node, "pages").ForEach([&](const JsonNode& page) { screen.pages.push_back(page.BorderText()); });
    if (screen.pages.empty())
        screen.pages.emplace_back(kFirstPage);
    m_show.objects.screens.push_back(std::move(screen));
}

void ObjectsReader::ReadShow(const JsonNode& node) {
    if (!node.ExpectObject(kLoadableShowKeys))
        return;
    LoadableShowSpec show;
    show.name = ReadName(MemberOf(node, "name"), {}, m_taken[kShows]);
    show.action = ReadAction(node);
    ReadCueName(MemberOf(node, "cue"), show.action);
    show.conduct = ReadConduct(node);
    m_show.objects.shows.push_back(std::move(show));
}

UserGroupSpec ObjectsReader::ReadGroup(const JsonNode& node) {
    UserGroupSpec group;
    if (!node.ExpectObject(kGroupKeys))
        return group;
    group.name = ReadName(MemberOf(node, "name"), {}, m_taken[kGroups]);
    if (group.name == kGrantedGroup)
        MemberOf(node, "name").Complain(QStringLiteral("this name stands for the whole show"));
    group.conduct = ReadConduct(node);
    MemberOf(node, "members").ForEach([&](const JsonNode& member) {
        const QString name = member.Text();
        if (member.IsText() && !IsKnownObject(name))
            member.Complain(QStringLiteral("there is no object ") + Quoted(name) +
                            NamesInstead(name, Sorted(United(KnownObjects()))));
        group.members.push_back(member.Border(name));
    });
    MemberOf(node, "groups").ForEach([&](const JsonNode& inner) { group.groups.push_back(ReadGroup(inner)); });
    return group;
}

ObjectSpec ObjectsReader::ReadObject(const JsonNode& node, const QString& holder) {
    ObjectSpec object;
    if (!node.ExpectObject(kObjectKeys))
        return object;
    object.name = ReadName(MemberOf(node, "name"), holder, m_taken[kObjects]);
    object.conduct = ReadConduct(node);
    const JsonNode properties = MemberOf(node, "properties");
    properties.ExpectObjectOfAny();
    for (const QString& name : properties.MemberNames())
        object.properties.emplace_back(properties.Border(name), properties.Member(name).BorderScalar());
    const QString below = holder + FromBorderText(object.name) + QLatin1Char('.');
    MemberOf(node, "objects").ForEach([&](const JsonNode& inner) {
        object.objects.push_back(ReadObject(inner, below));
    });
    return object;
}

ActionSpec ObjectsReader::ReadAction(const JsonNode& node) {
    ActionSpec action;
    ReadSets(MemberOf(node, "set"), action);
    ReadRamps(MemberOf(node, "ramp"), action);
    ReadCommand(node, action);
    const JsonNode stored = MemberOf(node, "stored");
    if (!stored.IsMissing())
        CheckStored(stored);
    action.stored = stored.BorderText();
    ReadTaskAction(node, action);
    return action;
}

void ObjectsReader::ReadSets(const JsonNode& node, ActionSpec& action) {
    node.ExpectObjectOfAny();
    for (const QString& name : node.MemberNames()) {
        const JsonNode value = node.Member(name);
        CheckVariable(value, name);
        action.sets.emplace_back(node.Border(name), value.BorderScalar());
        value.ComplainUnlessEmpty(m_values.WhyNotSet(name, action.sets.back().second));
    }
}

void ObjectsReader::ReadRamps(const JsonNode& node, ActionSpec& action) {
    node.ExpectObjectOfAny();
    for (const QString& name : node.MemberNames()) {
        const JsonNode ramp = node.Member(name);
        if (!m_values.IsChannel(name))
            ramp.Complain(QStringLiteral("there is no channel ") + Quoted(name));
        if (!ramp.ExpectObject(kRampKeys))
            continue;
        const auto to = MemberOf(ramp, "to").Whole(std::numeric_limits<int>::min());
        if (MemberOf(ramp, "to").IsMissing())
            MemberOf(ramp, "to").Complain(QStringLiteral("expected a whole number"));
        else if (to)
            MemberOf(ramp, "to").ComplainUnlessEmpty(m_values.WhyNotRamped(name, *to));
        action.ramps.push_back({ramp.Border(name), to.value_or(0), MemberOf(ramp, "time").Whole(0).value_or(0)});
    }
}

void ObjectsReader::ReadCommand(const JsonNode& node, ActionSpec& action) {
    const JsonNode device = MemberOf(node, "device");
    const JsonNode command = MemberOf(node, "command");
    const JsonNode params = MemberOf(node, "params");
    if (device.IsMissing()) {
        for (const JsonNode& lonely : {command, params}) {
            if (!lonely.IsMissing())
                lonely.Complain(QStringLiteral("needs a \"device\""));
        }
        return;
    }
    CheckKnown(device, m_devices, device.Text(), "device");
    action.device = device.BorderText();
    action.command = command.BorderScalar();
    if (action.command.empty())
        command.Complain(QStringLiteral("expected the name or the id of a command"));
    params.ExpectObjectOfAny();
    for (const QString& name : params.MemberNames())
        action.parameters.push_back(ReadParameter(params.Border(name), params.Member(name)));
}

ActionParameter ObjectsReader::ReadParameter(std::string name, const JsonNode& node) const {
    if (!node.IsObject())
        return {std::move(name), node.BorderScalar(), false};
    const JsonNode variable = MemberOf(node, "variable");
    if (node.MemberNames() != QStringList(QStringLiteral("variable")))
        node.Complain(QStringLiteral("expected \"variable\""));
    else
        CheckVariable(variable, variable.Text());
    return {std::move(name), ToBorderText(variable.PlainText()), true};
}

void ObjectsReader::ReadTaskAction(const JsonNode& node, ActionSpec& action) {
    const JsonNode task = MemberOf(node, "task");
    const JsonNode what = MemberOf(node, "action");
    if (task.IsMissing()) {
        if (!what.IsMissing())
            what.Complain(QStringLiteral("needs a \"task\""));
        return;
    }
    CheckKnown(task, m_tasks, task.Text(), "task");
    action.task = task.BorderText();
    action.taskAction = static_cast<TaskAction>(Choose(what, kTaskActionNames));
}

void ObjectsReader::ReadCueName(const JsonNode& node, ActionSpec& action) {
    if (node.IsMissing())
        return;
    CheckKnown(node, m_cues, node.Text(), "cue");
    action.cue = node.BorderText();
}

void ObjectsReader::CheckStored(const JsonNode& node) const {
    CheckKnown(node, m_stored, node.Text(), "stored command");
}

void ObjectsReader::CheckVariable(const JsonNode& node, const QString& name) const {
    if (!m_variables.contains(name) && !m_resources.contains(name) && !name.contains(QLatin1Char('.')))
        node.Complain(QStringLiteral("there is no variable ") + Quoted(name) +
                      NamesInstead(name, Sorted(m_variables | m_resources)));
}

void ObjectsReader::CheckAwaited(const JsonNode& node, const QString& name) const {
    const int point = name.lastIndexOf(QLatin1Char('.'));
    if (point < 0 || m_resources.contains(name))
        return CheckVariable(node, name);
    const QString object = name.left(point);
    if (!IsKnownObject(object) && !m_groups.contains(object) &&
        !m_devices.contains(name.section(QLatin1Char('.'), 0, 0)))
        node.Complain(QStringLiteral("there is no object ") + Quoted(object) +
                      NamesInstead(object, Sorted(United(KnownObjects()))));
}

std::string ObjectsReader::ReadName(const JsonNode& node, const QString& holder, QSet<QString>& taken) {
    std::string name = node.BorderText();
    CheckName(node, name, "an object");
    const QString full = holder + FromBorderText(name);
    if (taken.contains(full))
        node.Complain(QStringLiteral("another one has this name"));
    taken += full;
    return name;
}

bool ObjectsReader::IsKnownObject(const QString& name) const {
    const bool ofDevice = m_devices.contains(name.section(QLatin1Char('.'), 0, 0)) && name.contains(QLatin1Char('.'));
    const auto sets = KnownObjects();
    return ofDevice || std::any_of(sets.begin(), sets.end(), [&](const auto* set) { return set->contains(name); });
}

std::array<const QSet<QString>*, 8> ObjectsReader::KnownObjects() const {
    return {&m_variables, &m_resources, &m_devices, &m_tasks, &m_cues, &m_screens, &m_objects, &m_shows};
}

Conduct ReadConduct(const JsonNode& node) {
    return static_cast<Conduct>(Choose(MemberOf(node, "requests"), kConductNames));
}

} // namespace stagehost
