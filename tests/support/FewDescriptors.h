#pragma once

#include <sys/resource.h>
#include <unistd.h>

/// While it lives the process opens no descriptor whose number is not below the given one; those that are open stay
/// usable.
class FewDescriptors {
public:
    /// Those that it has, and none more. A smaller number keeps it from waiting for more than that at once, too.
    FewDescriptors()
        : FewDescriptors(FirstFree()) {}
    /// So many more than it has.
    static FewDescriptors More(int count) { return FewDescriptors(FirstFree() + static_cast<rlim_t>(count)); }
    explicit FewDescriptors(rlim_t most) {
        getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit few{most, m_before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &few);
    }
    ~FewDescriptors() { setrlimit(RLIMIT_NOFILE, &m_before); }
    FewDescriptors(const FewDescriptors&) = delete;
    FewDescriptors& operator=(const FewDescriptors&) = delete;

private:
    static rlim_t FirstFree() {
        const int free = dup(STDIN_FILENO);
        close(free);
        return static_cast<rlim_t>(free);
    }

    rlimit m_before{};
};
