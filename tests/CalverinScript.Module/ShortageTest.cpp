#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "LoadedModule.h"
#include "PlainHost.h"

namespace {

using namespace plain;

constexpr unsigned kDeadlineSeconds = 120;

/// Bytes of address space that this process has.
rlim_t AddressSpace() {
    std::ifstream sizes("/proc/self/statm");
    rlim_t pages = 0;
    sizes >> pages;
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

/// A device's whole life, as far as it gets, with a script that uses what takes threads and memory. Results do not
/// matter, the end does.
void LiveADevice(IKXPModule& module) {
    IKXPDevice* device = nullptr;
    if (module.CreateDevice(nullptr, &device) != KXP_OK)
        return;
    Variables variables;
    device->SetDeviceVariables(&variables);
    device->SetName("Desk");
    device->GetDefinition();
    device->Start();
    Params load(
        {"var c = QCalverin.CreateHTTPClient(), t = QCalverin.CreateSocket('tcp'), u = QCalverin.CreateSocket('udp4');"
         "({ F: function(a) { c.get('http://127.0.0.1:9/'); t.connect(9, '127.0.0.1', function() {}); u.bind(0);"
         "   QCalverin.SetTimeout(function() {}, 1); return new Buffer(100000).toString('hex').length + a; } })"});
    device->ExecuteCommand(1, &load, nullptr);
    variables.functions.WaitFor("F\n", 2000);
    for (int i = 0; i < 3; ++i) {
        auto call = Params::ForFunction("F", {"a"});
        Context context;
        if (device->ExecuteCommand(3, call.get(), &context) == KXP_OK)
            context.WaitForEnd(20000);
    }
    char* setup = nullptr;
    if (device->GetSetup(&setup) == KXP_OK) {
        device->SetSetup(setup);
        device->ReleaseString(&setup);
    }
    device->Stop();
    device->Release();
}

/// Runs in a process of its own. @return its wait status.
int LiveWithin(rlim_t megabytesLeft, bool first) {
    const pid_t child = fork();
    if (child != 0) {
        int status = 0;
        waitpid(child, &status, 0);
        return status;
    }
    alarm(kDeadlineSeconds);
    Host host;
    LoadedModule loaded;
    int deviceHost = 0;
    loaded.module->Initialize(host.Root(), nullptr, nullptr);
    loaded.module->SetDeviceHost(&deviceHost);
    if (!first)
        LiveADevice(*loaded.module); // a show runs when memory gets short
    const rlim_t limit = AddressSpace() + (megabytesLeft << 20U);
    const rlimit space{limit, limit};
    setrlimit(RLIMIT_AS, &space);
    LiveADevice(*loaded.module);
    _exit(0);
}

/// How a process ended: well, or by which signal. The script engine ends it with a SIGSEGV when it has no memory, which
/// is not ours; SIGABRT is an exception that nobody caught, SIGALRM a wait without an end.
class Shortage : public testing::TestWithParam<int> {
protected:
    void SetUp() override {
        if (SANITIZED)
            GTEST_SKIP() << "a sanitizer takes all address space for itself";
    }
};

TEST_P(Shortage, OfAddressSpaceNeverEndsTheProcessByAWayOfOurs) {
    const int status = LiveWithin(static_cast<rlim_t>(GetParam()), false);
    const int signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    std::printf("%4d MB left: %s\n", GetParam(), signal == 0 ? "lived" : strsignal(signal));
    EXPECT_TRUE(signal == 0 || signal == SIGSEGV) << strsignal(signal);
}

class ShortageAtFirst : public Shortage {};

TEST_P(ShortageAtFirst, NoDeviceIsMadeAndTheProcessLives) {
    EXPECT_EQ(LiveWithin(static_cast<rlim_t>(GetParam()), true), 0);
}

INSTANTIATE_TEST_SUITE_P(Megabytes, ShortageAtFirst, testing::Values(4, 64, 256));

INSTANTIATE_TEST_SUITE_P(Megabytes, Shortage, testing::Values(4, 8, 12, 16, 24, 32, 48, 64, 96, 128, 192, 256));

} // namespace
