#pragma once

#include "FewDescriptors.h"

/// While it lives the system refuses to wait on more than one descriptor at once: waits that run go on, new ones fail.
/// Nothing can be opened meanwhile.
class RefusedWaits : FewDescriptors {
public:
    RefusedWaits()
        : FewDescriptors(1) {}
};
