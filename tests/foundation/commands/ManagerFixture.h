#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "CommandFixture.h"
#include "Deadline.h"
#include "MThread.h"
#include "MyCommandManager.h"

/// A clock that a test advances.
struct FakeClock {
    std::atomic<std::uint32_t> nowMs{1000};
    MyCommandManager::MillisecondSource Source() {
        return [this] { return nowMs.load(); };
    }
};

/// Does with each command what the test says, and keeps the ids in order.
class Manager : public MyCommandManager {
public:
    using MyCommandManager::MyCommandManager;
    ~Manager() override { ClearCommands(); }

    bool ExecuteCommand(MCommandObject* command) override {
        executed.push_back(command->GetId());
        if (work)
            work(command);
        return true;
    }

    std::int32_t Post(std::int32_t id, void* request = nullptr, std::uint32_t timeoutMs = 0) {
        auto* command = new MCommandObject(this, id, 0, request ? &requests : nullptr, request);
        command->SetTimeout(timeoutMs);
        return PostCommand(command);
    }
    std::uint32_t CurrentTimeout() {
        const MCommandObject* current = LockCurrentCommand();
        const std::uint32_t timeoutMs = current ? current->GetTimeout() : 0;
        if (current)
            UnlockCurrentCommand();
        return timeoutMs;
    }
    bool LockIsFree() // asked on another thread, since the lock is recursive
    {
        bool seen = false;
        std::thread([&] {
            MCommandObject* current = nullptr;
            auto* const untouched = reinterpret_cast<MCommandObject*>(this);
            current = untouched;
            if (CheckCommandTimeout(&current))
                UnlockCurrentCommand();
            seen = current != untouched;
        }).join();
        return seen;
    }

    Requests requests;
    std::function<void(MCommandObject*)> work;
    std::vector<std::int32_t> executed; // by one thread at a time: under the manager's lock, or in tests of one thread
};

/// Finishes each command, as a device does with work that is complete.
inline void FinishEach(Manager& manager) {
    manager.work = [&manager](MCommandObject*) { manager.FinishCurrentCommand(nullptr); };
}

/// What the device's tick does with an expired command.
inline bool WatchOnce(Manager& manager) {
    MCommandObject* current = nullptr;
    if (!manager.CheckCommandTimeout(&current))
        return false;
    if (current->IncrementRetries() < 2) {
        manager.ExecuteCurrentCommand();
        manager.UnlockCurrentCommand();
        return false;
    }
    manager.FinishCurrentCommand(nullptr);
    if (manager.TakeNextCommand() == kCommandDone)
        manager.ExecuteCurrentCommand();
    manager.UnlockCurrentCommand();
    return true;
}

/// The body of a device's command thread.
class CommandThread : public IThreadHandler {
public:
    explicit CommandThread(MyCommandManager& manager)
        : m_manager(manager)
        , m_thread(this) {
        EXPECT_TRUE(m_thread.Start(true, kDeadlineMs));
    }
    ~CommandThread() override { Stop(); }
    void Stop() {
        m_thread.Stop();
        m_manager.WakeCommandThread();
        EXPECT_TRUE(m_thread.Wait(kDeadlineMs));
    }
    std::uint32_t ThreadRun(MThread* thread) override {
        while (!thread->StopRequested()) {
            if (!m_manager.WaitForCommand(kInfinite))
                continue;
            while (m_manager.TakeNextCommand() == kCommandDone && !thread->StopRequested())
                m_manager.ExecuteCurrentCommand();
        }
        return 0;
    }

private:
    MyCommandManager& m_manager;
    MThread m_thread;
};
