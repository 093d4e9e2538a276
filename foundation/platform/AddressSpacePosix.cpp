#include "AddressSpace.h"

#include <sys/mman.h>

bool CanReserveAddressSpace(std::size_t bytes) {
    void* space = mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (space == MAP_FAILED)
        return false;
    munmap(space, bytes);
    return true;
}
