#include "ModuleHandlers.h"

#include <future>
#include <thread>

#include <gtest/gtest.h>

#include "Notes.h"

using namespace stagehost;

namespace {

struct Handler {
    int calls = 0;
};

} // namespace

TEST(ModuleHandlers, RemoveWaitsUntilNoOtherThreadIsInside) {
    ModuleHandlers<Handler> list;
    Handler handler;
    list.Add(&handler);
    std::promise<void> inside;
    std::promise<void> goOn;
    std::thread caller([&] {
        list.ForEach([&](Handler& called) {
            inside.set_value();
            goOn.get_future().wait();
            ++called.calls;
        });
    });
    inside.get_future().wait();
    auto removal = std::async(std::launch::async, [&] {
        list.Remove(&handler);
        return handler.calls;
    });
    EXPECT_EQ(removal.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    goOn.set_value();
    EXPECT_EQ(removal.get(), 1);
    caller.join();
    list.ForEach([](Handler& called) { ++called.calls; });
    EXPECT_EQ(handler.calls, 1);
}

TEST(ModuleHandlers, AHandlerMayRemoveItselfAndOthers) {
    ModuleHandlers<Handler> list;
    Handler one;
    Handler other;
    list.Add(&one);
    list.Add(&other);
    list.ForEach([&](Handler& called) {
        ++called.calls;
        list.Remove(&one);
        list.Remove(&other);
    });
    EXPECT_EQ(one.calls, 1);
    EXPECT_EQ(other.calls, 0);
    EXPECT_TRUE(list.IsEmpty());
}

TEST(ModuleHandlers, CallsOnlyThoseWhoWantTheBit) {
    ModuleHandlers<Handler> list;
    Handler data;
    Handler both;
    list.Add(&data, 1);
    list.Add(&both, 3);
    list.ForEach(2, [](Handler& called) { ++called.calls; });
    EXPECT_EQ(data.calls, 0);
    EXPECT_EQ(both.calls, 1);
    list.Add(&data, 2); // known: a new mask
    list.ForEach(2, [](Handler& called) { ++called.calls; });
    EXPECT_EQ(data.calls, 1);
}
