#pragma once

#include "Session.h"

namespace stagehost {

/// What came of one line of the user.
struct LineOutcome {
    int exitCode = 0;    ///< as the program's
    QString text;        ///< the answer, or what is wrong
    QStringList place{}; ///< where that is in a script; empty when it is in none
};

/// Does what the user says while a show runs: one line, one deed. A word may stand in double quotes.   [host main]
class LiveShow {
public:
    LiveShow(Session& session, const Show& show);

    LineOutcome Do(const QString& line);

    /// Whether the user has said "quit".
    bool IsOver() const { return m_over; }

    /// The lines that there are, for the help.
    static QString Help();

private:
    struct Row;
    static const Row kRows[];
    static QStringList Names();

    LineOutcome Set(const QStringList& words);
    LineOutcome Get(const QStringList& words);
    LineOutcome RampLine(const QStringList& words);
    LineOutcome List(const QStringList& words);
    LineOutcome SendLine(const QStringList& words);
    LineOutcome StoredLine(const QStringList& words);
    LineOutcome TaskLine(const QStringList& words);
    LineOutcome CueLine(const QStringList& words);
    LineOutcome PeerLine(const QStringList& words);
    LineOutcome PeerFrame(const QStringList& words);
    LineOutcome WaitLine(const QStringList& words);
    LineOutcome PauseLine(const QStringList& words);
    LineOutcome Play(const QStringList& words);
    LineOutcome HelpLine(const QStringList& words);
    LineOutcome Quit(const QStringList& words);

    Session& m_session;
    const Show& m_show;
    bool m_over = false;
};

/// The inputs that words of the form PARAM=VALUE stand for.
MaybeFailure ReadInputs(const QStringList& words, std::vector<ParameterInput>& inputs);

} // namespace stagehost
