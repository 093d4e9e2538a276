#pragma once

#include <vector>

#include <QString>
#include <QStringList>

#include "Options.h"

namespace stagehost {

/// One command of the program: its form, its help and its work.
struct Command {
    const char* name;
    const char* form;     ///< the words behind the name
    const char* summary;  ///< one line or more
    const char* examples; ///< lines of the help
    int fewest;           ///< words behind the name
    int most;             ///< -1 for any number
    int (*run)(const Options& options);
    const char* tooMany = nullptr; ///< what is said of more words where the form does not say it
};

/// All of them, in the order of the help.
std::vector<Command> AllCommands();

/// The command of that name, or null.
const Command* FindCommand(const QString& name);

QStringList CommandNames();

/// The help of one command or, for null, of the program.
QString HelpText(const Command* command);

} // namespace stagehost
