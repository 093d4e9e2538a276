#pragma once

#include <cstdint>

class QListWidget;
class QStandardItemModel;

/// @file
/// The names of the host's objects, as the insertion dialogs list them.   [all: host main]

/// Makes the rows of one list of the completion table those of another table, by name alone, in the order of the names.
/// @param listType see ObjectListType.
void CopyNames(const QStandardItemModel& table, std::uint32_t listType, QStandardItemModel& names);

/// Makes the names the items of a list, of which none is current then.
void ShowNames(const QStandardItemModel& names, QListWidget& list);

/// Takes away what is current in a list. It stays so when the list gets the focus, where it would else take its first item.
void ForgetCurrent(QListWidget& list);
