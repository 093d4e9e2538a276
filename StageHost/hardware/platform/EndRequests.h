#pragma once

#include <array>

namespace stagehost {

/// The signals by which people and the system ask a program to end: Ctrl-C, the request itself, and a terminal that
/// goes away.   [any]
std::array<int, 3> EndRequests();

/// Has a function hear such a signal from now on; the end of the terminal only unless whoever started the program
/// wanted it ignored, as nohup does. @return whether it will.   [host main]
bool HearEndRequest(int request, void (*hear)(int));

/// Gives a signal back what it does by itself: it ends the program.   [any, signal handlers too]
void LetEndRequestEnd(int request);

/// Something that becomes readable when it is rung, and stays so: a signal by itself wakes nobody who waits for
/// descriptors. Its owner keeps it to the end of the program. @return -1 when the system has none left.   [any]
int MakeBell();
void RingBell(int bell); ///< [any, signal handlers too]

} // namespace stagehost
