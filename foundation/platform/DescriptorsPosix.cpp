#include "Descriptors.h"

#include <vector>

#include <fcntl.h>
#include <unistd.h>

bool CanOpenDescriptors(int count) {
    std::vector<int> opened;
    bool all = true;
    for (int i = 0; i < count && all; ++i) {
        const int descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
        all = descriptor >= 0;
        if (all)
            opened.push_back(descriptor);
    }
    for (const int descriptor : opened)
        close(descriptor);
    return all;
}
