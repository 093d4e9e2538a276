#pragma once

#include <vector>

#include "Options.h"

namespace stagehost {

/// Reads the command line.
///
/// Options may stand anywhere, except that with `exec` all words behind the function's name belong to the function,
/// whatever they look like.
class ArgumentReader {
public:
    /// @param typed the command line without the program's name.
    /// @return empty on success, otherwise what is wrong; the options read so far stand anyway.
    QString Read(const QStringList& typed);

    const Options& Result() const { return m_options; }

private:
    static int OwnWords(const QStringList& words);
    QString ReadTimeout(const QString& text);
    QString ReadSeed(const QString& text);
    QString ReadLink(const QString& text);
    QString ReadLevel(const QString& text);
    QString ReadSpeed(const QString& text);
    QString ReadClockTime(const QString& text);
    QString ReadWithin(const QString& text);
    QString ReadJobs(const QString& text);
    QString WhyNoClock(const char* option) const;
    QStringList TakeLogDevices(const QStringList& words);

    Options m_options;
};

/// One option of the program.
struct OptionRow {
    const char* name;
    const char* shortName; ///< null when there is none
    const char* value;     ///< what the help calls the value; null when it takes none
    const char* help;
};

/// All of them, in the order of the help.
std::vector<OptionRow> AllOptions();

/// The lines of the help that tell the options.
QString OptionHelp();

} // namespace stagehost
