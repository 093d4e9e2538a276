#pragma once

#include <memory>

#include <QObject>
#include <QSerialPort>
#include <QTimer>

#include "SerialLine.h"
#include "SerialPort.h"

namespace stagehost {

/// The part of a serial port that lives on its thread.
class SerialWorker : public QObject {
    Q_OBJECT

public:
    /// @param port owns the worker.
    SerialWorker(const QString& path, SerialPort& port);
    ~SerialWorker() override;

    /// Closes and opens the port as it was asked last.
    void Settle();

    /// Does the orders that can be done now; the others follow by themselves.
    void Work();

private:
    void Open();
    void Close();
    bool TryOpen();
    void ApplyAll();
    bool Apply(SerialSetting setting);
    bool WorkOff(std::unique_lock<std::mutex>& hold);
    bool HasDrained();
    void Read();
    void NoteWritten(qint64 count);
    void NoteFailure(QSerialPort::SerialPortError error);
    void Look();
    void LookAtPins();
    void LookAtCounters();
    void TellTxEmpty();
    void TellState();
    void Lose(const QString& why);
    void SetOpen(bool open, const std::string& problem);

    const QString m_path;
    SerialPort& m_port;
    QSerialPort m_serial;
    QTimer m_retry; ///< looks for a port that cannot be had
    QTimer m_look;  ///< looks at modem lines, counters and whether the port is still there
    QTimer m_drain; ///< looks whether what was written has left
    bool m_wanted = false;
    bool m_hasPins = true; ///< until the port says that it has none
    bool m_isSending = false;
    bool m_toldOpen = false; ///< the last state that was told
    bool m_pinsKnown = false;
    QSerialPort::PinoutSignals m_pins;
    LineCounters m_counters;
    QString m_told; ///< the last problem that was told
};

} // namespace stagehost
