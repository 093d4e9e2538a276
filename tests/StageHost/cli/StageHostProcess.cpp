#include "StageHostProcess.h"

#include <QFile>
#include <QJsonDocument>

namespace {

constexpr int kLongestRun = 60000;

} // namespace

StageHostProcess::StageHostProcess(QString module)
    : module_(std::move(module)) {}

void StageHostProcess::Run(const QStringList& words) {
    Begin(words);
    process_->write(input_);
    Finish();
}

void StageHostProcess::Begin(const QStringList& words) {
    QStringList all = words;
    if (!module_.isEmpty())
        all = QStringList{QStringLiteral("--module"), module_} + words;
    process_ = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("FAKE_MODULE"), mood_);
    process_->setProcessEnvironment(environment);
    if (!workingFolder_.isEmpty())
        process_->setWorkingDirectory(workingFolder_);
    output_.clear();
    errors_.clear();
    clock_.start();
    process_->start(QStringLiteral(STAGEHOST_BIN "/stagehost"), all);
    process_->waitForStarted(kLongestRun);
}

void StageHostProcess::Say(const char* line) {
    process_->write(QByteArray(line) + '\n');
    process_->waitForBytesWritten(kLongestRun);
}

bool StageHostProcess::WaitForOutput(const char* text) {
    while (!output_.contains(QString::fromUtf8(text))) {
        if (!process_->waitForReadyRead(kLongestRun))
            return false;
        output_ += QString::fromUtf8(process_->readAllStandardOutput());
    }
    return true;
}

bool StageHostProcess::WaitForErrors(const char* text) {
    process_->setReadChannel(QProcess::StandardError);
    bool more = true;
    while (more && !errors_.contains(QString::fromUtf8(text))) {
        more = process_->waitForReadyRead(kLongestRun);
        errors_ += QString::fromUtf8(process_->readAllStandardError());
    }
    process_->setReadChannel(QProcess::StandardOutput);
    return more;
}

void StageHostProcess::Finish() {
    process_->closeWriteChannel();
    const bool ended = process_->state() == QProcess::NotRunning || process_->waitForFinished(kLongestRun);
    milliseconds_ = clock_.elapsed();
    if (!ended)
        process_->kill();
    exitCode_ = ended && process_->exitStatus() == QProcess::NormalExit ? process_->exitCode() : -1;
    output_ += QString::fromUtf8(process_->readAllStandardOutput());
    errors_ += QString::fromUtf8(process_->readAllStandardError());
    process_->waitForFinished(kLongestRun);
}

QJsonObject StageHostProcess::Json() const {
    return QJsonDocument::fromJson(output_.toUtf8()).object();
}

QString StageHostProcess::File(const QString& name, const QByteArray& text) const {
    QFile file(folder_.filePath(name));
    if (file.open(QIODevice::WriteOnly))
        file.write(text);
    return file.fileName();
}
