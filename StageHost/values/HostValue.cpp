#include "HostValue.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace stagehost {

HostValue::HostValue(const ValueSpec& spec)
    : m_name(spec.name)
    , m_type(spec.type)
    , m_instanceId(spec.instanceId)
    , m_properties(spec.properties) {}

void HostValue::SetIdentity(std::string name, std::uint32_t instanceId) {
    m_name = std::move(name);
    m_instanceId = instanceId;
}

std::int32_t HostValue::Int() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return ReadInt();
}

double HostValue::Real() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return ReadReal();
}

std::string HostValue::Text() const {
    const std::lock_guard<std::mutex> hold(m_lock);
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
        m_properties = spec.properties;
        ReadLimits(spec);
        WriteText(spec.text);
        return Taken::Changed;
    });
}

bool HostValue::StoreProperty(const char* name, const char* value) {
    if (name == nullptr)
        return false;
    const std::lock_guard<std::mutex> hold(m_lock);
    m_properties[name] = value == nullptr ? "" : value;
    return true;
}

const char* HostValue::Property(const char* name) const {
    const std::lock_guard<std::mutex> hold(m_lock);
    const auto found = name == nullptr ? m_properties.end() : m_properties.find(name);
    return found == m_properties.end() ? nullptr : found->second.c_str();
}

std::map<std::string, std::string> HostValue::Properties() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_properties;
}

void HostValue::TellChangesTo(ChangeSink* sink) {
    const std::lock_guard<std::mutex> hold(m_lock);
    m_sink = sink;
}

void HostValue::TellSink() const {
    if (m_sink != nullptr && m_sink->IsWanted())
        m_sink->ValueChanged(m_name, ReadText());
}

/// The list is copied, since a notification may be under way. The end of an observation, which must not fail for want
/// of memory, marks its observer; the next copy is without it.
Observation HostValue::Observe(std::function<void()> observer) {
    auto entry = std::make_shared<Observer>(std::move(observer));
    Observation observation(entry.get(), [entry](void*) { entry->isOver = true; });
    auto next = std::make_shared<Observers>();
    const std::lock_guard<std::mutex> hold(m_lock);
    if (m_observers)
        std::copy_if(m_observers->begin(), m_observers->end(), std::back_inserter(*next),
                     [](const auto& one) { return !one->isOver; });
    next->push_back(std::move(entry));
    m_observers = std::move(next);
    return observation;
}

void HostValue::Notify(const Observers& observers) {
    for (const auto& observer : observers) {
        if (!observer->isOver)
            observer->call();
    }
}

} // namespace stagehost
