#pragma once

#include <sys/resource.h>

/// While it lives the system refuses to wait on more than one descriptor at once: waits that run go on, new ones fail.
/// Nothing can be opened meanwhile.
class RefusedWaits {
public:
    RefusedWaits() {
        getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit one{1, m_before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &one);
    }
    ~RefusedWaits() { setrlimit(RLIMIT_NOFILE, &m_before); }
    RefusedWaits(const RefusedWaits&) = delete;
    RefusedWaits& operator=(const RefusedWaits&) = delete;

private:
    rlimit m_before{};
};
