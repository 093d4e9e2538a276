#include "CompletionTable.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <optional>

#include <QStandardItemModel>
#include <tinyxml.h>

#include "HostXml.h"
#include "IManagerRemote.h"
#include "LatePicture.h"
#include "ScriptCalls.h"

namespace {

constexpr const char* kGrantedGroup = "GrantedRootGroup";
constexpr const char* kGroupOfAllGroups = "User Groups";

bool IsSame(const char* left, const char* right) {
    return std::strcmp(left, right) == 0;
}

std::optional<ObjectListText> ReadList(IManagerRemote& link, std::uint32_t type) {
    char* text = nullptr;
    if (link.GetObjectList(kGrantedGroup, type, &text) != KXP_OK || text == nullptr)
        return std::nullopt;
    ObjectListText list{type, text};
    link.FreeText(&text);
    return list;
}

/// What all rows of one kind share.
struct RowLook {
    QVariant picture;
    QVariant category;
};

/// Makes the rows of a table, to which they are given.
class RowMaker {
public:
    RowMaker() {
        for (const CompletionKind& kind : kCompletionKinds)
            m_looks.push_back({LatePictureOf(kind.picture), QString::fromLatin1(kind.category)});
    }
    void AddCalls() {
        const QVariant picture = LatePictureOf(kCallPicture);
        for (const ScriptCall& call : kScriptCalls) {
            AddRow(QString::fromLatin1(call.name), {picture, QString::fromLatin1(call.signature)});
            m_rows.back()->setData(QString::fromLatin1(call.insertion), Qt::UserRole);
        }
    }
    void AddList(const ObjectListText& list) {
        TiXmlDocument document;
        if (ParseHostXml(document, list.text.c_str()) && document.RootElement() != nullptr)
            AddObjects(*document.RootElement(), list.listType);
    }
    QList<QStandardItem*> TakeRows() { return std::move(m_rows); }

private:
    void AddObjects(const TiXmlElement& parent, std::uint32_t listType) {
        for (const TiXmlElement* object = parent.FirstChildElement("Object"); object != nullptr;
             object = object->NextSiblingElement("Object"))
            AddObject(*object, listType);
    }

    void AddObject(const TiXmlElement& object, std::uint32_t listType) {
        const char* const name = object.Attribute("Name");
        const char* const type = object.Attribute("Type");
        const bool isGroup = listType == ObjectListType::kUserGroups;
        const char* const value = isGroup ? "" : object.Attribute("Value");
        if (name == nullptr || type == nullptr || value == nullptr)
            return;
        const auto* kind = std::find_if(std::begin(kCompletionKinds), std::end(kCompletionKinds), [&](const auto& row) {
            return row.listType == listType && IsSame(row.typeName, type) &&
                   (row.valueName == nullptr || IsSame(row.valueName, value));
        });
        if (kind == std::end(kCompletionKinds))
            return;
        if (!isGroup || !IsSame(name, kGroupOfAllGroups))
            AddRow(QString::fromUtf8(name), m_looks[static_cast<std::size_t>(kind - std::begin(kCompletionKinds))]);
        if (isGroup)
            AddObjects(object, listType);
    }

    void AddRow(const QString& name, const RowLook& look) {
        auto* row = new QStandardItem(name);
        row->setData(look.picture, Qt::DecorationRole);
        row->setData(look.category, Qt::ToolTipRole);
        m_rows.append(row);
    }

    std::vector<RowLook> m_looks; ///< one for each of kCompletionKinds
    QList<QStandardItem*> m_rows;
};

} // namespace

std::vector<ObjectListText> ReadObjectLists(IManagerRemoteManager* links) {
    IManagerRemote* const link = links != nullptr ? links->GetRemote() : nullptr;
    std::vector<ObjectListText> lists;
    if (link == nullptr)
        return lists;
    link->RegisterGroup(nullptr, kGrantedGroup);
    std::uint32_t last = 0;
    for (const CompletionKind& kind : kCompletionKinds) {
        auto list = kind.listType != last ? ReadList(*link, kind.listType) : std::nullopt;
        if (list)
            lists.push_back(std::move(*list));
        last = kind.listType;
    }
    link->UnregisterGroup();
    link->Release();
    return lists;
}

void FillCompletionTable(QStandardItemModel& table, const std::vector<ObjectListText>& lists) {
    RowMaker maker;
    maker.AddCalls();
    for (const ObjectListText& list : lists)
        maker.AddList(list);
    table.clear();
    table.invisibleRootItem()->appendRows(maker.TakeRows());
}
