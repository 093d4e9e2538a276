#include <gtest/gtest.h>

#include "OwnNetwork.h"

int main(int argc, char** argv) {
    const int code = RunInOwnNetwork(argv);
    if (code >= 0)
        return code;
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
