#pragma once

#include <QString>

#include "ScriptRecords.h"

class IData;

/// @file
/// Conversions between what scripts, stored texts and the host take for a value. Pure functions; those that are given a
/// value of the host may be called on any thread.

/// The text that counts for a variable: the user's value or the script's, in the form that the host expects of the
/// type. A script may give a time as a count of frames, a date as a number of days since 1900, an enumeration as its
/// index or item.
QString ConvertForHost(const MScriptVariable& variable);

/// The same for a value on its own.
QString ConvertForHost(const QString& value, const QString& type, const QString& valueType,
                       const ScriptProperties& properties, const QStringList& items);

/// The text that a script function gets for a parameter: numbers within the
/// limits that the script gave, times in the parameter's "ToTimeCodeType".
/// @return false when the value does not convert; the value's own text counts then.
bool ParamToText(const MScriptCommandParam& param, IData& data, QString& text);

/// A count of frames, rounded, as the text of a time. @param timeCodeType 0 to 5.
QString TimeTextOfFrames(double frames, std::int32_t timeCodeType);

/// Days since 1 January 1900, rounded, as the text of a date in the default format.
QString DateTextOfDays(double days);

/// Nearest whole number of 32 bits.
std::int32_t RoundToInt32(double number);
