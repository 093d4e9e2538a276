#pragma once

#include <QString>

struct MScriptVariable;

/// Why a text cannot be the value of a variable, in words for the user. Pure, callable on any thread.
///
/// Numbers, times and dates go to the host as its texts, or as the count that the script's own value is. An empty text is no number, and
/// is left to whoever knows what it stands for.
/// @param variable its type, its script's type of value and its items count; its value does not. @return null when it can.
QString RefusalOf(const QString& value, const MScriptVariable& variable);
