#include "HostileRounds.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include <malloc.h>
#include <unistd.h>

int HostileRounds() {
    constexpr int kFew = 3;
    const char* wanted = std::getenv("CALVERIN_HOSTILE");
    return wanted != nullptr ? std::max(1, std::atoi(wanted)) : kFew;
}

Bystander::Memory Bystander::Memory::Now() {
    constexpr double kMegabyte = 1024.0 * 1024.0;
    std::ifstream statm("/proc/self/statm");
    double size = 0;
    double resident = 0;
    statm >> size >> resident;
    const auto heap = mallinfo2();
    return {resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / kMegabyte,
            static_cast<double>(heap.uordblks + heap.hblkhd) / kMegabyte};
}

double Bystander::Milliseconds() {
    using namespace std::chrono;
    return duration<double, std::milli>(steady_clock::now().time_since_epoch()).count();
}

Bystander::~Bystander() {
    End();
}

void Bystander::End() {
    m_ends = true;
    if (m_thread.joinable())
        m_thread.join();
}

std::size_t Bystander::Tell(const std::string& what) {
    End();
    std::sort(m_took.begin(), m_took.end());
    const auto share = [this](double part) {
        return m_took.empty() ? 0 : m_took[static_cast<std::size_t>(part * static_cast<double>(m_took.size() - 1))];
    };
    const Memory now = Memory::Now();
    std::printf("%s: others p50 %.2f ms, p99 %.2f ms, longest %.1f ms (of %zu); resident %.1f to %.1f MB, heap %.1f to "
                "%.1f MB\n",
                what.c_str(), share(0.5), share(0.99), share(1), m_took.size(), m_before.residentMegabytes,
                now.residentMegabytes, m_before.heapMegabytes, now.heapMegabytes);
    return m_failures;
}
