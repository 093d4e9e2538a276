#pragma once

#include <QFile>
#include <QTemporaryDir>

#include "LinesFixture.h"
#include "TrafficFile.h"

/// Traffic files as texts in tests.
class TrafficFixture {
protected:
    /// A file with a head and these lines.
    QString File(const QByteArray& lines, const char* kind = "tcp") const {
        QFile file(m_folder.filePath(QStringLiteral("some.traffic")));
        if (file.open(QIODevice::WriteOnly))
            file.write(QByteArray(R"({"traffic":1,"kind":")") + kind + R"(","device":"127.0.0.1:1"})" + "\n" + lines);
        return file.fileName();
    }

    /// @return what is wrong; empty when it is read.
    std::string Problem(const QByteArray& lines, const char* kind = "tcp") const {
        QString problem;
        const QString file = File(lines, kind);
        return stagehost::ReadTrafficFile(file, problem) ? "" : problem.remove(file).toStdString();
    }

    stagehost::TrafficFile Read(const QByteArray& lines, const char* kind = "tcp") const {
        QString problem;
        return stagehost::ReadTrafficFile(File(lines, kind), problem).value_or(stagehost::TrafficFile{});
    }

    static QByteArray Program(const QByteArray& text) {
        return QByteArray(R"({"connection":1,"from":"program","text":")") + text + "\"}\n";
    }
    static QByteArray Device(const QByteArray& text) {
        return QByteArray(R"({"connection":1,"from":"device","text":")") + text + "\"}\n";
    }

    QTemporaryDir m_folder;
};
