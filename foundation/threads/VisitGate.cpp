#include "VisitGate.h"

#include <algorithm>
#include <iterator>

VisitGate::Visit::Visit(VisitGate& gate)
    : Visit(&gate) {}

VisitGate::Visit::Visit(VisitGate* gate)
    : m_gate(gate)
    , m_allowed(gate == nullptr || gate->Enter()) {}

VisitGate::Visit::~Visit() {
    if (m_gate != nullptr && m_allowed)
        m_gate->Leave();
}

VisitGate::Standstill::Standstill(VisitGate& gate)
    : m_gate(gate)
    , m_counts(gate.IsReplacer()) {
    if (!m_counts)
        return;
    {
        const std::lock_guard<std::mutex> guard(m_gate.m_lock);
        ++m_gate.m_standstills;
    }
    m_gate.m_changed.notify_all();
}

VisitGate::Standstill::~Standstill() {
    const std::lock_guard<std::mutex> guard(m_gate.m_lock);
    m_gate.m_standstills -= m_counts ? 1 : 0;
}

bool VisitGate::IsInside(std::thread::id thread) const {
    return std::find(m_inside.begin(), m_inside.end(), thread) != m_inside.end();
}

bool VisitGate::Enter() {
    const std::thread::id self = std::this_thread::get_id();
    std::unique_lock<std::mutex> guard(m_lock);
    if (m_replacing && !IsInside(self)) {
        const auto isDecided = [this] { return !m_replacing || m_standstills > 0; };
        if (m_replacer == self || !m_changed.wait_for(guard, kVisitWait, isDecided) || m_replacing)
            return false;
    }
    m_inside.push_back(self);
    return true;
}

void VisitGate::Leave() {
    bool isAwaited = false;
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        const auto last = std::find(m_inside.rbegin(), m_inside.rend(), std::this_thread::get_id());
        m_inside.erase(std::next(last).base());
        isAwaited = m_replacing && m_inside.empty();
    }
    if (isAwaited)
        m_changed.notify_all();
}

bool VisitGate::IsReplacer() {
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_replacer == std::this_thread::get_id();
}

void VisitGate::Replace(const std::function<void()>& work) {
    if (IsReplacer()) {
        work();
        return;
    }
    const std::lock_guard<std::mutex> alone(m_replaceLock);
    {
        std::unique_lock<std::mutex> guard(m_lock);
        m_replacing = true;
        m_replacer = std::this_thread::get_id();
        m_changed.wait_for(guard, kReplaceWait, [this] { return m_inside.empty(); });
    }
    work();
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_replacing = false;
        m_replacer = {};
    }
    m_changed.notify_all();
}
