#pragma once

#include <memory>

#include "MLockedList.h"

/// The live contexts of one kind, so that the end of a device can end them all. Its lock is held for additions,
/// removals and walks only; a context takes itself out before it goes. Contexts share it: a host may give up the last
/// reference to one when the device that asked is long gone.
template <typename Context>
using ContextRegistry = MLockedList<Context*>;
template <typename Context>
using SharedContextRegistry = std::shared_ptr<ContextRegistry<Context>>;
