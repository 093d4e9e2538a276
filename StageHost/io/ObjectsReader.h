#pragma once

#include <array>
#include <initializer_list>

#include <QSet>

#include "JsonNode.h"
#include "Show.h"
#include "ValueCheck.h"

namespace stagehost {

/// Reads the show's own objects of a show file: tasks, cues, screens, groups, objects, shows. Variables and devices
/// have been read before; names may be used above the place where they are given.   [host main]
class ObjectsReader {
public:
    /// @param show what has been read so far; must outlive the reader.
    explicit ObjectsReader(Show& show);

    /// The keys of a show file that this reader reads.
    static constexpr const char* kKeys[] = {"tasks", "cues", "screens", "groups", "objects", "shows"};

    void Read(const JsonNode& root);

    /// Parts of steps too: what the show does by itself, and the names that it uses.
    void ReadSets(const JsonNode& node, ActionSpec& action);
    void ReadRamps(const JsonNode& node, ActionSpec& action);
    void ReadTaskAction(const JsonNode& node, ActionSpec& action);
    void ReadCueName(const JsonNode& node, ActionSpec& action);
    void CheckStored(const JsonNode& node) const;
    void CheckVariable(const JsonNode& node, const QString& name) const;
    /// A variable, a resource, or a property of another object.
    void CheckAwaited(const JsonNode& node, const QString& name) const;
    const ValueCheck& Values() const { return m_values; }

private:
    void CollectNames(const JsonNode& root);
    void CollectNested(const JsonNode& node, const char* below, const QString& holder, QSet<QString>& names);
    void ReadTask(const JsonNode& node);
    void ReadLine(const JsonNode& node, TaskSpec& task);
    void ReadCue(const JsonNode& node);
    void ReadScreen(const JsonNode& node);
    void ReadShow(const JsonNode& node);
    UserGroupSpec ReadGroup(const JsonNode& node);
    ObjectSpec ReadObject(const JsonNode& node, const QString& holder);
    ActionSpec ReadAction(const JsonNode& node);
    void ReadCommand(const JsonNode& node, ActionSpec& action);
    ActionParameter ReadParameter(std::string name, const JsonNode& node) const;
    std::string ReadName(const JsonNode& node, const QString& holder, QSet<QString>& taken);
    bool IsKnownObject(const QString& name) const;
    std::array<const QSet<QString>*, 8> KnownObjects() const;

    Show& m_show;
    const ValueCheck m_values;
    QSet<QString> m_variables;
    QSet<QString> m_resources; ///< with their channels
    QSet<QString> m_devices;
    QSet<QString> m_stored;
    QSet<QString> m_tasks;
    QSet<QString> m_cues;
    QSet<QString> m_screens;
    QSet<QString> m_groups;
    QSet<QString> m_objects;
    QSet<QString> m_shows;
    QSet<QString> m_taken[6]; ///< names read so far, by the place of their key in kKeys
};

/// Reads the key "requests", which says how an object takes requests.
Conduct ReadConduct(const JsonNode& node);

} // namespace stagehost
