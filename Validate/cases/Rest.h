#pragma once

#include "CaseProcess.h"
#include "HeapWatch.h"

/// What a process has at rest.
struct FiguresAtRest {
    ProcessFigures process;
    HeapFigures heap;
};

/// The system lists a thread for a moment longer than its end can be waited for: looks until nothing changes for a
/// while.
FiguresAtRest MeasureAtRest();
