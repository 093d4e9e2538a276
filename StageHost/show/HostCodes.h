#pragma once

#include "KXPTypes.h"

namespace stagehost {

/// Codes of this host beside those of the contract. They reach scripts unchanged.
enum HostCode : KXPCode {
    kNoSuchObject = 64,  ///< the show has no object of that name
    kUnknownFactory = 65 ///< UnregisterFactory: no factory of that name
};

} // namespace stagehost
