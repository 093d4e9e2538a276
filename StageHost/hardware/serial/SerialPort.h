#pragma once

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>

#include <QString>

#include "EventThread.h"
#include "SerialSettings.h"

namespace stagehost {

class SerialWorker;

/// What happens on a serial port beside data, numbered as the contract has it.
enum class SerialEvent { TxEmpty = 1, Break = 2, Cts = 3, Dsr = 4, Error = 5 };

/// Hears of a serial port. Called without any lock of the port's, on its thread where nothing else is said.
class SerialNews {
public:
    virtual void StateChanged() = 0;
    virtual void DataCame(const std::uint8_t* data, std::size_t size) = 0;
    virtual void Happened(SerialEvent event, bool state) = 0;
    /// Something for people. UTF-8.   [any]
    virtual void Told(const std::string& text) = 0;

protected:
    ~SerialNews() = default;
};

/// What is known of a port.
struct SerialStatus {
    bool open = false;
    std::uint64_t received = 0; ///< bytes
    std::uint64_t sent = 0;     ///< bytes handed to the system
    std::uint64_t refused = 0;  ///< bytes of writes that were refused
    std::string problem;        ///< why it is not open though it should be; empty otherwise
};

/// A serial port of the system with a thread of its own, so that none holds up another.
///
/// - what is written and set happens in the order of the calls: a setting waits until what was written before has left;
/// - an open or a close that a later one makes pointless is skipped; a close of an open port never is;
/// - what is refused is counted, and the first of it for want of room is told until all that waits has left;
/// - a port that is missing, busy or lost is told once and tried again each second until it is closed;
/// - a setting that the port cannot do is told, and the call says so.
class SerialPort {
public:
    /// @param path its name in the system, such as /dev/ttyUSB0. @param news must outlive the port.
    SerialPort(const QString& path, SerialNews& news);
    ~SerialPort();
    SerialPort(const SerialPort&) = delete;
    SerialPort& operator=(const SerialPort&) = delete;

    /// Opens the port as soon as it can be had, and closes it; what waits to be written is dropped then.   [any]
    void Open();
    void Close();

    /// @return false on a closed port, and when more than a megabyte would wait to leave: nothing of it is sent then.
    /// [any]
    bool Write(const std::uint8_t* data, std::size_t size);

    /// Makes a setting. On an open port it comes back when it is in force, or Close or a lost port ends the wait; on a
    /// closed one it is kept until it opens.
    /// @return false when the port cannot do it, or has not done it in time.   [any]
    bool Set(SerialSetting setting, std::uint32_t value);

    SerialStatus Status() const;

private:
    friend class SerialWorker;

    /// A setting on its way, shared by the caller and the port's thread.
    struct Request {
        std::condition_variable done;
        bool isDone = false;
        bool result = false;
    };

    /// One thing to do, in order.
    struct Order {
        std::string bytes; ///< to be written, when there is no request
        SerialSetting setting{};
        std::shared_ptr<Request> request;
    };

    template <typename Change>
    void Ask(const Change& change);
    bool Queue(const std::uint8_t* data, std::size_t size, std::string& problem);
    std::chrono::milliseconds PatienceLocked() const;
    static void Finish(const std::shared_ptr<Request>& request, bool result);
    void DropOrdersLocked();

    SerialNews& m_news;
    mutable std::mutex m_lock; ///< guards the fields below but the worker and its thread
    SerialSettings m_settings;
    std::deque<Order> m_orders;
    SerialStatus m_status;
    std::size_t m_waiting = 0;              ///< bytes written and not yet left
    bool m_toldFull = false;                ///< since all that waited has left last
    bool m_closes = false;                  ///< the port's thread has to close it
    bool m_opens = false;                   ///< the port's thread has to open it, after the close if there is one
    std::unique_ptr<SerialWorker> m_worker; ///< lives on the thread
    EventThread m_thread;
};

} // namespace stagehost
