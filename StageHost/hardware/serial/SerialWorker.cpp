#include "SerialWorker.h"

#include <algorithm>
#include <utility>

#include <QFileInfo>

#include "SerialLine.h"
#include "SettingTable.h"

namespace stagehost {

namespace {

constexpr std::chrono::milliseconds kRetryPort(1000);
constexpr std::chrono::milliseconds kLookAtLine(50);
constexpr std::chrono::milliseconds kLookAtDrain(1);

/// In the order in which they are brought onto a port that opens: flow control before the lines that it may own.
constexpr SerialSetting kOpeningOrder[] = {
    SerialSetting::BaudRate,     SerialSetting::DataSize,   SerialSetting::Parity,     SerialSetting::StopBits,
    SerialSetting::RtsHandshake, SerialSetting::CtsOutFlow, SerialSetting::DtrControl, SerialSetting::RtsControl,
    SerialSetting::Dtr,          SerialSetting::Rts,
};

} // namespace

SerialWorker::SerialWorker(const QString& path, SerialPort& port)
    : m_path(path)
    , m_port(port) {
    m_retry.setInterval(kRetryPort);
    m_look.setInterval(kLookAtLine);
    m_drain.setInterval(kLookAtDrain);
    m_drain.setTimerType(Qt::PreciseTimer);
    connect(&m_retry, &QTimer::timeout, this, &SerialWorker::TryOpen);
    connect(&m_look, &QTimer::timeout, this, &SerialWorker::Look);
    connect(&m_drain, &QTimer::timeout, this, &SerialWorker::Work);
    connect(&m_serial, &QSerialPort::readyRead, this, &SerialWorker::Read);
    connect(&m_serial, &QSerialPort::bytesWritten, this, &SerialWorker::NoteWritten);
    connect(&m_serial, &QSerialPort::errorOccurred, this, &SerialWorker::NoteFailure);
}

SerialWorker::~SerialWorker() {
    m_serial.disconnect(this);
    m_serial.close();
}

void SerialWorker::Settle() {
    bool closes = false;
    bool opens = false;
    {
        const std::lock_guard<std::mutex> hold(m_port.m_lock);
        closes = std::exchange(m_port.m_closes, false);
        opens = std::exchange(m_port.m_opens, false);
    }
    if (closes)
        Close();
    if (opens)
        Open();
}

void SerialWorker::Open() {
    if (m_wanted)
        return;
    m_wanted = true;
    m_told.clear();
    if (!TryOpen())
        m_port.m_news.Happened(SerialEvent::Error, true);
}

void SerialWorker::Close() {
    m_wanted = false;
    m_retry.stop();
    m_look.stop();
    m_drain.stop();
    m_isSending = false;
    m_serial.close();
    SetOpen(false, {});
    TellState();
}

bool SerialWorker::TryOpen() {
    const QString found = QFileInfo(m_path).canonicalFilePath(); // a link names another port when an adapter comes back
    m_serial.setPortName(found.isEmpty() ? m_path : found);
    if (!m_serial.open(QIODevice::ReadWrite)) {
        const QString why = found.isEmpty() ? QStringLiteral("there is no such port") : m_serial.errorString();
        SetOpen(false, why.toStdString());
        if (why != m_told)
            m_port.m_news.Told("cannot open " + m_path.toStdString() + ": " + why.toStdString());
        m_told = why;
        m_retry.start();
        return false;
    }
    m_retry.stop();
    m_hasPins = true;
    m_pinsKnown = false;
    m_counters = ReadLineCounters(m_serial.handle()).value_or(LineCounters{});
    ApplyAll();
    m_look.start();
    SetOpen(true, {});
    if (!m_told.isEmpty())
        m_port.m_news.Told("opens " + m_path.toStdString() + " again");
    m_told.clear();
    TellState();
    return true;
}

void SerialWorker::ApplyAll() {
    for (const SerialSetting setting : kOpeningOrder) {
        bool isSet = false;
        {
            const std::lock_guard<std::mutex> hold(m_port.m_lock);
            isSet = m_port.m_settings.Get(setting).has_value();
        }
        if (isSet)
            Apply(setting);
    }
}

bool SerialWorker::Apply(SerialSetting setting) {
    SerialSettings wanted;
    {
        const std::lock_guard<std::mutex> hold(m_port.m_lock);
        wanted = m_port.m_settings;
    }
    bool done = ApplySetting(m_serial, wanted, setting);
    QString why = done ? QString() : m_serial.errorString();
    const auto line = ReadLineSettings(m_serial.handle());
    if (done && line && !IsInForce(*line, wanted, setting)) {
        done = false;
        why = QStringLiteral("the port has left it as it was");
    }
    if (!done)
        m_port.m_news.Told("cannot do " + std::string(NameOf(setting)) + " " + std::to_string(wanted.Or(setting, 0)) +
                           ": " + why.toStdString());
    return done;
}

void SerialWorker::Work() {
    std::unique_lock<std::mutex> hold(m_port.m_lock);
    while (m_serial.isOpen() && !m_port.m_orders.empty()) {
        if (!WorkOff(hold))
            break;
    }
    const bool waits = m_serial.isOpen() && (!m_port.m_orders.empty() || m_isSending);
    hold.unlock();
    if (!waits)
        return m_drain.stop();
    if (m_isSending && HasDrained())
        TellTxEmpty();
    else if (!m_drain.isActive())
        m_drain.start();
}

/// Does the first order. @return false when it has to wait.
bool SerialWorker::WorkOff(std::unique_lock<std::mutex>& hold) {
    SerialPort::Order order = m_port.m_orders.front();
    if (!order.request) {
        m_port.m_orders.pop_front();
        m_port.m_status.sent += order.bytes.size();
        m_isSending = true;
        hold.unlock();
        // It leaves when the system says that there is room. A flush would try at once, and fail on a full line with an
        // error that cannot be told from a lost port.
        m_serial.write(order.bytes.data(), static_cast<qint64>(order.bytes.size()));
        hold.lock();
        return true;
    }
    hold.unlock();
    const bool drained = HasDrained();
    const bool done = drained && Apply(order.setting);
    hold.lock();
    // A close may have ended the wait meanwhile.
    if (!drained || m_port.m_orders.empty() || m_port.m_orders.front().request != order.request)
        return drained;
    m_port.m_orders.pop_front();
    SerialPort::Finish(order.request, done);
    return true;
}

bool SerialWorker::HasDrained() {
    if (m_serial.bytesToWrite() != 0 || UnsentBytes(m_serial.handle()) != 0)
        return false;
    DrainLine(m_serial.handle());
    return true;
}

void SerialWorker::TellTxEmpty() {
    m_isSending = false;
    m_drain.stop();
    {
        const std::lock_guard<std::mutex> hold(m_port.m_lock);
        m_port.m_toldFull = false;
    }
    m_port.m_news.Happened(SerialEvent::TxEmpty, true);
    Work();
}

void SerialWorker::Read() {
    const QByteArray bytes = m_serial.readAll();
    if (bytes.isEmpty())
        return;
    {
        const std::lock_guard<std::mutex> hold(m_port.m_lock);
        m_port.m_status.received += static_cast<std::uint64_t>(bytes.size());
    }
    m_port.m_news.DataCame(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                           static_cast<std::size_t>(bytes.size()));
}

void SerialWorker::NoteWritten(qint64 count) {
    const std::lock_guard<std::mutex> hold(m_port.m_lock);
    m_port.m_waiting -= std::min(m_port.m_waiting, static_cast<std::size_t>(count));
}

void SerialWorker::NoteFailure(QSerialPort::SerialPortError error) {
    if (error == QSerialPort::ResourceError && m_serial.isOpen())
        Lose(m_serial.errorString());
}

void SerialWorker::Look() {
    if (IsHungUp(m_serial.handle())) {
        Read();
        return Lose(QStringLiteral("it has gone"));
    }
    LookAtPins();
    LookAtCounters();
}

void SerialWorker::LookAtPins() {
    if (!m_hasPins)
        return;
    const bool blocked = m_serial.blockSignals(true); // a port without such lines is no failure
    const QSerialPort::PinoutSignals pins = m_serial.pinoutSignals();
    m_hasPins = m_serial.error() == QSerialPort::NoError;
    m_serial.clearError();
    m_serial.blockSignals(blocked);
    const QSerialPort::PinoutSignals changed = m_pinsKnown ? pins ^ m_pins : pins;
    m_pins = pins;
    m_pinsKnown = true;
    if (changed.testFlag(QSerialPort::ClearToSendSignal))
        m_port.m_news.Happened(SerialEvent::Cts, pins.testFlag(QSerialPort::ClearToSendSignal));
    if (changed.testFlag(QSerialPort::DataSetReadySignal))
        m_port.m_news.Happened(SerialEvent::Dsr, pins.testFlag(QSerialPort::DataSetReadySignal));
}

void SerialWorker::LookAtCounters() {
    const auto counters = ReadLineCounters(m_serial.handle());
    if (!counters)
        return;
    const LineCounters before = m_counters;
    m_counters = *counters;
    if (counters->breaks != before.breaks)
        m_port.m_news.Happened(SerialEvent::Break, true);
    if (counters->errors == before.errors)
        return;
    m_port.m_news.Told(std::to_string(counters->errors - before.errors) + " characters came in wrong");
    m_port.m_news.Happened(SerialEvent::Error, true);
}

/// Tells the state that holds now, unless it was told: a close may have come while the port was being opened.
void SerialWorker::TellState() {
    const bool isOpen = m_port.Status().open;
    if (std::exchange(m_toldOpen, isOpen) != isOpen)
        m_port.m_news.StateChanged();
}

/// The port has gone while it was open.
void SerialWorker::Lose(const QString& why) {
    m_look.stop();
    m_drain.stop();
    m_isSending = false;
    m_serial.close();
    SetOpen(false, why.toStdString());
    m_told = why;
    m_port.m_news.Told("lost " + m_path.toStdString() + ": " + why.toStdString());
    m_port.m_news.Happened(SerialEvent::Error, true);
    TellState();
    m_retry.start();
}

void SerialWorker::SetOpen(bool open, const std::string& problem) {
    const std::lock_guard<std::mutex> hold(m_port.m_lock);
    m_port.m_status.open = open && !m_port.m_closes; // a close may have been asked for meanwhile
    m_port.m_status.problem = problem;
    if (!open)
        m_port.DropOrdersLocked();
}

} // namespace stagehost
