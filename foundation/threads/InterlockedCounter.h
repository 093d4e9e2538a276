#pragma once

#include <atomic>
#include <cstdint>

/// A 32-bit number that several threads count on. Wraps from 0x7FFFFFFF to -0x80000000 without harm.   [thread: any]
class InterlockedCounter {
public:
    explicit InterlockedCounter(std::int32_t value = 0)
        : m_value(value) {}

    /// Adds 1. @return the new value.
    std::int32_t Increment() {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(m_value.fetch_add(1)) + 1U);
    }

    /// Takes 1 away. @return the new value.
    std::int32_t Decrement() {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(m_value.fetch_sub(1)) - 1U);
    }

    /// Adds 1 unless the value is 0. @return whether it did.
    bool IncrementUnlessZero() { return AddUnlessZero(1U); }

    /// Takes 1 away unless the value is 0. @return whether it did.
    bool DecrementUnlessZero() { return AddUnlessZero(~0U); }

    std::int32_t Read() const { return m_value.load(); }

    /// Stores value. @return the value before.
    std::int32_t Exchange(std::int32_t value) { return m_value.exchange(value); }

private:
    bool AddUnlessZero(std::uint32_t summand) {
        std::int32_t value = m_value.load();
        while (value != 0)
            if (m_value.compare_exchange_weak(value,
                                              static_cast<std::int32_t>(static_cast<std::uint32_t>(value) + summand)))
                return true;
        return false;
    }

    std::atomic<std::int32_t> m_value;
};
