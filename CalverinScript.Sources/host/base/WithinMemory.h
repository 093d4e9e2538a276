#pragma once

#include <new>

#include "KXPTypes.h"

/// Runs the work of an operation of the contract. Nothing is thrown across the border: where memory runs out, the
/// operation answers a code instead.   [any]
template <typename Work>
KXPCode WithinMemory(KXPCode shortage, Work work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return shortage;
    }
}
