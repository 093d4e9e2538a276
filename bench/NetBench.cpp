#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCoreApplication>

#include "Measure.h"
#include "NetBenchServers.h"

// Datagrams and streams into a script and back, beside Node and plain system calls doing the same. ./net_bench [ROUNDS]
// The measuring end has core 0, what is measured core 1. Needs `node` (Debian's nodejs); says so where it is missing.

namespace {

constexpr int kDatagrams = 100000;
constexpr int kWindow = 100; ///< datagrams sent before the count is asked for, so that none is dropped
constexpr int kTrips = 5000;
constexpr std::uint64_t kBulk = 256U << 20U;

using Clock = std::chrono::steady_clock;

double Since(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

struct Numbers {
    double perSecond = 0;        ///< datagrams, or megabytes, a second
    double microsecondsEach = 0; ///< processor time for each
    double roundTrip = 0;        ///< median in microseconds
    double microsecondsTrip = 0; ///< processor time for each round trip
};

double MedianTrip(int descriptor) {
    std::vector<double> trips;
    std::array<char, 64> block{};
    for (int i = 0; i < kTrips; ++i) {
        const Clock::time_point begin = Clock::now();
        send(descriptor, block.data(), 8, 0);
        if (recv(descriptor, block.data(), block.size(), 0) != 8)
            return 0;
        trips.push_back(Since(begin) * 1e6);
    }
    return Median(trips);
}

/// Sends in windows, each ended by a question for the count. @return how many were counted.
long Flood(int descriptor) {
    std::array<char, 64> block{};
    long counted = 0;
    for (int sent = 0; sent < kDatagrams; sent += kWindow) {
        for (int i = 0; i < kWindow; ++i)
            send(descriptor, block.data(), block.size(), 0);
        send(descriptor, "?", 1, 0);
        const ssize_t got = recv(descriptor, block.data(), block.size() - 1, 0);
        if (got <= 0)
            return counted;
        counted += std::atol(std::string(block.data(), static_cast<std::size_t>(got)).c_str());
    }
    return counted;
}

void MeasureTrips(const Subject& subject, int descriptor, Numbers& numbers) {
    const double used = subject.Seconds();
    numbers.roundTrip = MedianTrip(descriptor);
    numbers.microsecondsTrip = (subject.Seconds() - used) * 1e6 / kTrips;
}

Numbers MeasureUdp(const std::vector<std::string>& command) {
    const Subject subject(command);
    const sockaddr_in target = Loopback(subject.ReadPort());
    const int descriptor = socket(AF_INET, SOCK_DGRAM, 0);
    const timeval limit{5, 0};
    setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    Numbers numbers;
    if (target.sin_port != 0 && connect(descriptor, reinterpret_cast<const sockaddr*>(&target), sizeof target) == 0) {
        MeasureTrips(subject, descriptor, numbers);
        const double used = subject.Seconds();
        const Clock::time_point begin = Clock::now();
        const auto counted = static_cast<double>(Flood(descriptor));
        numbers.perSecond = counted / Since(begin);
        numbers.microsecondsEach = (subject.Seconds() - used) * 1e6 / std::max(counted, 1.0);
    }
    close(descriptor);
    return numbers;
}

Numbers MeasureTcp(const std::vector<std::string>& program) {
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = Loopback(0);
    socklen_t size = sizeof address;
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0)
        return {};
    getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
    listen(listener, 1);
    std::vector<std::string> command = program;
    command.push_back(std::to_string(ntohs(address.sin_port)));
    command.push_back(std::to_string(kBulk));
    const Subject subject(command);
    Numbers numbers;
    pollfd entry{listener, POLLIN, 0};
    if (poll(&entry, 1, 10000) == 1) {
        const int client = accept(listener, nullptr, nullptr);
        const int on = 1;
        setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        MeasureTrips(subject, client, numbers);
        const std::vector<char> block(65536);
        const double used = subject.Seconds();
        const Clock::time_point begin = Clock::now();
        for (std::uint64_t sent = 0; sent < kBulk;)
            sent += static_cast<std::uint64_t>(std::max<ssize_t>(0, send(client, block.data(), block.size(), 0)));
        char done = 0;
        recv(client, &done, 1, 0);
        const double megabytes = static_cast<double>(kBulk) / 1e6;
        numbers.perSecond = megabytes / Since(begin);
        numbers.microsecondsEach = (subject.Seconds() - used) * 1e6 / megabytes;
        close(client);
    }
    close(listener);
    return numbers;
}

struct Series {
    std::vector<double> perSecond, microsecondsEach, roundTrip, microsecondsTrip;
    void Add(const Numbers& n) {
        perSecond.push_back(n.perSecond);
        microsecondsEach.push_back(n.microsecondsEach);
        roundTrip.push_back(n.roundTrip);
        microsecondsTrip.push_back(n.microsecondsTrip);
    }
    void Print(const char* name, const char* unit) {
        std::printf("%-15s %10.0f %s/s  %8.2f us/%s  round trip %7.1f us, processor %.1f us\n", name, Median(perSecond),
                    unit, Median(microsecondsEach), unit, Median(roundTrip), Median(microsecondsTrip));
    }
};

using Measure = Numbers (*)(const std::vector<std::string>&);

void Compare(const std::string& kind, const char* unit, Measure measure, int rounds) {
    Series device, node, script, bare;
    const std::string self = "/proc/self/exe";
    for (int i = 0; i < rounds; ++i) {
        device.Add(measure({self, "--subject", "device-" + kind}));
        node.Add(measure({"node", NET_BENCH_NODE, kind}));
        if (kind == "udp")
            script.Add(measure({self, "--subject", "script-udp"}));
        bare.Add(measure({self, "--subject", "bare-" + kind}));
    }
    device.Print((kind + " device").c_str(), unit);
    node.Print((kind + " node").c_str(), unit);
    if (kind == "udp")
        script.Print("udp bare script", unit);
    bare.Print((kind + " bare").c_str(), unit);
    std::printf("%s device / node: rate %.2f, processor time %.2f, round trip %.2f (processor %.2f)\n\n", kind.c_str(),
                Median(device.perSecond) / Median(node.perSecond),
                Median(device.microsecondsEach) / Median(node.microsecondsEach),
                Median(device.roundTrip) / Median(node.roundTrip),
                Median(device.microsecondsTrip) / Median(node.microsecondsTrip));
}

/// Asks again when the system had no room for the question.
double AskForCount(int descriptor) {
    std::array<char, 64> answer{};
    for (int i = 0; i < 3; ++i) {
        send(descriptor, "?", 1, 0);
        if (recv(descriptor, answer.data(), answer.size() - 1, 0) > 0)
            return std::atof(answer.data());
    }
    return 0;
}

/// A script that stands still for 3 s while datagrams come in: what waits for it, and what is left of that afterwards.
void ShowQueueMemory() {
    constexpr int kRounds = 3;
    const Subject subject({"/proc/self/exe", "--subject", "device-udp"});
    const sockaddr_in target = Loopback(subject.ReadPort());
    const int descriptor = socket(AF_INET, SOCK_DGRAM, 0);
    if (target.sin_port == 0 || connect(descriptor, reinterpret_cast<const sockaddr*>(&target), sizeof target) != 0)
        return;
    const timeval limit{10, 0};
    setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    for (int round = 0; round < kRounds; ++round) {
        std::array<char, 64> block{};
        const double before = subject.ResidentMegabytes();
        send(descriptor, "bb", 2, 0);
        int sent = 0;
        for (const Clock::time_point begin = Clock::now(); Since(begin) < 2.0; ++sent)
            send(descriptor, block.data(), block.size(), 0);
        const double peak = subject.ResidentMegabytes();
        const double counted = AskForCount(descriptor);
        std::printf("flood of %d: %.0f reached the script; resident %.1f MB before, %.1f MB waiting, %.1f MB after"
                    " (%.0f bytes each)\n",
                    sent, counted, before, peak, subject.ResidentMegabytes(),
                    (peak - before) * 1e6 / std::max(counted, 1.0));
    }
    close(descriptor);
}

void PinToCore(int number) {
    cpu_set_t core;
    CPU_ZERO(&core);
    CPU_SET(number, &core);
    sched_setaffinity(0, sizeof core, &core);
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 2 && std::strcmp(argv[1], "--subject") == 0) {
        const QCoreApplication application(argc, argv);
        return RunSubject(argv[2], static_cast<std::uint16_t>(argc > 3 ? std::atoi(argv[3]) : 0),
                          argc > 4 ? std::strtoull(argv[4], nullptr, 10) : 0);
    }
    if (std::system("node --version >/dev/null 2>&1") != 0) {
        std::puts("node is missing: install Debian's package nodejs to compare with it");
        return 2;
    }
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    PinToCore(0);
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 7;
    ShowQueueMemory();
    Compare("udp", "datagram", &MeasureUdp, rounds);
    Compare("tcp", "MB", &MeasureTcp, rounds);
    return 0;
}
