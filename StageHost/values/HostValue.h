#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ChangeSink.h"
#include "IData.h"
#include "ValueSpec.h"

namespace stagehost {

/// Keeps a change observer in place; it may outlive the value. A call that is already under way on another thread may
/// still go on behind its end, so an observer owns what it touches; that goes with a later Observe or with the value.
using Observation = std::shared_ptr<void>;

/// A typed value in the host: what all types share. Each type derives from ValueFace, which adds the interface.
///
/// Every value has a lock of its own, held for the few instructions of one read or write and never while observers run.
/// All operations may come on any thread.
class HostValue {
public:
    explicit HostValue(const ValueSpec& spec);
    virtual ~HostValue() = default;
    HostValue(const HostValue&) = delete;
    HostValue& operator=(const HostValue&) = delete;

    /// The value as the contract shows it; lives as long as this object.
    virtual IData* Face() = 0;

    const std::string& Name() const { return m_name; }
    std::uint32_t Type() const { return m_type; }
    std::uint32_t InstanceId() const { return m_instanceId; }

    /// Names and numbers the value; before it is shown to others.
    void SetIdentity(std::string name, std::uint32_t instanceId);

    std::int32_t Int() const;
    double Real() const;
    std::string Text() const;

    /// Writes in the form of the type, within its limits. What the type cannot take leaves the value as it is.
    /// @return true when the value was taken, whether it changed or not.
    bool SetInt(std::int32_t value);
    bool SetReal(double value);
    bool SetText(std::string_view text);

    /// Takes the limits and the first content of a ValueSpec of the same type.
    void Configure(const ValueSpec& spec);

    bool StoreProperty(const char* name, const char* value);
    const char* Property(const char* name) const;
    std::map<std::string, std::string> Properties() const;

    /// Tells every further change of the content to the sink, which must outlive the value; null for none.   [any]
    void TellChangesTo(ChangeSink* sink);

    /// Calls the observer after each change, on the thread that made it, with no lock held.
    [[nodiscard]] Observation Observe(std::function<void()> observer);

protected:
    enum class Taken { No, Same, Changed };

    /// The type's own work; called under the lock.
    virtual std::int32_t ReadInt() const = 0;
    virtual double ReadReal() const = 0;
    virtual std::string ReadText() const = 0;
    virtual Taken WriteInt(std::int32_t value) = 0;
    virtual Taken WriteReal(double value) = 0;
    virtual Taken WriteText(std::string_view text) = 0;
    virtual void ReadLimits(const ValueSpec& spec) = 0;

    /// Stores and says whether that changed something.
    template <typename Field>
    static Taken Assign(Field& field, Field value) {
        if (field == value)
            return Taken::Same;
        field = std::move(value);
        return Taken::Changed;
    }

    /// Runs a change under the lock and tells the observers behind it.
    template <typename Change>
    bool Apply(Change change) {
        Taken taken = Taken::No;
        std::shared_ptr<const Observers> observers;
        {
            const std::lock_guard<std::mutex> hold(m_lock);
            taken = change();
            if (taken == Taken::Changed) {
                observers = m_observers;
                TellSink();
            }
        }
        if (observers)
            Notify(*observers);
        return taken != Taken::No;
    }

    mutable std::mutex m_lock; ///< guards the content, the limits, the properties, the sink and the list of observers

private:
    struct Observer {
        explicit Observer(std::function<void()> itsCall)
            : call(std::move(itsCall)) {}

        const std::function<void()> call;
        std::atomic<bool> isOver{false}; ///< written by the end of the observation, read by every notification
    };
    using Observers = std::vector<std::shared_ptr<Observer>>;

    void TellSink() const;
    static void Notify(const Observers& observers);

    std::string m_name;
    const std::uint32_t m_type;
    std::uint32_t m_instanceId;
    std::map<std::string, std::string> m_properties;
    ChangeSink* m_sink = nullptr;                 ///< not owned
    std::shared_ptr<const Observers> m_observers; ///< null while there are none; replaced, never changed
};

} // namespace stagehost
