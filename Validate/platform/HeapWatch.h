#pragma once

/// What stands on the heap of this process. It is watched: each block has a mark in front of it and behind it, and what
/// is freed is overwritten. Who frees a block whose marks have gone, or what no block is, ends the process with the
/// report of a crash.
struct HeapFigures {
    long blocks = 0;
    long bytes = 0;
};

/// What stands in memory that was freed, where the heap is watched.
constexpr unsigned char kGoneByte = 0xDB;

/// @return zeros where a sanitizer has the heap.   [any]
HeapFigures MeasureHeap();
