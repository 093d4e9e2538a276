#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "Deadline.h"
#include "MTCPClientSocket.h"
#include "MUDPSocket.h"

/// What happened, in order, as words; another thread waits for it.
class Diary {
public:
    void Note(const std::string& event) {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_events.push_back(event);
        m_changed.notify_all();
    }

    std::vector<std::string> All() const {
        const std::lock_guard<std::mutex> guard(m_lock);
        return m_events;
    }

    std::size_t Count(const std::string& event) const {
        const std::lock_guard<std::mutex> guard(m_lock);
        return CountLocked(event);
    }

    bool WaitFor(const std::string& event, std::size_t times = 1) const {
        return WaitUntil([&] { return CountLocked(event) >= times; });
    }

    bool WaitForEvents(std::size_t count) const {
        return WaitUntil([&] { return m_events.size() >= count; });
    }

private:
    std::size_t CountLocked(const std::string& event) const {
        return static_cast<std::size_t>(std::count(m_events.begin(), m_events.end(), event));
    }
    bool WaitUntil(const std::function<bool()>& holds) const {
        std::unique_lock<std::mutex> lock(m_lock);
        return m_changed.wait_for(lock, std::chrono::milliseconds(kDeadlineMs), holds);
    }

    mutable std::mutex m_lock;
    mutable std::condition_variable m_changed;
    std::vector<std::string> m_events;
};

using Words = std::vector<std::string>;

/// A handler of a TCP socket that notes "connect", "close", "error -5" and collects the data.
class TCPRecorder : public ITCPClientSocketHandler, public Diary {
public:
    bool OnQueryConnect(MTCPClientSocket* socket) override {
        ++queries;
        if (onQuery)
            onQuery(socket);
        return agrees;
    }
    void OnConnect(MTCPClientSocket* socket) override {
        if (onConnect)
            onConnect(socket);
        Note("connect");
    }
    void OnClose(MTCPClientSocket* socket) override {
        if (onClose)
            onClose(socket);
        Note("close");
    }
    void OnData(const char* data, std::int32_t length, MTCPClientSocket* socket) override {
        {
            const std::lock_guard<std::mutex> guard(m_dataLock);
            m_data.append(data, static_cast<std::size_t>(length));
            m_arrived.notify_all();
        }
        if (onData)
            onData(socket, std::string(data, static_cast<std::size_t>(length)));
    }
    void OnError(std::int32_t code, MTCPClientSocket* /*socket*/) override { Note("error " + std::to_string(code)); }

    bool WaitForData(std::size_t size) const {
        std::unique_lock<std::mutex> lock(m_dataLock);
        return m_arrived.wait_for(lock, std::chrono::milliseconds(kDeadlineMs), [&] { return m_data.size() >= size; });
    }
    std::string Data() const {
        const std::lock_guard<std::mutex> guard(m_dataLock);
        return m_data;
    }

    std::atomic<bool> agrees{true};
    std::atomic<int> queries{0};
    std::function<void(MTCPClientSocket*)> onQuery; // set before the socket starts
    std::function<void(MTCPClientSocket*)> onConnect;
    std::function<void(MTCPClientSocket*)> onClose;
    std::function<void(MTCPClientSocket*, const std::string&)> onData;

private:
    mutable std::mutex m_dataLock;
    mutable std::condition_variable m_arrived;
    std::string m_data;
};

/// A handler of a UDP socket that notes the texts of messages and "error -12", and keeps the last source.
class UDPRecorder : public IUDPSocketHandler, public Diary {
public:
    void OnMessage(const char* data, std::int32_t length, const char* source, std::uint16_t port,
                   MUDPSocket*) override {
        {
            const std::lock_guard<std::mutex> guard(m_sourceLock);
            m_source = source;
            m_sourcePort = port;
        }
        Note(std::string(data, static_cast<std::size_t>(length)));
    }
    void OnError(std::int32_t code, MUDPSocket* /*socket*/) override { Note("error " + std::to_string(code)); }
    void OnBurstEnd(MUDPSocket* /*socket*/) override { ++bursts; }

    std::string Source() const {
        const std::lock_guard<std::mutex> guard(m_sourceLock);
        return m_source;
    }
    std::uint16_t SourcePort() const {
        const std::lock_guard<std::mutex> guard(m_sourceLock);
        return m_sourcePort;
    }
    std::atomic<int> bursts{0};

private:
    mutable std::mutex m_sourceLock;
    std::string m_source;
    std::uint16_t m_sourcePort = 0;
};
