#pragma once

#include <array>

namespace stagehost {

/// The signals by which people and the system ask a program to end: Ctrl-C, the request itself, and a terminal that
/// goes away.   [any]
std::array<int, 3> EndRequests();

/// Has a function hear such a signal from now on, unless whoever started the program wanted it ignored.
/// @return whether it will.   [host main]
bool HearEndRequest(int request, void (*hear)(int));

/// Gives a signal back what it does by itself: it ends the program.   [any, signal handlers too]
void LetEndRequestEnd(int request);

} // namespace stagehost
