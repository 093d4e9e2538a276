#include "EventThread.h"

#include <utility>

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>

namespace stagehost {

namespace {

/// A loop that is woken by an event that carries nothing: what the threads share stays under the lock of their owner.
class WakingLoop : public QEventLoop {
public:
    explicit WakingLoop(std::function<void()> onWake)
        : m_onWake(std::move(onWake)) {}

protected:
    bool event(QEvent* received) override {
        if (received->type() != QEvent::User)
            return QEventLoop::event(received);
        m_onWake();
        return true;
    }

private:
    const std::function<void()> m_onWake;
};

} // namespace

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
        QCoreApplication::postEvent(m_loop, new QEvent(QEvent::User));
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
    WakingLoop loop([this] { RunPosted(); });
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
