#include <gtest/gtest.h>

#include <QApplication>

#include "OwnNetwork.h"

int main(int argc, char** argv) {
    const int code = RunInOwnNetwork(argv);
    if (code >= 0)
        return code;
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
