#include "SerialPort.h"

#include <algorithm>
#include <utility>

#include "SerialWorker.h"
#include "SettingTable.h"

namespace stagehost {

namespace {

constexpr std::size_t kMostWaiting = 1024 * 1024; // bytes
constexpr std::chrono::milliseconds kPatience(3000);
constexpr std::uint32_t kUsualRate = 9600;
constexpr std::size_t kBitsOfAByte = 12; // with start, parity and two stop bits

} // namespace

SerialPort::SerialPort(const QString& path, SerialNews& news)
    : m_news(news) {
    m_thread.Run([&] { m_worker = std::make_unique<SerialWorker>(path, *this); });
}

SerialPort::~SerialPort() {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_opens = m_closes = false; // the end closes it
        DropOrdersLocked();
    }
    m_thread.Run([this] { m_worker.reset(); });
}

void SerialPort::Open() {
    Ask([this] { m_opens = true; });
}

void SerialPort::Close() {
    Ask([this] {
        m_status.open = false; // what comes from now on is refused
        DropOrdersLocked();
        m_opens = false;
        m_closes = true;
    });
}

/// Changes what the port's thread has to do, and wakes it unless something waits for it already.
template <typename Change>
void SerialPort::Ask(const Change& change) {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        const bool isAsked = m_opens || m_closes;
        change();
        if (isAsked)
            return;
    }
    m_thread.Post([this] { m_worker->Settle(); });
}

bool SerialPort::Write(const std::uint8_t* data, std::size_t size) {
    std::string problem;
    const bool isQueued = Queue(data, size, problem);
    if (isQueued)
        m_thread.Post([this] { m_worker->Work(); });
    if (!problem.empty())
        m_news.Told(problem);
    return isQueued;
}

/// @param problem gets what people are to be told, if anything.
bool SerialPort::Queue(const std::uint8_t* data, std::size_t size, std::string& problem) {
    const std::lock_guard<std::mutex> hold(m_lock);
    const bool hasRoom = size <= kMostWaiting - std::min(m_waiting, kMostWaiting);
    if (m_status.open && hasRoom) {
        if (size != 0)
            m_orders.push_back({std::string(reinterpret_cast<const char*>(data), size), {}, nullptr});
        m_waiting += size;
        return true;
    }
    m_status.refused += size;
    if (m_status.open && !std::exchange(m_toldFull, m_waiting != 0))
        problem = "refuses " + std::to_string(size) + " bytes: " + std::to_string(m_waiting) +
                  " wait already, and at most " + std::to_string(kMostWaiting) + " may wait";
    return false;
}

bool SerialPort::Set(SerialSetting setting, std::uint32_t value) {
    if (const char* why = WhyImpossible(setting, value)) {
        m_news.Told(std::string("cannot do ") + NameOf(setting) + ": " + why);
        return false;
    }
    std::unique_lock<std::mutex> hold(m_lock);
    m_settings.Set(setting, value);
    if (!m_status.open)
        return setting != SerialSetting::Break; // a break is an act, not a setting
    const auto request = std::make_shared<Request>();
    m_orders.push_back({{}, setting, request});
    m_thread.Post([this] { m_worker->Work(); });
    if (m_thread.IsCurrent())
        return true; // from inside a handler: it is done when that has come back
    if (request->done.wait_for(hold, PatienceLocked(), [&] { return request->isDone; }))
        return request->result;
    hold.unlock();
    m_news.Told(std::string("has not done ") + NameOf(setting) + " in time: what was written before it does not leave");
    return false;
}

SerialStatus SerialPort::Status() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_status;
}

/// As long as what waits needs to leave, and some.
std::chrono::milliseconds SerialPort::PatienceLocked() const {
    const std::size_t rate = std::max(1u, m_settings.Or(SerialSetting::BaudRate, kUsualRate));
    return kPatience + std::chrono::milliseconds(m_waiting * kBitsOfAByte * 1000 / rate);
}

void SerialPort::Finish(const std::shared_ptr<Request>& request, bool result) {
    request->result = result;
    request->isDone = true;
    request->done.notify_one();
}

void SerialPort::DropOrdersLocked() {
    for (const auto& order : m_orders) {
        if (order.request)
            Finish(order.request, false);
    }
    m_orders.clear();
    m_waiting = 0;
    m_toldFull = false;
}

} // namespace stagehost
