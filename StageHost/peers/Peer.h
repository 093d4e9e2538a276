#pragma once

#include <chrono>
#include <functional>

#include <QCoreApplication>
#include <QProcess>

#include "PeerLines.h"
#include "ShowPeer.h"

namespace stagehost {

/// A process with a keeper: Ctrl-C is not for it, and with it ends all that it has started. Its number is its keeper's.
class KeptProcess : public QProcess {
protected:
    void setupChildProcess() override;

private:
    const qint64 m_parent = QCoreApplication::applicationPid();
};

/// One peer of a show, as it runs. What it complains of, and its end where nobody asked for it, is told at once.
/// [host main]
class Peer {
public:
    using Tell = std::function<void(const QString& line)>;

    Peer(QString name, Tell tell);
    ~Peer();
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    const QString& Name() const { return m_name; }
    const PeerLines& Lines() const { return m_lines; }

    /// @return what is wrong; empty when it runs. It may not be ready yet.
    QString Start(const QString& program, const QStringList& words, const QString& folder);

    /// Waits until it is ready, has ended or the user has. Up to here its end is told to the caller alone, and so is
    /// why: a problem with its place, or the last words of a program.
    /// @return whether it is ready.
    bool WaitUntilReady(std::chrono::milliseconds limit);

    /// How it ended, with its last words: "ended with 1; its last words: no such file"; empty while it runs.
    const QString& WhyOver() const { return m_over; }

    /// Has it do something and waits until that is done. @param result receives what a call gave.
    /// @return what is wrong, with where in its script below it; empty when it is done.
    QString Do(const PeerDeed& deed, std::chrono::milliseconds limit, QString* result);

    /// Waits for a frame, behind the one that was found before. @return what is wrong; empty when it has come.
    QString WaitFor(const PeerReceipt& receipt, std::chrono::milliseconds limit);

    /// The last of what it has received and said, a line each, the latest last.
    QStringList LastTraffic();

    /// Asks it to end; what it does from now on is told to nobody.
    void AskToEnd();
    /// Waits for the end, and forces it behind the limit. What it has started ends with it.
    void End(std::chrono::milliseconds limit);

private:
    void TakeOutput();
    void TakeErrors();
    void TellError(const QString& line);
    void TellWords(const QString& words);
    void TellHeld();
    void TakeEnd();

    const QString m_name;
    const Tell m_tell;
    KeptProcess m_process;
    bool m_starts = true;
    PeerLines m_lines;
    QString m_lastLookedAt; ///< the last frame that a wait has looked at; null when none has
    QByteArray m_errors;    ///< the begin of a line
    int m_errorLines = 0;
    QString m_lastWords;
    QString m_held; ///< while it starts, its last words: where they are why it has ended they are told as that alone
    bool m_isHeldProblem = false; ///< of a script or a replay, and says all that matters
    QString m_over;
};

} // namespace stagehost
