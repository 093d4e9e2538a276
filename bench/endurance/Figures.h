#pragma once

#include <cstdint>

/// What this process takes from the system.
struct Footprint {
    double residentMegabytes = 0;
    double heapMegabytes = 0; ///< in use, of all arenas
    double threads = 0;
    double descriptors = 0;
    static Footprint Now();
};

/// A straight line through samples, by least squares. Keeps sums alone, so that it takes no memory itself.
class Slope {
public:
    void Add(double x, double y);
    /// How much y grows for each x; 0 for less than two samples.
    double PerX() const;

private:
    double m_count = 0;
    double m_x = 0;
    double m_y = 0;
    double m_xx = 0;
    double m_xy = 0;
};
