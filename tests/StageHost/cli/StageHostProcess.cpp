#include "StageHostProcess.h"

#include <QFile>
#include <QJsonDocument>

namespace {

constexpr int kLongestRun = 60000;

} // namespace

StageHostProcess::StageHostProcess(QString module)
    : m_module(std::move(module)) {}

void StageHostProcess::Run(const QStringList& words) {
    Begin(words);
    m_process->write(m_input);
    Finish();
}

void StageHostProcess::Begin(const QStringList& words) {
    QStringList all = words;
    if (!m_module.isEmpty())
        all = QStringList{QStringLiteral("--module"), m_module} + words;
    Start(QStringLiteral(STAGEHOST_BIN "/stagehost"), all);
}

void StageHostProcess::BeginWithInput(const char* line, const QStringList& words) {
    Start(QStringLiteral("/bin/sh"),
          QStringList{QStringLiteral("-c"), QLatin1String(line) + QStringLiteral("; exec \"$0\" \"$@\""),
                      QStringLiteral(STAGEHOST_BIN "/stagehost")} +
              words);
}

void StageHostProcess::Start(const QString& program, const QStringList& words) {
    m_process = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("FAKE_MODULE"), m_mood);
    m_process->setProcessEnvironment(environment);
    if (!m_workingFolder.isEmpty())
        m_process->setWorkingDirectory(m_workingFolder);
    m_output.clear();
    m_errors.clear();
    m_clock.start();
    m_process->start(program, words);
    m_process->waitForStarted(kLongestRun);
}

void StageHostProcess::Say(const char* line) {
    m_process->write(QByteArray(line) + '\n');
    m_process->waitForBytesWritten(kLongestRun);
}

bool StageHostProcess::WaitForOutput(const char* text) {
    return WaitFor(m_output, QProcess::StandardOutput, QString::fromUtf8(text));
}

bool StageHostProcess::WaitForErrors(const char* text) {
    return WaitFor(m_errors, QProcess::StandardError, QString::fromUtf8(text));
}

/// A wait for one channel brings in the other one too, and is not ended by what has been brought in before it.
bool StageHostProcess::WaitFor(const QString& heard, QProcess::ProcessChannel channel, const QString& text) {
    m_process->setReadChannel(channel);
    bool more = true;
    TakeHeard();
    while (more && !heard.contains(text)) {
        more = m_process->waitForReadyRead(kLongestRun);
        TakeHeard();
    }
    m_process->setReadChannel(QProcess::StandardOutput);
    return heard.contains(text);
}

void StageHostProcess::TakeHeard() {
    m_output += QString::fromUtf8(m_process->readAllStandardOutput());
    m_errors += QString::fromUtf8(m_process->readAllStandardError());
}

QString StageHostProcess::Child() const {
    QFile children(QStringLiteral("/proc/%1/task/%1/children").arg(m_process->processId()));
    return children.open(QIODevice::ReadOnly) ? QString::fromLatin1(children.readAll()).trimmed() : QString();
}

void StageHostProcess::Kill() {
    m_process->kill();
    m_process->waitForFinished(kLongestRun);
}

void StageHostProcess::Finish() {
    m_process->closeWriteChannel();
    const bool ended = m_process->state() == QProcess::NotRunning || m_process->waitForFinished(kLongestRun);
    m_milliseconds = m_clock.elapsed();
    if (!ended)
        m_process->kill();
    m_exitCode = ended && m_process->exitStatus() == QProcess::NormalExit ? m_process->exitCode() : -1;
    TakeHeard();
    m_process->waitForFinished(kLongestRun);
}

qint64 StageHostProcess::Soon(qint64 milliseconds) const {
    StageHostProcess other(m_module);
    other.Run({QStringLiteral("run"), other.File(QStringLiteral("nothing.json"), "{}")});
    return milliseconds + 3 * other.Milliseconds(); // load comes and goes
}

QJsonObject StageHostProcess::Json() const {
    return QJsonDocument::fromJson(m_output.toUtf8()).object();
}

QString StageHostProcess::File(const QString& name, const QByteArray& text) const {
    QFile file(m_folder.filePath(name));
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
    return file.fileName();
}
