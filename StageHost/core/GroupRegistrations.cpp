#include "GroupRegistrations.h"

#include <algorithm>

namespace stagehost {

GroupRegistrations::GroupRegistrations(ShowModel& model)
    : model_(model) {}

GroupRegistrations::~GroupRegistrations() {
    Close();
}

void GroupRegistrations::SetHandler(IManagerRemoteHandler* handler) {
    const std::lock_guard<std::recursive_mutex> hold(lock_);
    handler_ = closed_ ? nullptr : handler;
}

IManagerRemoteHandler* GroupRegistrations::Handler() const {
    const std::lock_guard<std::recursive_mutex> hold(lock_);
    return handler_;
}

void GroupRegistrations::Add(const std::string& group, bool events) {
    if (events)
        Subscribe();
    const std::lock_guard<std::recursive_mutex> hold(lock_);
    Registration& registration = groups_[group];
    if (events && !registration.events)
        registration.after = model_.Feed().LastNumber();
    registration.events = registration.events || events;
}

void GroupRegistrations::Remove(const std::string& group) {
    const std::lock_guard<std::recursive_mutex> hold(lock_);
    groups_.erase(group);
}

void GroupRegistrations::Clear() {
    const std::lock_guard<std::recursive_mutex> hold(lock_);
    groups_.clear();
}

void GroupRegistrations::Close() {
    {
        const std::lock_guard<std::recursive_mutex> hold(lock_);
        handler_ = nullptr;
        closed_ = true;
    }
    const std::lock_guard<std::mutex> hold(subscribing_);
    subscription_.reset();
}

void GroupRegistrations::Subscribe() {
    const std::lock_guard<std::mutex> hold(subscribing_);
    const bool closed = [this] {
        const std::lock_guard<std::recursive_mutex> look(lock_);
        return closed_;
    }();
    if (!subscription_ && !closed)
        subscription_ = model_.Feed().Subscribe([this](const ShowChange& change) { Hear(change); });
}

void GroupRegistrations::Hear(const ShowChange& change) {
    const std::lock_guard<std::recursive_mutex> hold(lock_);
    if (handler_ != nullptr && change.kind == ObjectKind::Variable && IsHeard(change))
        handler_->OnPropertyChange(change.object.c_str(), change.property.c_str(), change.value.c_str(), 0, 0);
}

bool GroupRegistrations::IsHeard(const ShowChange& change) const {
    return std::any_of(groups_.begin(), groups_.end(), [&](const auto& entry) {
        const Registration& registration = entry.second;
        return registration.events && change.number > registration.after && model_.GroupHas(entry.first, change.object);
    });
}

} // namespace stagehost
