#include "SerialPort.h"

#include <algorithm>

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
        DropOrdersLocked();
    }
    m_thread.Run([this] { m_worker.reset(); });
}

void SerialPort::Open() {
    m_thread.Post([this] { m_worker->Open(); });
}

void SerialPort::Close() {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_status.open = false; // what comes from now on is refused
        DropOrdersLocked();
    }
    m_thread.Post([this] { m_worker->Close(); });
}

bool SerialPort::Write(const std::uint8_t* data, std::size_t size) {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        if (!m_status.open || size > kMostWaiting - std::min(m_waiting, kMostWaiting))
            return false;
        if (size == 0)
            return true;
        m_waiting += size;
        m_orders.push_back({std::string(reinterpret_cast<const char*>(data), size), {}, nullptr});
    }
    m_thread.Post([this] { m_worker->Work(); });
    return true;
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
}

} // namespace stagehost
