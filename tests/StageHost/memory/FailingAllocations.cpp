#include "FailingAllocations.h"

#include <cstdlib>
#include <new>

namespace {

constexpr int kAll = -1;
thread_local int granted = kAll; ///< how many are still made; kAll: without an end
thread_local bool hasStruck = false;

} // namespace

FailingAllocations::FailingAllocations(int before) {
    hasStruck = false;
    granted = before;
}

FailingAllocations::~FailingAllocations() {
    granted = kAll;
}

bool FailingAllocations::HasStruck() const {
    return hasStruck;
}

void* operator new(std::size_t size) {
    if (granted == 0) {
        hasStruck = true;
        throw std::bad_alloc();
    }
    if (granted > 0)
        --granted;
    if (void* block = std::malloc(size == 0 ? 1 : size))
        return block;
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
