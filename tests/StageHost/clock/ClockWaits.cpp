#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <future>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include <poll.h>
#include <semaphore.h>
#include <sys/epoll.h>
#include <sys/select.h>
#include <unistd.h>

#include <QMutex>
#include <QSemaphore>
#include <QThread>
#include <QWaitCondition>

/// A peer of a show that waits in every way at once and says on standard error, in ms of its own clocks, how long each
/// has taken:
///   clockwaits MS
/// Then it says "done" and waits for the end of its input.

namespace {

using namespace std::chrono;

milliseconds span(0);

timespec After(clockid_t clock) {
    timespec moment{};
    clock_gettime(clock, &moment);
    moment.tv_sec += duration_cast<seconds>(span).count();
    return moment;
}

timespec Span() {
    return {duration_cast<seconds>(span).count(), 0};
}

const std::pair<const char*, std::function<void()>> kWays[] = {
    {"sleep_for", [] { std::this_thread::sleep_for(span); }},
    {"sleep_until",
     [] {
         const timespec moment = After(CLOCK_MONOTONIC);
         clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &moment, nullptr);
     }},
    {"sleep", [] { sleep(static_cast<unsigned>(duration_cast<seconds>(span).count())); }},
    {"usleep", [] { usleep(static_cast<useconds_t>(duration_cast<microseconds>(span).count())); }},
    {"poll", [] { poll(nullptr, 0, static_cast<int>(span.count())); }},
    {"ppoll",
     [] {
         const timespec time = Span();
         ppoll(nullptr, 0, &time, nullptr);
     }},
    {"select",
     [] {
         timeval time{Span().tv_sec, 0};
         select(0, nullptr, nullptr, nullptr, &time);
     }},
    {"epoll",
     [] {
         epoll_event event{};
         const int set = epoll_create1(0);
         epoll_wait(set, &event, 1, static_cast<int>(span.count()));
         close(set);
     }},
    {"condition",
     [] {
         std::mutex lock;
         std::condition_variable never;
         std::unique_lock<std::mutex> hold(lock);
         never.wait_for(hold, span, [] { return false; });
     }},
    {"condition by the wall clock",
     [] {
         std::mutex lock;
         std::condition_variable never;
         std::unique_lock<std::mutex> hold(lock);
         never.wait_until(hold, system_clock::now() + span, [] { return false; });
     }},
    {"future",
     [] {
         std::promise<int> promise;
         (void)promise.get_future().wait_for(span);
     }},
    {"timed mutex",
     [] {
         std::timed_mutex lock;
         lock.lock();
         std::thread([&] { (void)lock.try_lock_for(span); }).join();
         lock.unlock();
     }},
    {"semaphore",
     [] {
         sem_t semaphore{};
         sem_init(&semaphore, 0, 0);
         const timespec moment = After(CLOCK_REALTIME);
         sem_timedwait(&semaphore, &moment);
     }},
    {"toolkit's semaphore", [] { (void)QSemaphore().tryAcquire(1, static_cast<int>(span.count())); }},
    {"toolkit's mutex",
     [] {
         QMutex lock;
         lock.lock();
         std::thread([&] { (void)lock.tryLock(static_cast<int>(span.count())); }).join();
         lock.unlock();
     }},
    {"toolkit's condition",
     [] {
         QMutex lock;
         QWaitCondition never;
         lock.lock();
         never.wait(&lock, static_cast<unsigned long>(span.count()));
         lock.unlock();
     }},
    {"toolkit's sleep", [] { QThread::msleep(static_cast<unsigned long>(span.count())); }},
};

std::mutex told;

void Wait(const std::pair<const char*, std::function<void()>>& way) {
    const auto begin = steady_clock::now();
    const auto wall = system_clock::now();
    way.second();
    const auto passed = duration_cast<milliseconds>(steady_clock::now() - begin).count();
    const auto onTheWall = duration_cast<milliseconds>(system_clock::now() - wall).count();
    const std::lock_guard<std::mutex> hold(told);
    std::fprintf(stderr, "waited %lld %lld %s\n", static_cast<long long>(passed), static_cast<long long>(onTheWall),
                 way.first);
}

} // namespace

int main(int count, char** words) {
    span = milliseconds(count > 1 ? std::atoi(words[1]) : 1000);
    std::vector<std::thread> threads;
    for (const auto& way : kWays)
        threads.emplace_back([&way] { Wait(way); });
    std::puts("ready");
    std::fflush(stdout);
    for (auto& thread : threads)
        thread.join();
    std::fputs("done\n", stderr);
    char byte = 0;
    while (read(STDIN_FILENO, &byte, 1) > 0) {
    }
}
