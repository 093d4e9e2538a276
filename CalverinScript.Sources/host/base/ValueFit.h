#pragma once

#include <QString>

#include "IData.h"

/// Why a number or an enumeration of the host does not hold a text that it was just given: "is no whole number from 0
/// to 100". Empty when it does, and for every other type. Hosts say nothing when they drop a text, so this looks at
/// what became of it.   [any]
QString WhyMisfit(IData& data, const QString& text);

/// Whether WhyMisfit has something to look at for values of that type.
bool CanMisfit(KXPDataType type);
