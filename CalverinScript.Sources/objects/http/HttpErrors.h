#pragma once

#include <QNetworkReply>

/// @file
/// The error numbers that scripts see, and their texts. Numbers are those of QNetworkReply::NetworkError but for two of
/// our own. Pure functions, callable on any thread.

inline constexpr int kHttpNoError = 0;
inline constexpr int kHttpTimedOut = 4;
inline constexpr int kHttpWrongPath = 24;   ///< a download without a file to write to
inline constexpr int kHttpFileRefused = 25; ///< the file of a download cannot be written
inline constexpr int kHttpUnknownNetworkError = 99;
inline constexpr int kHttpUnknownContentError = 299;
inline constexpr int kHttpUnknownProtocol = 301;

/// The text of a number; "Undefined error" for 0 and for every number outside the table.
const char* HttpErrorText(int code);

/// The number that scripts see for an error: newer kinds of errors count as the general one of their group.
int HttpErrorNumber(QNetworkReply::NetworkError error);
