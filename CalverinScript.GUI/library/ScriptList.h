#pragma once

#include <memory>
#include <vector>

#include <QString>

#include "MScriptDescription.h"

class MCalverinScript_Device;
class QListWidget;
class QListWidgetItem;
class QScriptEngine;

/// The scripts of the library in a list of a dialog, each under its title and its file name. Owns the descriptions, to which the items
/// point.   [host main]
class ScriptList {
public:
    /// @param list borrowed for this object's life.
    explicit ScriptList(QListWidget& list);

    /// Fills the list with the scripts of the library and chooses the one that has the same file name as fileToSelect, none without
    /// it. @param device tells where the library is.
    void Load(const MCalverinScript_Device* device, const QString& fileToSelect, QScriptEngine* engine);
    /// Adds a script, or puts it in the place of the one of its file name. @return its item.
    QListWidgetItem* Put(std::unique_ptr<MScriptDescription> description);
    /// The description of an item; null for a null item.
    static MScriptDescription* DescriptionOf(const QListWidgetItem* item);

private:
    QListWidgetItem* Find(const QString& fileName) const;

    QListWidget& m_list;
    std::vector<std::unique_ptr<MScriptDescription>> m_descriptions;
};
