#include "GroupRegistrations.h"

#include <algorithm>

namespace stagehost {

GroupRegistrations::GroupRegistrations(ShowModel& model)
    : m_model(model) {}

GroupRegistrations::~GroupRegistrations() {
    Close();
}

void GroupRegistrations::SetHandler(IManagerRemoteHandler* handler) {
    const std::lock_guard<std::recursive_mutex> hold(m_lock);
    m_handler = m_closed ? nullptr : handler;
}

IManagerRemoteHandler* GroupRegistrations::Handler() const {
    const std::lock_guard<std::recursive_mutex> hold(m_lock);
    return m_handler;
}

void GroupRegistrations::Add(const std::string& group, bool events) {
    if (events)
        Subscribe();
    const std::lock_guard<std::recursive_mutex> hold(m_lock);
    Registration& registration = m_groups[group];
    if (events && !registration.events)
        registration.after = m_model.Feed().LastNumber();
    registration.events = registration.events || events;
}

void GroupRegistrations::Remove(const std::string& group) {
    const std::lock_guard<std::recursive_mutex> hold(m_lock);
    m_groups.erase(group);
}

void GroupRegistrations::Clear() {
    const std::lock_guard<std::recursive_mutex> hold(m_lock);
    m_groups.clear();
}

void GroupRegistrations::Close() {
    {
        const std::lock_guard<std::recursive_mutex> hold(m_lock);
        m_handler = nullptr;
        m_closed = true;
    }
    const std::lock_guard<std::mutex> hold(m_subscribing);
    m_subscription.reset();
}

void GroupRegistrations::Subscribe() {
    const std::lock_guard<std::mutex> hold(m_subscribing);
    const bool closed = [this] {
        const std::lock_guard<std::recursive_mutex> look(m_lock);
        return m_closed;
    }();
    if (!m_subscription && !closed)
        m_subscription = m_model.Feed().Subscribe([this](const ShowChange& change) { Hear(change); });
}

void GroupRegistrations::Hear(const ShowChange& change) {
    const std::lock_guard<std::recursive_mutex> hold(m_lock);
    if (m_handler != nullptr && change.kind == ObjectKind::Variable && IsHeard(change))
        m_handler->OnPropertyChange(change.object.c_str(), change.property.c_str(), change.value.c_str(), 0, 0);
}

bool GroupRegistrations::IsHeard(const ShowChange& change) const {
    return std::any_of(m_groups.begin(), m_groups.end(), [&](const auto& entry) {
        const Registration& registration = entry.second;
        return registration.events && change.number > registration.after &&
               m_model.GroupHas(entry.first, change.object);
    });
}

} // namespace stagehost
