#include "Rest.h"

#include <chrono>
#include <thread>

#include "Trial.h"

FiguresAtRest MeasureAtRest() {
    constexpr int kLooksAlike = 8;
    constexpr std::chrono::milliseconds kLook(4);
    const auto end = std::chrono::steady_clock::now() + kTrialWait;
    FiguresAtRest figures{MeasureProcess(), MeasureHeap()};
    for (int alike = 0; alike < kLooksAlike && std::chrono::steady_clock::now() < end; ++alike) {
        std::this_thread::sleep_for(kLook);
        const FiguresAtRest now{MeasureProcess(), MeasureHeap()};
        if (now.process.threads != figures.process.threads || now.process.descriptors != figures.process.descriptors)
            alike = 0;
        figures = now;
    }
    return figures;
}
