#pragma once

#include <ctime>

#include <dlfcn.h>
#include <poll.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/epoll.h>
#include <sys/select.h>
#include <sys/time.h>
#include <unistd.h>

namespace stagehost::showtime {

/// The calls of the C library that this library stands in front of.
struct NextCalls {
    template <class Function>
    static Function Find(const char* name) {
        return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
    }

    using Time = const timespec*;
    // NOLINTBEGIN(readability-identifier-naming): each is named as the call that it is
    int (*clock_gettime)(clockid_t, timespec*) = Find<decltype(clock_gettime)>("clock_gettime");
    int (*clock_nanosleep)(clockid_t, int, Time, timespec*) = Find<decltype(clock_nanosleep)>("clock_nanosleep");
    int (*ppoll)(pollfd*, nfds_t, Time, const sigset_t*) = Find<decltype(ppoll)>("ppoll");
    int (*pselect)(int, fd_set*, fd_set*, fd_set*, Time, const sigset_t*) = Find<decltype(pselect)>("pselect");
    int (*epoll_pwait2)(int, epoll_event*, int, Time, const sigset_t*) = Find<decltype(epoll_pwait2)>("epoll_pwait2");
    int (*pthread_cond_clockwait)(pthread_cond_t*, pthread_mutex_t*, clockid_t,
                                  Time) = Find<decltype(pthread_cond_clockwait)>("pthread_cond_clockwait");
    int (*pthread_cond_timedwait)(pthread_cond_t*, pthread_mutex_t*,
                                  Time) = Find<decltype(pthread_cond_timedwait)>("pthread_cond_timedwait");
    int (*pthread_mutex_clocklock)(pthread_mutex_t*, clockid_t,
                                   Time) = Find<decltype(pthread_mutex_clocklock)>("pthread_mutex_clocklock");
    int (*sem_clockwait)(sem_t*, clockid_t, Time) = Find<decltype(sem_clockwait)>("sem_clockwait");
    long (*syscall)(long, ...) = Find<decltype(syscall)>("syscall");
    // NOLINTEND(readability-identifier-naming)
};

inline const NextCalls& Next() {
    static const NextCalls calls;
    return calls;
}

} // namespace stagehost::showtime
