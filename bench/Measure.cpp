#include "Measure.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>

#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

std::map<std::string, Measurement>& Measurements() {
    static std::map<std::string, Measurement> measurements;
    return measurements;
}

} // namespace

double Percentile(std::vector<double>& samples, double share) {
    std::sort(samples.begin(), samples.end());
    const auto index = static_cast<std::size_t>(share * static_cast<double>(samples.size() - 1));
    return samples.at(index);
}

double Median(std::vector<double>& samples) {
    return Percentile(samples, 0.5);
}

void PinToOneCore() {
    cpu_set_t cores;
    CPU_ZERO(&cores);
    CPU_SET(0, &cores);
    sched_setaffinity(0, sizeof(cores), &cores);
}

double ResidentKilobytes() {
    std::ifstream statm("/proc/self/statm");
    double total = 0;
    double resident = 0;
    statm >> total >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1024.0;
}

double ProcessorSeconds() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void AddMeasurement(const std::string& name, Measurement measurement) {
    Measurements()[name] = std::move(measurement);
}

int RunMeasurement(const std::string& name) {
    const auto found = Measurements().find(name);
    if (found == Measurements().end())
        return 2;
    for (double number : found->second())
        std::printf("%.9g ", number);
    std::printf("\n");
    std::fflush(stdout);
    _exit(0);
}

std::vector<double> InFreshProcess(const std::string& name) {
    char self[4096] = {};
    if (readlink("/proc/self/exe", self, sizeof(self) - 1) < 0)
        return {};
    FILE* child = popen((std::string(self) + " --measure " + name).c_str(), "r");
    if (child == nullptr)
        return {};
    std::string output;
    char buffer[512];
    while (std::fgets(buffer, sizeof(buffer), child) != nullptr)
        output += buffer;
    pclose(child);
    std::istringstream words(output);
    std::vector<double> numbers;
    for (double number = 0; words >> number;)
        numbers.push_back(number);
    return numbers;
}
