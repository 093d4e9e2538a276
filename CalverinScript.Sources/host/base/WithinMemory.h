#pragma once

#include "KXPTypes.h"
#include "RunWithinMemory.h"

/// Runs the work of an operation of the contract. Nothing is thrown across the border: where memory runs out, the
/// operation answers a code instead.   [any]
template <typename Work>
KXPCode WithinMemory(KXPCode shortage, Work work) {
    KXPCode code = shortage;
    return RunWithinMemory([&] { code = work(); }) ? code : shortage;
}
