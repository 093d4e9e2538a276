#pragma once

#include <functional>
#include <vector>

#include "PerformCommands.h"

class QTableWidget;

/// @file
/// The table in which the parameters of a command get their values.   [all: host main]

/// Its columns. Nothing stands in the last two, which have no width.
namespace ParamColumn {
enum Column { Type, Name, Direction, Value, Wizard, VarSelector, Count };
}

/// Lays out an empty table, and has a CustomDelegate draw it.
void SetUpParamTable(QTableWidget& table);

/// Makes the table anew, with a row for each parameter. It says nothing of itself meanwhile.
/// @param changed called when another item of an enumeration is chosen, as long as its row is there.
void ShowParams(QTableWidget& table, const std::vector<OfferedParam>& params, const std::function<void()>& changed);

/// The parameters with the values that stand in the table.
std::vector<GivenParam> ReadParamTable(const QTableWidget& table);
