#include "HeapWatch.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <malloc.h>
#include <unistd.h>

#include "GuardedPages.h"

/// @file
/// The allocation functions of the C library in our place, as its manual allows ("Replacing malloc"): all of the
/// process comes by here, whatever module is loaded. The memory is the library's own.

extern "C" {
void* SystemAllocate(std::size_t bytes) __asm__("__libc_malloc");
void* SystemAllocateCleared(std::size_t count, std::size_t bytes) __asm__("__libc_calloc");
void* SystemAllocateAligned(std::size_t alignment, std::size_t bytes) __asm__("__libc_memalign");
void SystemFree(void* memory) __asm__("__libc_free");
}

namespace {

/// Stands in front of each block.
struct alignas(16) Mark {
    std::size_t bytes;
    std::uint32_t offset; ///< of the block in what the system gave
    std::uint32_t sign;
};

constexpr std::uint32_t kLives = 0x4C495645;
constexpr std::size_t kFence = 16; ///< bytes behind each block
constexpr unsigned char kFenceByte = 0xFD;
constexpr std::size_t kMostGone = 1024; ///< of a block that is freed, so many bytes are overwritten
constexpr std::size_t kMostBytes = PTRDIFF_MAX / 2;

std::atomic<long> g_blocks{0};
std::atomic<long> g_bytes{0};

Mark& MarkOf(void* block) {
    return *(static_cast<Mark*>(block) - 1);
}

void* Adopt(void* raw, std::size_t offset, std::size_t bytes) {
    if (raw == nullptr)
        return nullptr;
    char* const block = static_cast<char*>(raw) + offset;
    MarkOf(block) = {bytes, static_cast<std::uint32_t>(offset), kLives};
    std::memset(block + bytes, kFenceByte, kFence);
    ++g_blocks;
    g_bytes += static_cast<long>(bytes);
    return block;
}

void* Refuse() {
    errno = ENOMEM;
    return nullptr;
}

void* AllocateAligned(std::size_t alignment, std::size_t bytes) {
    const std::size_t offset = std::max(alignment, sizeof(Mark));
    if (bytes > kMostBytes || offset > UINT32_MAX)
        return Refuse();
    return Adopt(SystemAllocateAligned(alignment, offset + bytes + kFence), offset, bytes);
}

const Mark& Checked(void* block) {
    const Mark& mark = MarkOf(block);
    if (mark.sign != kLives)
        EndWithReport("frees what is no block of the heap, was freed before, or has been written over in front");
    const auto* fence = static_cast<const unsigned char*>(block) + mark.bytes;
    if (std::any_of(fence, fence + kFence, [](unsigned char byte) { return byte != kFenceByte; }))
        EndWithReport("has written beyond the end of a block of the heap, which is now freed");
    return mark;
}

} // namespace

HeapFigures MeasureHeap() {
    return {g_blocks, g_bytes};
}

#pragma GCC visibility push(default)
extern "C" {

void* malloc(std::size_t bytes) noexcept {
    if (bytes > kMostBytes)
        return Refuse();
    return Adopt(SystemAllocate(sizeof(Mark) + bytes + kFence), sizeof(Mark), bytes);
}

void free(void* block) noexcept {
    if (block == nullptr)
        return;
    const Mark mark = Checked(block);
    --g_blocks;
    g_bytes -= static_cast<long>(mark.bytes);
    MarkOf(block).sign = 0;
    std::memset(block, kGoneByte, std::min(mark.bytes, kMostGone));
    SystemFree(static_cast<char*>(block) - mark.offset);
}

void* calloc(std::size_t count, std::size_t bytes) noexcept {
    if (bytes != 0 && count > kMostBytes / bytes)
        return Refuse();
    return Adopt(SystemAllocateCleared(1, sizeof(Mark) + count * bytes + kFence), sizeof(Mark), count * bytes);
}

void* realloc(void* block, std::size_t bytes) noexcept {
    if (block == nullptr)
        return malloc(bytes);
    if (bytes == 0) {
        free(block);
        return nullptr;
    }
    void* const larger = malloc(bytes);
    if (larger != nullptr) {
        std::memcpy(larger, block, std::min(bytes, Checked(block).bytes));
        free(block);
    }
    return larger;
}

void* memalign(std::size_t alignment, std::size_t bytes) noexcept {
    return AllocateAligned(alignment, bytes);
}

void* aligned_alloc(std::size_t alignment, std::size_t bytes) noexcept {
    return AllocateAligned(alignment, bytes);
}

int posix_memalign(void** out, std::size_t alignment, std::size_t bytes) noexcept {
    if (alignment % sizeof(void*) != 0 || (alignment & (alignment - 1)) != 0 || alignment == 0)
        return EINVAL;
    void* const block = AllocateAligned(alignment, bytes);
    if (block == nullptr)
        return ENOMEM;
    *out = block;
    return 0;
}

void* valloc(std::size_t bytes) noexcept {
    return AllocateAligned(static_cast<std::size_t>(sysconf(_SC_PAGESIZE)), bytes);
}

std::size_t malloc_usable_size(void* block) noexcept {
    return block != nullptr ? Checked(block).bytes : 0;
}

} // extern "C"
#pragma GCC visibility pop
