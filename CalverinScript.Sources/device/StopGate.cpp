#include "StopGate.h"

StopGate::Stop::Stop(StopGate& gate)
    : m_gate(gate) {
    const std::lock_guard<std::mutex> guard(m_gate.m_lock);
    m_next = m_gate.m_stops;
    m_gate.m_stops = this;
}

StopGate::Stop::~Stop() {
    const std::lock_guard<std::mutex> guard(m_gate.m_lock);
    Stop** place = &m_gate.m_stops;
    while (*place != this)
        place = &(*place)->m_next;
    *place = m_next;
    m_gate.m_changed.notify_all();
}

void StopGate::AwaitStops() {
    std::unique_lock<std::mutex> guard(m_lock);
    if (!IsInside())
        m_changed.wait_for(guard, kPatience, [this] { return m_stops == nullptr || m_isOpen; });
}

void StopGate::Open() {
    const std::lock_guard<std::mutex> guard(m_lock);
    m_isOpen = true;
    m_changed.notify_all();
}

bool StopGate::IsInside() const {
    const Stop* stop = m_stops;
    while (stop != nullptr && stop->m_thread != std::this_thread::get_id())
        stop = stop->m_next;
    return stop != nullptr;
}
