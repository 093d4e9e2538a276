#include "Interrupt.h"

#include <csignal>

namespace stagehost {

namespace {

volatile std::sig_atomic_t come = 0; // written by the signal handler, read by the main thread
int noting = 0;                      // the objects that stand; host main alone

extern "C" void NoteInterrupt(int number) {
    come = 1;
    std::signal(number, SIG_DFL);
}

} // namespace

Interrupt::Interrupt() {
    if (++noting > 1)
        return;
    std::signal(SIGINT, &NoteInterrupt);
    std::signal(SIGTERM, &NoteInterrupt);
}

Interrupt::~Interrupt() {
    if (--noting > 0)
        return;
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
}

bool Interrupt::HasCome() {
    return come != 0;
}

} // namespace stagehost
