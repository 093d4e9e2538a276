// Two threads write one plain number. The thread sanitizer has
// to say so: a run without a report means that it is blind.
#include <thread>

int main() {
    int shared = 0;
    std::thread first([&shared] {
        for (int i = 0; i < 100000; ++i)
            ++shared;
    });
    for (int i = 0; i < 100000; ++i)
        ++shared;
    first.join();
    return shared == 0 ? 1 : 0;
}
