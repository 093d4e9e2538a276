#pragma once

#include <memory>

#include <QElapsedTimer>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

/// Standard inputs that nobody will ever speak on.
constexpr const char* kInputsOfNobody[] = {"exec </dev/null", "exec <&-", "echo '{}' >file; exec <file"};
/// A pipe whose only writer has gone before.
constexpr const char* kPipeLeft = "mkfifo pipe; exec 4<>pipe; exec <pipe; exec 4>&-; rm pipe";

/// The built program as people and their scripts use it.
class StageHostProcess {
public:
    /// @param module the module file that is passed with --module; empty: none is passed.
    explicit StageHostProcess(QString module = {});

    /// Runs the program with these words and waits for its end. A run that takes longer than a minute is killed and has
    /// the exit code -1.
    void Run(const QStringList& words);

    /// Begins a run that Say, WaitForOutput and Finish go on with.
    void Begin(const QStringList& words);
    /// The same behind a line of the shell that says what standard input is: one of kInputsOfNobody.
    void BeginWithInput(const char* line, const QStringList& words);
    /// Sends a line to standard input.
    void Say(const char* line);
    /// Waits until standard output holds a text. @return false when it does not come within a minute.
    bool WaitForOutput(const char* text);
    /// The same for standard error.
    bool WaitForErrors(const char* text);
    /// Asks the program to end, as Ctrl-C does.
    void Interrupt() { m_process->terminate(); }
    /// Ends the program by force, as nobody should.
    void Kill();
    /// The process that the program has started, once there is one; empty when there is none.
    QString Child() const;
    qint64 ProcessId() const { return m_process->processId(); }
    /// Closes standard input and waits for the end.
    void Finish();

    /// What the following runs find on standard input.
    void SetInput(const QByteArray& input) { m_input = input; }

    /// The mood of the fake module for the following runs.
    void SetMood(const char* mood) { m_mood = QString::fromLatin1(mood); }
    void SetWorkingFolder(const QString& folder) { m_workingFolder = folder; }

    int ExitCode() const { return m_exitCode; }
    QString Output() const { return m_output; } ///< standard output
    QString Errors() const { return m_errors; } ///< standard error
    qint64 Milliseconds() const { return m_milliseconds; }
    /// What a run may take that takes so long on a machine that has nothing else to do: as much more as the machine is
    /// slow just now, which a run of an empty show tells.
    qint64 Soon(qint64 milliseconds) const;

    /// Standard output as a JSON object; an empty one when it is none.
    QJsonObject Json() const;

    /// A file in a folder of the test's own. @return its full path.
    QString File(const QString& name, const QByteArray& text) const;
    QString Folder() const { return m_folder.path(); }

private:
    void Start(const QString& program, const QStringList& words);
    bool WaitFor(const QString& heard, QProcess::ProcessChannel channel, const QString& text);
    void TakeHeard();

    const QString m_module;
    QTemporaryDir m_folder;
    QString m_workingFolder;
    QString m_mood;
    QByteArray m_input;
    std::unique_ptr<QProcess> m_process; ///< the run of now
    QElapsedTimer m_clock;
    int m_exitCode = -1;
    QString m_output;
    QString m_errors;
    qint64 m_milliseconds = 0;
};
