#pragma once

#include <atomic>
#include <functional>

#include "BenchDevice.h"
#include "FakeRemotes.h"

/// A number that costs as little as a host variable can, and tells of each write.
class BenchVariable : public plain::Value {
public:
    BenchVariable()
        : plain::Value("v", KXP_INTEGER_DATA) {}
    ~BenchVariable() override = default;
    /// Called with each number that is written, on the thread that writes.
    std::function<void(std::int32_t)> onWrite;

    std::int32_t GetIntValue() override { return m_number; }
    void SetIntValue(std::int32_t value, std::uint32_t, std::uint32_t) override {
        m_number = value;
        if (onWrite)
            onWrite(value);
    }

private:
    std::atomic<std::int32_t> m_number{0};
};

/// A show of one variable, which has every name, whose `Perform` runs the function "F" of a target device.
class BenchShow : public FakeRemote2, public IVariableManager {
public:
    /// Offers itself to the devices that are made from now on.
    BenchShow();
    ~BenchShow() override = default;

    BenchVariable variable;
    BenchDevice* target = nullptr; ///< borrowed

    KXPCode QueryInterface(const char* name, void** out) override { return FakeRemote2::QueryInterface(name, out); }
    KXPCode Release() override { return KXP_OK; }
    KXPCode Reserved1(void*) override { return KXP_OK; }
    IData* FindVariable(const char*) override { return &variable; }
    /// Ends the request with the text that the function gives.
    KXPCode Perform(const char* object, const char* action, const char* parameters, IExecContext* context,
                    void* reserved) override;

private:
    /// The target's end is the end of the request behind it.
    class Answer : public plain::Context {
    public:
        ~Answer() override = default;
        KXPCode End() override;
        IExecContext2* request = nullptr;
        std::unique_ptr<plain::Params> params;
    };
    Answer m_answer; ///< of the one request at a time that a script waits for
};
