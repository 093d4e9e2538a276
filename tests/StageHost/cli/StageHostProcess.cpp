#include "StageHostProcess.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QProcess>

namespace {

constexpr int kLongestRun = 60000;

} // namespace

StageHostProcess::StageHostProcess(QString module)
    : module_(std::move(module)) {}

void StageHostProcess::Run(const QStringList& words) {
    QStringList all = words;
    if (!module_.isEmpty())
        all = QStringList{QStringLiteral("--module"), module_} + words;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("FAKE_MODULE"), mood_);
    process.setProcessEnvironment(environment);
    if (!workingFolder_.isEmpty())
        process.setWorkingDirectory(workingFolder_);
    QElapsedTimer clock;
    clock.start();
    process.start(QStringLiteral(STAGEHOST_BIN "/stagehost"), all);
    const bool ended = process.waitForFinished(kLongestRun);
    milliseconds_ = clock.elapsed();
    if (!ended)
        process.kill();
    exitCode_ = ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    output_ = QString::fromUtf8(process.readAllStandardOutput());
    errors_ = QString::fromUtf8(process.readAllStandardError());
    process.waitForFinished(kLongestRun);
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
