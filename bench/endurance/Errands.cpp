#include "Errands.h"

Errands::Errands()
    : m_thread([this] { Work(); }) {}

Errands::~Errands() {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_ends = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void Errands::Post(std::function<void()> errand) {
    {
        const std::lock_guard<std::mutex> hold(m_lock);
        m_errands.push_back(std::move(errand));
    }
    m_changed.notify_all();
}

void Errands::Work() {
    std::unique_lock<std::mutex> hold(m_lock);
    for (;;) {
        m_changed.wait(hold, [this] { return m_ends || !m_errands.empty(); });
        if (m_errands.empty())
            return;
        const std::function<void()> errand = std::move(m_errands.front());
        m_errands.pop_front();
        hold.unlock();
        errand();
        hold.lock();
    }
}
