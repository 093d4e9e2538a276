#include "ScriptList.h"

#include <algorithm>

#include <QDir>
#include <QFileInfo>
#include <QListWidget>
#include <QVariant>

#include "BusyCursor.h"
#include "ScriptFiles.h"
#include "ScriptPlaces.h"

ScriptList::ScriptList(QListWidget& list)
    : m_list(list) {}

void ScriptList::Load(const MCalverinScript_Device* device, const QString& fileToSelect, QScriptEngine* engine) {
    const BusyCursor busy;
    const QString folder = LibraryFolderOf(device);
    const QStringList names = folder.isEmpty()
                                  ? QStringList()
                                  : QDir(folder).entryList({QStringLiteral("*.js")}, QDir::NoFilter, QDir::NoSort);
    for (const QString& name : names)
        if (auto description = DescribeFile(PathBelow(folder, name), engine, device))
            Put(std::move(description));
    // A list that gets the focus takes its first item by itself, unless it was told what is current.
    m_list.setCurrentIndex(QModelIndex());
    if (!fileToSelect.isEmpty())
        m_list.setCurrentItem(Find(QFileInfo(fileToSelect).fileName()));
}

QListWidgetItem* ScriptList::Put(std::unique_ptr<MScriptDescription> description) {
    QListWidgetItem* item = Find(description->fileName);
    const MScriptDescription* old = DescriptionOf(item);
    if (item == nullptr)
        item = new QListWidgetItem(&m_list);
    item->setText(description->GetDisplayText());
    item->setToolTip(description->GetDisplayText());
    item->setData(Qt::UserRole, QVariant::fromValue(description.get()));
    m_descriptions.push_back(std::move(description));
    m_descriptions.erase(std::remove_if(m_descriptions.begin(), m_descriptions.end(),
                                        [old](const auto& kept) { return old != nullptr && kept.get() == old; }),
                         m_descriptions.end());
    return item;
}

MScriptDescription* ScriptList::DescriptionOf(const QListWidgetItem* item) {
    return item != nullptr ? item->data(Qt::UserRole).value<MScriptDescription*>() : nullptr;
}

QListWidgetItem* ScriptList::Find(const QString& fileName) const {
    for (int row = 0; row < m_list.count(); ++row)
        if (DescriptionOf(m_list.item(row))->fileName == fileName)
            return m_list.item(row);
    return nullptr;
}
