#pragma once

#include <cstddef>

#include <pthread.h>

/// While it lives the process gets no new threads: each would need a stack that no address space has room for.
class NoMoreThreads {
public:
    NoMoreThreads() {
        pthread_getattr_default_np(&m_before);
        pthread_attr_t endless;
        pthread_attr_init(&endless);
        pthread_attr_setstacksize(&endless, std::size_t(1) << 47);
        pthread_setattr_default_np(&endless);
        pthread_attr_destroy(&endless);
    }
    ~NoMoreThreads() {
        pthread_setattr_default_np(&m_before);
        pthread_attr_destroy(&m_before);
    }
    NoMoreThreads(const NoMoreThreads&) = delete;
    NoMoreThreads& operator=(const NoMoreThreads&) = delete;

private:
    pthread_attr_t m_before{};
};
