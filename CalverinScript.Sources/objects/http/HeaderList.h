#pragma once

#include <QString>

/// @file
/// A header list: lines `name:value`, joined with "\r\n". Nothing is trimmed and no blank is added. Names are compared
/// exactly, upper and lower case included. Pure functions, callable on any thread.

/// The text behind the first ":" of the first line with that name; "" when there is none.
QString HeaderValue(const QString& list, const QString& name);

/// The text before the first ":" of a line, counted from 1; "" for a line that is not there or has no ":".
QString HeaderNameAt(const QString& list, int index);

/// The text behind the first ":" of a line, by the same rules.
QString HeaderValueAt(const QString& list, int index);

/// The number of lines, empty ones included: an empty list has one.
int HeaderCount(const QString& list);

/// The list with one more line.
QString WithHeader(const QString& list, const QString& name, const QString& value);
