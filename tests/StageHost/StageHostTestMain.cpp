#include <gtest/gtest.h>

#include <QApplication>

#include "MainWait.h"

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const QApplication application(argc, argv);
    const stagehost::MainWait wait;
    return RUN_ALL_TESTS();
}
