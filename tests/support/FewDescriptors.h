#pragma once

#include <sys/resource.h>

/// While it lives the process opens no descriptor whose number is not below the given one; those that are open stay usable.
class FewDescriptors {
public:
    explicit FewDescriptors(rlim_t most = 0) {
        getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit few{most, m_before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &few);
    }
    ~FewDescriptors() { setrlimit(RLIMIT_NOFILE, &m_before); }
    FewDescriptors(const FewDescriptors&) = delete;
    FewDescriptors& operator=(const FewDescriptors&) = delete;

private:
    rlimit m_before{};
};
