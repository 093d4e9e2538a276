#include "Interrupt.h"

#include <csignal>
#include <tuple>

#include "EndRequests.h"

namespace stagehost {

namespace {

volatile std::sig_atomic_t come = 0;           // written by the signal handler, read by the main thread
volatile std::sig_atomic_t interruptBell = -1; // written by the main thread, once; read by the signal handler
int noting = 0;                                // the objects that stand; host main alone

/// The numbers of those that are heard, 0 for the others. Written by the main thread while none is heard.
volatile std::sig_atomic_t heard[std::tuple_size<decltype(EndRequests())>::value] = {};

void StopHearing() {
    for (const auto& number : heard) {
        if (number != 0)
            LetEndRequestEnd(number);
    }
}

/// The first of any kind is noted, so that the second of any kind ends the program.
extern "C" void NoteInterrupt(int /*number*/) {
    come = 1;
    if (interruptBell >= 0)
        RingBell(interruptBell);
    StopHearing();
}

} // namespace

Interrupt::Interrupt() {
    if (++noting > 1)
        return;
    const auto requests = EndRequests();
    for (std::size_t i = 0; i < requests.size(); ++i) {
        heard[i] = requests[i]; // one may come at once
        if (!HearEndRequest(requests[i], &NoteInterrupt))
            heard[i] = 0;
    }
    if (HasCome())
        StopHearing();
}

Interrupt::~Interrupt() {
    if (--noting == 0)
        StopHearing();
}

bool Interrupt::HasCome() {
    return come != 0;
}

int Interrupt::Bell() {
    if (interruptBell < 0)
        interruptBell = MakeBell();
    if (interruptBell >= 0 && HasCome())
        RingBell(interruptBell);
    return interruptBell;
}

} // namespace stagehost
