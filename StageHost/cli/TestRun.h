#pragma once

#include <QElapsedTimer>
#include <QJsonObject>
#include <QProcess>
#include <QTimer>

#include "ChildProcess.h"
#include "Options.h"
#include "PassingFolder.h"
#include "TestFinder.h"

namespace stagehost {

/// How a test came out.
struct TestOutcome {
    enum class Standing { NotPlayed, Well, Failed };

    QString file;
    Standing standing = Standing::NotPlayed;
    QString failure;         ///< one or more lines; of a test that failed
    QJsonObject show;        ///< what `run --json` has printed; empty when it has come to no end
    QByteArray steps;        ///< the steps as JUnit XML; empty when there are none
    QString told;            ///< what the run has said beside its steps: standard error, whole
    QStringList log;         ///< of a test that failed: the last lines of the log
    QStringList traffic;     ///< and of what its peers have received and said
    double milliseconds = 0; ///< of the computer
};

/// One test: `stagehost run` in a process of its own, with a time limit of the computer. A run that does not end is
/// asked to, and ended by force when it does not even then.   [host main]
class TestRun {
public:
    /// Starts the process. @param options what the user wants for all tests.
    TestRun(const TestShow& test, const Options& options);
    ~TestRun();
    TestRun(const TestRun&) = delete;
    TestRun& operator=(const TestRun&) = delete;

    bool IsOver() const { return m_process.state() == QProcess::NotRunning; }

    /// Asks the run to end, since the user wants so.
    void Interrupt();

    /// How it came out; once it is over.
    TestOutcome Outcome();

private:
    /// Ends by this object's word alone: Ctrl-C would be a second request, which ends a run without its devices.
    class Process : public QProcess {
    protected:
        void setupChildProcess() override { BelongToParentAlone(); }
    };

    QStringList Words(const Options& options) const;
    void End();
    QString WhyNotWell(const QJsonObject& show) const;
    QStringList LastOfLog(const QJsonObject& show) const;

    const TestShow m_test;
    const std::chrono::milliseconds m_limit;
    PassingFolder m_folder; ///< holds what the run writes
    Process m_process;
    QTimer m_alarm;
    QElapsedTimer m_clock;
    double m_milliseconds = 0;
    bool m_isLate = false;
    bool m_isInterrupted = false;
};

} // namespace stagehost
