#pragma once

#include "Options.h"

namespace stagehost {

/// Reads the command line.
///
/// Options may stand anywhere, except that with `exec` all words behind the function's name belong to the function,
/// whatever they look like.
class ArgumentReader {
public:
    /// @param words the command line without the program's name.
    /// @return empty on success, otherwise what is wrong; the options read so far stand anyway.
    QString Read(const QStringList& words);

    const Options& Result() const { return m_options; }

private:
    static int OwnWords(const QStringList& words);
    QString ReadTimeout(const QString& text);
    QString ReadLink(const QString& text);

    Options m_options;
};

/// The lines of the help that tell the options.
QString OptionHelp();

} // namespace stagehost
