#pragma once

#include "MLockedList.h"

/// The live contexts of one kind, so that the end of a device can end them all. Its lock is held for additions,
/// removals and walks only; a context takes itself out before it goes.
template <typename Context>
using ContextRegistry = MLockedList<Context*>;
