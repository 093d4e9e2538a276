#include "BuiltFrom.h"

#include "Commit.h"

const char* BuiltFrom() {
    return STAGEHOST_COMMIT;
}
