#include "Figures.h"

#include <filesystem>

#include <malloc.h>

#include "Measure.h"

namespace {

double EntriesOf(const char* folder) {
    double count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        static_cast<void>(entry);
        ++count;
    }
    return count;
}

} // namespace

Footprint Footprint::Now() {
    constexpr double kMegabyte = 1024.0 * 1024.0;
    const auto heap = mallinfo2();
    return {ResidentKilobytes() / 1024.0, static_cast<double>(heap.uordblks + heap.hblkhd) / kMegabyte,
            EntriesOf("/proc/self/task"), EntriesOf("/proc/self/fd") - 1}; // the one through which it is read
}

void Slope::Add(double x, double y) {
    ++m_count;
    m_x += x;
    m_y += y;
    m_xx += x * x;
    m_xy += x * y;
}

double Slope::PerX() const {
    const double spread = m_count * m_xx - m_x * m_x;
    return spread > 0 ? (m_count * m_xy - m_x * m_y) / spread : 0;
}
