#include "EventThread.h"

#include <QEventLoop>

namespace stagehost {

EventThread::EventThread()
    : m_thread([this] { Serve(); }) {
    std::unique_lock<std::mutex> hold(m_lock);
    m_begun.wait(hold, [this] { return m_loop != nullptr; });
}

EventThread::~EventThread() {
    Post([this] {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_loop->quit();
    });
    m_thread.join();
}

void EventThread::Post(std::function<void()> call) {
    const std::lock_guard<std::mutex> hold(m_lock);
    m_calls.push_back(std::move(call));
    if (m_calls.size() == 1 && m_loop != nullptr)
        QMetaObject::invokeMethod(
            m_loop, [this] { RunPosted(); }, Qt::QueuedConnection);
}

void EventThread::Run(const std::function<void()>& call) {
    if (IsCurrent())
        return call();
    std::mutex lock;
    std::condition_variable done;
    bool isDone = false;
    Post([&] {
        call();
        const std::lock_guard<std::mutex> hold(lock);
        isDone = true;
        done.notify_one();
    });
    std::unique_lock<std::mutex> hold(lock);
    done.wait(hold, [&] { return isDone; });
}

void EventThread::Serve() {
    QEventLoop loop;
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_loop = &loop;
        m_begun.notify_one();
    }
    loop.exec();
    RunPosted();
    const std::lock_guard<std::mutex> hold(m_lock);
    m_loop = nullptr;
}

void EventThread::RunPosted() {
    std::deque<std::function<void()>> calls;
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        calls.swap(m_calls);
    }
    for (const auto& call : calls)
        call();
}

} // namespace stagehost
