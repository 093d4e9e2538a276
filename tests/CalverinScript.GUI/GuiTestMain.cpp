#include <QApplication>

#include <gtest/gtest.h>

// Without a screen, unless the environment asks for one. The application stays to the end of the process: the platform
// that draws without a screen never frees what it made for one, which would be taken for a leak of ours.
int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    new QApplication(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
