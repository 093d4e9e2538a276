#pragma once

#include <chrono>
#include <functional>

#include <QProcess>

#include "PeerLines.h"
#include "ShowPeer.h"

namespace stagehost {

/// A process of a group of its own, so that Ctrl-C is not for it, and it ends with its own children.
class GroupProcess : public QProcess {
protected:
    void setupChildProcess() override;
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

    /// Waits until it is ready, has ended or the user has. Up to here its end is told to the caller alone.
    /// @return whether it is ready.
    bool WaitUntilReady(std::chrono::milliseconds limit);

    /// How it ended, with its last words: "ended with 1: no such file"; empty while it runs.
    const QString& WhyOver() const { return m_over; }

    /// Has it do something and waits until that is done. @param result receives what a call gave.
    /// @return what is wrong; empty when it is done.
    QString Do(const PeerDeed& deed, std::chrono::milliseconds limit, QString* result);

    /// Waits for a frame, behind the one that was found before. @return what is wrong; empty when it has come.
    QString WaitFor(const PeerReceipt& receipt, std::chrono::milliseconds limit);

    /// Asks it to end; what it does from now on is told to nobody.
    void AskToEnd();
    /// Waits for the end, and forces it behind the limit. Its own children end with it.
    void End(std::chrono::milliseconds limit);

private:
    void TakeOutput();
    void TakeErrors();
    void TellError(const QString& line);
    void TakeEnd();

    const QString m_name;
    const Tell m_tell;
    GroupProcess m_process;
    qint64 m_group = 0; ///< 0 when it has none, or none any more
    bool m_starts = true;
    PeerLines m_lines;
    QByteArray m_errors; ///< the begin of a line
    int m_errorLines = 0;
    QString m_lastWords;
    QString m_over;
};

} // namespace stagehost
