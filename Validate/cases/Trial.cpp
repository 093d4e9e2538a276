#include "Trial.h"

#include <algorithm>

#include "ReportLine.h"

int Trial::Times(int atTen, int atLeast) const {
    const int halvings = 2 * (10 - m_level);
    return std::max(atTen >> std::min(halvings, 30), atLeast);
}

void Trial::Step(const std::string& what) const {
    WriteReportLine(m_descriptor, "step", what);
}

void Trial::Note(const std::string& what) const {
    WriteReportLine(m_descriptor, "note", what);
}
