#include "CommandIds.h"

#include <algorithm>

#include <QHash>
#include <QSet>

namespace {

constexpr std::int32_t kFirstUserCommandId = 4;
constexpr std::int32_t kDeviceOwnId = 10000;

bool IsSameParam(const MScriptCommandParam& left, const MScriptCommandParam& right) {
    return left.name == right.name && left.direction == right.direction && left.type == right.type;
}

/// The numbers in use, and the search for the lowest that is not.
class IdPool {
public:
    explicit IdPool(const ScriptCommands& known) {
        for (const MScriptCommand& command : known)
            m_used.insert(command.id);
    }

    std::int32_t TakeLowest() {
        while (!IsUserCommandId(m_next) || m_used.contains(m_next))
            ++m_next;
        m_used.insert(m_next);
        return m_next;
    }

private:
    QSet<std::int32_t> m_used;
    std::int32_t m_next = kFirstUserCommandId;
};

/// The known commands by name.
class KnownCommands {
public:
    explicit KnownCommands(const ScriptCommands& known) {
        for (const MScriptCommand& command : known)
            if (IsUserCommandId(command.id))
                m_byName[command.name].append(&command);
    }

    /// The one of that name, with the same parameters if there is one; null when there is none.
    const MScriptCommand* Find(const MScriptCommand& wanted) const {
        const auto found = m_byName.constFind(wanted.name);
        if (found == m_byName.constEnd())
            return nullptr;
        const auto same = std::find_if(found->begin(), found->end(), [&](const MScriptCommand* candidate) {
            return HaveSameParams(*candidate, wanted);
        });
        return same != found->end() ? *same : found->first();
    }

private:
    QHash<QString, QVector<const MScriptCommand*>> m_byName;
};

} // namespace

bool IsUserCommandId(std::int32_t id) {
    return id >= kFirstUserCommandId && id != kDeviceOwnId;
}

bool HaveSameParams(const MScriptCommand& left, const MScriptCommand& right) {
    return std::equal(left.params.begin(), left.params.end(), right.params.begin(), right.params.end(), &IsSameParam);
}

void AssignCommandIds(const ScriptCommands& known, ScriptCommands& fresh, bool keepOld) {
    const KnownCommands working(known);
    IdPool ids(known);
    QSet<std::int32_t> given;
    for (MScriptCommand& command : fresh) {
        const MScriptCommand* old = working.Find(command);
        const bool isOwn = old != nullptr && !given.contains(old->id);
        const bool staysSame = isOwn && (!keepOld || HaveSameParams(*old, command));
        command.previousId = isOwn && !staysSame ? old->id : MScriptCommand::kNoId;
        command.id = staysSame ? old->id : ids.TakeLowest();
        given.insert(command.id);
    }
}

ScriptCommands CommitCommands(ScriptCommands& fresh, ScriptCommands& moduleCommands) {
    ScriptCommands committed;
    QSet<QString> names;
    for (const MScriptCommand& command : fresh) {
        if (names.contains(command.name))
            continue;
        names.insert(command.name);
        committed.push_back(command);
    }
    fresh = committed;
    QHash<std::int32_t, std::size_t> places;
    for (std::size_t place = 0; place < moduleCommands.size(); ++place)
        places.insert(moduleCommands[place].id, place);
    for (MScriptCommand& command : committed) {
        command.previousId = MScriptCommand::kNoId;
        const auto place = places.constFind(command.id);
        if (place != places.constEnd())
            moduleCommands[*place] = command;
        else
            moduleCommands.push_back(command);
    }
    return committed;
}

void MergeLegacyCommands(const ScriptCommands& inUse, const ScriptCommands& legacy, ScriptCommands& moduleCommands) {
    QSet<QPair<QString, std::int32_t>> working;
    QSet<std::int32_t> taken;
    const auto note = [&](const ScriptCommands& commands) {
        for (const MScriptCommand& command : commands) {
            working.insert({command.name, command.id});
            taken.insert(command.id);
        }
    };
    note(inUse);
    note(moduleCommands);
    for (const MScriptCommand& command : legacy) {
        if (working.contains({command.name, command.id}) || taken.contains(command.id))
            continue;
        taken.insert(command.id);
        moduleCommands.push_back(command);
    }
}
