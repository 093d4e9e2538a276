#pragma once

#include <QString>

/// @file
/// What is installed beside the program, made of its tables of commands, options and exit codes.   [any]

namespace stagehost {

/// The manual page, in the language of man(7).
QString ManualPage(const QString& version);

/// Completion of commands, options and their words, and of files where one is expected.
QString BashCompletion();
QString ZshCompletion();

} // namespace stagehost
