#include "ScriptCrossing.h"

#include <chrono>
#include <future>
#include <thread>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QThread>

#include "Deadline.h"
#include "HostDoor.h"

namespace {

/// A call that notes the thread that it ran on.
class NotedCall final : public ScriptCrossing::Call {
public:
    bool Run() override {
        ranOn = QThread::currentThread();
        if (findsNoMemory)
            throw std::bad_alloc();
        return true;
    }
    bool findsNoMemory = false;
    QThread* ranOn = nullptr;
};

/// A crossing whose other side is the test's own thread.
class Crossing : public testing::Test {
protected:
    struct Answer {
        bool isOver = false;
        bool result = false;
    };
    std::future<Answer> CallFromOutside(const std::shared_ptr<NotedCall>& call, std::uint32_t limitMs) {
        return std::async(std::launch::async, [this, call, limitMs] {
            Answer answer;
            answer.isOver = crossing.Run(call, limitMs, answer.result);
            return answer;
        });
    }
    static Answer ServeUntil(std::future<Answer>& answer) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(kDeadlineMs);
        while (answer.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready &&
               std::chrono::steady_clock::now() < end)
            QCoreApplication::processEvents();
        return answer.get();
    }

    std::recursive_mutex lock;
    std::atomic<bool> ending{false};
    int hung = 0;
    int shortages = 0;
    ScriptCrossing crossing{lock, ending, [] {}, [this] { ++hung; }, [this] { ++shortages; }, nullptr};
};

TEST_F(Crossing, RunsACallOnTheOtherSideAndGivesItsResult) {
    const auto call = std::make_shared<NotedCall>();
    std::future<Answer> answer = CallFromOutside(call, CompletionGate::kNoLimit);
    const Answer given = ServeUntil(answer);
    EXPECT_TRUE(given.isOver);
    EXPECT_TRUE(given.result);
    EXPECT_EQ(call->ranOn, QThread::currentThread());
}

TEST_F(Crossing, ACallWhoseCallerHasGoneOnRunsAllTheSame) {
    const auto call = std::make_shared<NotedCall>();
    std::future<Answer> answer = CallFromOutside(call, 1);
    EXPECT_FALSE(answer.get().isOver) << "nobody served the other side";
    QCoreApplication::processEvents();
    EXPECT_EQ(call->ranOn, QThread::currentThread());
}

TEST_F(Crossing, WantOfMemoryInACallIsToldAndEndsItWithoutAResult) {
    const auto call = std::make_shared<NotedCall>();
    call->findsNoMemory = true;
    std::future<Answer> answer = CallFromOutside(call, CompletionGate::kNoLimit);
    const Answer given = ServeUntil(answer);
    EXPECT_TRUE(given.isOver);
    EXPECT_FALSE(given.result);
    EXPECT_EQ(shortages, 1);
}

TEST_F(Crossing, TheEndLetsWaitersGoAndRefusesCalls) {
    const auto waiting = std::make_shared<NotedCall>();
    std::future<Answer> answer = CallFromOutside(waiting, CompletionGate::kNoLimit);
    crossing.BeginEnd();
    crossing.End();
    EXPECT_FALSE(answer.get().isOver);
    const auto late = std::make_shared<NotedCall>();
    bool result = true;
    EXPECT_FALSE(crossing.Run(late, CompletionGate::kNoLimit, result));
    EXPECT_FALSE(result);
    EXPECT_TRUE(crossing.HasEnded());
    EXPECT_EQ(hung, 0) << "without a thread nothing hangs";
}

TEST(DoorOfADevice, ClosesOnceAndHasEndedWhenTheLastVisitorHasLeft) {
    VisitGate values;
    HostDoor door(values);
    {
        const HostDoor::Visit visit(door);
        EXPECT_TRUE(door.Close());
        EXPECT_FALSE(door.Close());
        EXPECT_TRUE(door.IsClosed());
        EXPECT_FALSE(door.HasEnded()) << "somebody is inside";
    }
    EXPECT_TRUE(door.HasEnded());
}

} // namespace
