#include "Clock.h"

#include <chrono>

std::uint32_t MillisecondClock() {
    using namespace std::chrono;
    return static_cast<std::uint32_t>(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}
