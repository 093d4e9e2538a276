#include "HostValue.h"

#include <algorithm>
#include <utility>

namespace stagehost {

HostValue::HostValue(const ValueSpec& spec)
    : name_(spec.name)
    , type_(spec.type)
    , instanceId_(spec.instanceId)
    , properties_(spec.properties) {}

void HostValue::SetIdentity(std::string name, std::uint32_t instanceId) {
    name_ = std::move(name);
    instanceId_ = instanceId;
}

std::int32_t HostValue::Int() const {
    const std::lock_guard<std::mutex> hold(lock_);
    return ReadInt();
}

double HostValue::Real() const {
    const std::lock_guard<std::mutex> hold(lock_);
    return ReadReal();
}

std::string HostValue::Text() const {
    const std::lock_guard<std::mutex> hold(lock_);
    return ReadText();
}

bool HostValue::SetInt(std::int32_t value) {
    return Apply([this, value] { return WriteInt(value); });
}

bool HostValue::SetReal(double value) {
    return Apply([this, value] { return WriteReal(value); });
}

bool HostValue::SetText(std::string_view text) {
    return Apply([this, text] { return WriteText(text); });
}

void HostValue::Configure(const ValueSpec& spec) {
    Apply([this, &spec] {
        properties_ = spec.properties;
        ReadLimits(spec);
        WriteText(spec.text);
        return Taken::Changed;
    });
}

bool HostValue::StoreProperty(const char* name, const char* value) {
    if (name == nullptr)
        return false;
    const std::lock_guard<std::mutex> hold(lock_);
    properties_[name] = value == nullptr ? "" : value;
    return true;
}

const char* HostValue::Property(const char* name) const {
    const std::lock_guard<std::mutex> hold(lock_);
    const auto found = name == nullptr ? properties_.end() : properties_.find(name);
    return found == properties_.end() ? nullptr : found->second.c_str();
}

std::map<std::string, std::string> HostValue::Properties() const {
    const std::lock_guard<std::mutex> hold(lock_);
    return properties_;
}

void HostValue::TellChangesTo(ChangeSink* sink) {
    const std::lock_guard<std::mutex> hold(lock_);
    sink_ = sink;
}

void HostValue::TellSink() const {
    if (sink_ != nullptr && sink_->IsWanted())
        sink_->ValueChanged(name_, ReadText());
}

Observation HostValue::Observe(std::function<void()> observer) {
    auto entry = std::make_shared<Observer>(std::move(observer));
    const std::lock_guard<std::mutex> hold(lock_);
    auto next = observers_ ? std::make_shared<Observers>(*observers_) : std::make_shared<Observers>();
    next->push_back(entry);
    observers_ = std::move(next);
    return {entry.get(), [this](void* gone) { Forget(static_cast<Observer*>(gone)); }};
}

void HostValue::Forget(const Observer* observer) {
    const std::lock_guard<std::mutex> hold(lock_);
    auto next = std::make_shared<Observers>(*observers_);
    next->erase(std::remove_if(next->begin(), next->end(), [&](const auto& entry) { return entry.get() == observer; }),
                next->end());
    observers_ = next->empty() ? nullptr : std::move(next);
}

void HostValue::Notify(const Observers& observers) {
    for (const auto& observer : observers)
        (*observer)();
}

} // namespace stagehost
