#include "ThreadPromise.h"

#include <algorithm>
#include <functional>
#include <thread>

#include "LogFixture.h"

namespace {

class ThreadPromises : public LogFixture {
protected:
    static void OnAnotherThread(const std::function<void()>& work) { std::thread(work).join(); }
    std::ptrdiff_t TimesTold(const std::string& operation) {
        const auto& lines = Recorded().lines;
        return std::count_if(lines.begin(), lines.end(),
                             [&](const auto& line) { return line.text.find(operation) != std::string::npos; });
    }
};

TEST_F(ThreadPromises, OnlyTheThreadThatSaidSoIsTheHostsMainThread) {
    OnAnotherThread([] {
        EXPECT_FALSE(KeepsPromise(ThreadWord::HostMain));
        NoteHostMainThread();
        EXPECT_TRUE(KeepsPromise(ThreadWord::HostMain));
        OnAnotherThread([] { EXPECT_FALSE(KeepsPromise(ThreadWord::HostMain)); });
    });
}

TEST_F(ThreadPromises, EveryThreadKeepsTheOtherPromises) {
    OnAnotherThread([] {
        EXPECT_TRUE(KeepsPromise(ThreadWord::AnyHostThread));
        EXPECT_TRUE(KeepsPromise(ThreadWord::Any));
    });
}

TEST_F(ThreadPromises, ABrokenOneIsLoggedOnceForEachOperation) {
    GivenLibrary(RECORDING_LOGS);
    GivenConfig("OutputLogFile=2");
    ASSERT_TRUE(Open());
    OnAnotherThread([] {
        for (int i = 0; i < 3; ++i) {
            ExpectThread(ThreadWord::HostMain, "ITest::First");
            ExpectThread(ThreadWord::HostMain, "ITest::Second");
        }
    });
    EXPECT_EQ(TimesTold("ITest::First: not on the host's main thread"), 1);
    EXPECT_EQ(TimesTold("ITest::Second: not on the host's main thread"), 1);
}

} // namespace
