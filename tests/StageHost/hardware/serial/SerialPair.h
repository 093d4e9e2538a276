#pragma once

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QSerialPort>
#include <QTemporaryDir>

/// Two serial ports of the system that are connected with each other: a pair of pseudo-terminals of socat.
class SerialPair {
public:
    SerialPair() { Connect(); }
    ~SerialPair() { Cut(); }

    /// @return whether both ends are there.
    bool Connect() {
        const auto end = [](const QString& name) { return QStringLiteral("pty,raw,echo=0,link=") + name; };
        m_socat.start(QStringLiteral("socat"), {end(Ours()), end(Theirs())});
        QElapsedTimer clock;
        clock.start();
        while (!(QFileInfo::exists(Ours()) && QFileInfo::exists(Theirs())) && clock.elapsed() < 30000)
            m_socat.waitForReadyRead(5);
        return QFileInfo::exists(Theirs());
    }

    /// As when the adapter is pulled out.
    void Cut() {
        m_socat.kill();
        m_socat.waitForFinished();
        QFile::remove(Ours());
        QFile::remove(Theirs());
    }

    QString Ours() const { return m_folder.filePath(QStringLiteral("ours")); }
    QString Theirs() const { return m_folder.filePath(QStringLiteral("theirs")); }

private:
    QTemporaryDir m_folder;
    QProcess m_socat;
};

/// The device at the other end.
class SerialPeer {
public:
    explicit SerialPeer(const QString& path) {
        m_port.setPortName(QFileInfo(path).canonicalFilePath());
        m_isOpen = m_port.open(QIODevice::ReadWrite);
    }

    bool IsOpen() const { return m_isOpen; }

    void Write(const QByteArray& bytes) {
        m_port.write(bytes);
        while (m_port.bytesToWrite() > 0 && m_port.waitForBytesWritten(30000)) {
        }
    }

    /// @return what has come when that many bytes have, or the deadline has passed.
    QByteArray Read(int count) {
        while (m_bytes.size() < count && m_port.waitForReadyRead(30000))
            m_bytes += m_port.readAll();
        return m_bytes.left(count);
    }

private:
    QSerialPort m_port;
    QByteArray m_bytes;
    bool m_isOpen = false;
};
