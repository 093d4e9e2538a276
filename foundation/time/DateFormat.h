#pragma once

#include <cstdint>
#include <string_view>

// A format of dates is one character, '0' to '8': the order of the fields, plus 3 when they are separated by "-", plus
// 6 when by ".". The functions may be called on any thread.

enum class DateOrder : std::int8_t { MonthFirst, DayFirst, YearFirst };

/// The order that a format reads and writes; DayFirst for characters that are no format.
DateOrder DateOrderOf(char format);

/// The separator that a format writes; "/" for characters that are no format.
char WrittenSeparator(char format);

/// The separator that a format reads: "/" below '3', "." from '6' on, "-" between. For characters that are no format
/// this is not always the one that they write.
char ReadSeparator(char format);

/// The format where none is asked for: '1' (day first, "/") until a host sets another. This folder looks at no locale
/// of its own; whoever assembles the program hands over the user's once, before the first date is read, for example
/// SetDefaultDateFormat(DateFormatOfPattern("dd.MM.yyyy")). A character that is no format sets '1'.
void SetDefaultDateFormat(char format);
char DefaultDateFormat();

/// The format nearest to a pattern of the form "dd.MM.yyyy", as locales give it: the first of its letters d, M and y
/// tells the order, the first of "-", "." and "/" the separator. Text between single quotes does not count. '1' when
/// there is neither.
char DateFormatOfPattern(std::string_view pattern);
