#include "OwnNetwork.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include <net/if.h>
#include <net/route.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr const char* kMark = "CALVERIN_OWN_NETWORK";

bool Write(const char* path, const std::string& text) {
    std::ofstream file(path);
    file << text << std::flush;
    return file.good();
}

void MapUser(unsigned user, unsigned group) {
    Write("/proc/self/setgroups", "deny");
    Write("/proc/self/uid_map", "0 " + std::to_string(user) + " 1");
    Write("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
}

void SetAddress(sockaddr& target, std::uint32_t address) {
    sockaddr_in value{};
    value.sin_family = AF_INET;
    value.sin_addr.s_addr = htonl(address);
    std::memcpy(&target, &value, sizeof value);
}

bool AddRoute(int control, std::uint32_t network, std::uint32_t mask, unsigned short flags) {
    std::string device = "lo";
    rtentry route{};
    SetAddress(route.rt_dst, network);
    SetAddress(route.rt_genmask, mask);
    route.rt_flags = static_cast<unsigned short>(RTF_UP | flags);
    if ((flags & RTF_REJECT) == 0)
        route.rt_dev = device.data();
    return ioctl(control, SIOCADDRT, &route) == 0;
}

bool SetUpLoopback() {
    const int control = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request{};
    std::strcpy(request.ifr_name, "lo");
    request.ifr_flags = IFF_UP | IFF_LOOPBACK | IFF_RUNNING | IFF_MULTICAST;
    const bool done = ioctl(control, SIOCSIFFLAGS, &request) == 0 && AddRoute(control, 0, 0, 0) &&
                      AddRoute(control, 0x0A630000, 0xFFFF0000, RTF_REJECT); // 10.99.0.0/16 cannot be reached
    close(control);
    return done;
}

bool SetUpResolver() {
    std::string path = std::filesystem::temp_directory_path() / "resolvXXXXXX";
    close(mkstemp(path.data()));
    const bool done = Write(path.c_str(), "nameserver 127.0.0.1\noptions timeout:5 attempts:1\n") &&
                      mount(path.c_str(), "/etc/resolv.conf", nullptr, MS_BIND, nullptr) == 0;
    unlink(path.c_str());
    return done;
}

// An attempt to connect gives up after 1 + 2 seconds.
bool SetUpTimeOut() {
    Write("/proc/sys/net/ipv4/tcp_syn_linear_timeouts", "0");
    return Write("/proc/sys/net/ipv4/tcp_syn_retries", "1");
}

[[noreturn]] void BecomeChild(char** arguments, unsigned user, unsigned group) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    MapUser(user, group);
    const bool ready = SetUpLoopback() && SetUpResolver() && SetUpTimeOut();
    setenv(kMark, ready ? "ready" : "denied", 1);
    execv("/proc/self/exe", arguments);
    _exit(127);
}

} // namespace

int RunInOwnNetwork(char** arguments) {
    if (getenv(kMark))
        return -1;
    const unsigned user = getuid();
    const unsigned group = getgid();
    const long child = syscall(SYS_clone, CLONE_NEWUSER | CLONE_NEWNET | CLONE_NEWNS | SIGCHLD, 0, 0, 0, 0);
    if (child == 0)
        BecomeChild(arguments, user, group);
    if (child < 0) {
        std::perror("no network of our own, some tests will be skipped");
        return -1;
    }
    int status = 0;
    waitpid(static_cast<pid_t>(child), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

bool HasOwnNetwork() {
    const char* mark = getenv(kMark);
    return mark && std::strcmp(mark, "ready") == 0;
}
