#include "ReportLine.h"

#include <algorithm>

#include <unistd.h>

void WriteReportLine(int descriptor, const char* kind, std::string text) {
    if (descriptor < 0)
        return;
    std::replace(text.begin(), text.end(), '\n', ' ');
    text = std::string(kind) + ": " + text + "\n";
    [[maybe_unused]] const auto written = write(descriptor, text.data(), text.size());
}
