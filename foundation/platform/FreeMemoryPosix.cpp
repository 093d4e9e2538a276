#include "FreeMemory.h"

#include <malloc.h>

void ReturnFreeMemory() {
    malloc_trim(0);
}
