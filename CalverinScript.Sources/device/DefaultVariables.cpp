#include "DefaultVariables.h"

#include <chrono>
#include <utility>

#include "FaceAnswer.h"
#include "HostText.h"
#include "IData.h"

namespace {

/// How long a write that is inside the host is waited for.
constexpr std::chrono::milliseconds kWriterWait{500};

constexpr std::size_t IndexOf(DefaultVariable variable) {
    return static_cast<std::size_t>(variable);
}

} // namespace

void DefaultVariables::SetText(DefaultVariable variable, const QString& text) {
    Do(variable, [text](const Target& target) { target.data->SetValueFromString(ToHostText(text).constData(), 0, 0); });
}

void DefaultVariables::SetStatus(DeviceStatus status) {
    Do(DefaultVariable::Status, [index = static_cast<std::int32_t>(status)](const Target& target) {
        if (target.items != nullptr)
            target.items->SetCurrent(index, 0, 0);
        else
            target.data->SetIntValue(index, 0, 0);
    });
}

void DefaultVariables::Do(DefaultVariable variable, const Write& write) {
    Target target;
    if (!Enter(variable, write, target))
        return;
    write(target);
    Leave();
}

/// @return whether the write is to be made now.
bool DefaultVariables::Enter(DefaultVariable variable, const Write& write, Target& target) {
    const std::lock_guard<std::mutex> guard(m_lock);
    target = m_targets[IndexOf(variable)];
    const bool isNow = m_state == State::Bound && target.data != nullptr;
    if (isNow)
        ++m_inside;
    else if (m_state == State::Unbound)
        m_kept[variable] = write;
    return isNow;
}

void DefaultVariables::Leave() {
    const std::lock_guard<std::mutex> guard(m_lock);
    if (--m_inside == 0 && m_state != State::Bound)
        m_left.notify_all();
}

void DefaultVariables::WaitForWriters(std::unique_lock<std::mutex>& guard) {
    m_left.wait_for(guard, kWriterWait, [this] { return m_inside == 0; });
}

void DefaultVariables::Unbind() {
    std::unique_lock<std::mutex> guard(m_lock);
    if (m_state == State::Forgotten)
        return;
    m_state = State::Unbound;
    m_targets.fill({});
    ++m_unbinds;
    WaitForWriters(guard);
}

DefaultVariables::Replacement::Replacement(DefaultVariables& defaults)
    : m_defaults(defaults) {
    {
        const std::lock_guard<std::mutex> guard(m_defaults.m_lock);
        ++m_defaults.m_replacements;
    }
    m_defaults.Unbind();
}

DefaultVariables::Replacement::~Replacement() {
    const std::lock_guard<std::mutex> guard(m_defaults.m_lock);
    --m_defaults.m_replacements;
}

void DefaultVariables::Bind(const Find& find) {
    unsigned seen = 0;
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (m_replacements > 0)
            return;
        seen = m_unbinds;
    }
    if (Take(find, seen))
        WriteKept();
}

void DefaultVariables::BindUnlessBound(const Find& find) {
    unsigned seen = 0;
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (m_state == State::Unbound || m_targets[IndexOf(DefaultVariable::Status)].data != nullptr)
            return;
        seen = m_unbinds;
    }
    if (Take(find, seen))
        WriteKept();
}

/// Under the lock: whether what was found since then is the host's no more.
bool DefaultVariables::IsOutdated(unsigned seenUnbinds) const {
    return m_state == State::Forgotten || seenUnbinds != m_unbinds;
}

/// Asks the host without the lock. It may replace its values or release the device when it is asked, and what it gives
/// then is not touched.
/// @return whether the values are new.
bool DefaultVariables::Take(const Find& find, unsigned seenUnbinds) {
    std::array<Target, kDefaultVariableCount> found{};
    for (std::size_t i = 0; i < found.size(); ++i) {
        found[i].data = find(kDefaultVariables[i]);
        {
            const std::lock_guard<std::mutex> guard(m_lock);
            if (IsOutdated(seenUnbinds))
                return false;
        }
        found[i].items = QueryFace<IEnumData>(found[i].data, "IEnumData");
    }
    const std::lock_guard<std::mutex> guard(m_lock);
    if (IsOutdated(seenUnbinds))
        return false;
    m_state = State::Unbound;
    m_targets = found;
    return true;
}

/// One after the other, so that none of them comes behind what is written after it.
void DefaultVariables::WriteKept() {
    std::unique_lock<std::mutex> guard(m_lock);
    while (m_state == State::Unbound && !m_kept.empty()) {
        const auto kept = m_kept.extract(m_kept.begin());
        const Target target = m_targets[IndexOf(kept.key())];
        if (target.data == nullptr)
            continue;
        ++m_inside;
        guard.unlock();
        kept.mapped()(target);
        guard.lock();
        --m_inside;
    }
    if (m_state == State::Unbound)
        m_state = State::Bound;
    m_left.notify_all();
}

void DefaultVariables::Forget() {
    std::unique_lock<std::mutex> guard(m_lock);
    m_state = State::Forgotten;
    m_targets.fill({});
    m_kept.clear();
    WaitForWriters(guard);
}
