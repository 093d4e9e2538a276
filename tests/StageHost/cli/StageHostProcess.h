#pragma once

#include <memory>

#include <QElapsedTimer>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

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
    /// Sends a line to standard input.
    void Say(const char* line);
    /// Waits until standard output holds a text. @return false when it does not come within a minute.
    bool WaitForOutput(const char* text);
    /// The same for standard error.
    bool WaitForErrors(const char* text);
    /// Asks the program to end, as Ctrl-C does.
    void Interrupt() { process_->terminate(); }
    /// Closes standard input and waits for the end.
    void Finish();

    /// What the following runs find on standard input.
    void SetInput(const QByteArray& input) { input_ = input; }

    /// The mood of the fake module for the following runs.
    void SetMood(const char* mood) { mood_ = QString::fromLatin1(mood); }
    void SetWorkingFolder(const QString& folder) { workingFolder_ = folder; }

    int ExitCode() const { return exitCode_; }
    QString Output() const { return output_; } ///< standard output
    QString Errors() const { return errors_; } ///< standard error
    qint64 Milliseconds() const { return milliseconds_; }

    /// Standard output as a JSON object; an empty one when it is none.
    QJsonObject Json() const;

    /// A file in a folder of the test's own. @return its full path.
    QString File(const QString& name, const QByteArray& text) const;
    QString Folder() const { return folder_.path(); }

private:
    const QString module_;
    QTemporaryDir folder_;
    QString workingFolder_;
    QString mood_;
    QByteArray input_;
    std::unique_ptr<QProcess> process_; ///< the run of now
    QElapsedTimer clock_;
    int exitCode_ = -1;
    QString output_;
    QString errors_;
    qint64 milliseconds_ = 0;
};
