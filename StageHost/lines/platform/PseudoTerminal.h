#pragma once

#include <string>

namespace stagehost {

/// @file
/// Pseudo-terminals: a serial port of the system with a program of ours where its cable would lead. Bytes pass as they
/// are. Descriptors never block, are -1 for none, and belong to the caller.   [any]

/// @param name of the port that others open. @return the descriptor of our end.
int OpenPseudoTerminal(std::string& name, std::string& problem);

/// Whether a program has the port open.
bool IsOpenByOthers(int ours);

/// Throws away what the port still holds for its next program.
void DropUnread(int ours);

/// A descriptor that becomes readable when somebody opens or closes that port; ForgetOpens makes it wait for the next.
int WatchOpens(const std::string& name, std::string& problem);
void ForgetOpens(int watch);

} // namespace stagehost
