#include "DeviceTexts.h"

#include <gtest/gtest.h>

namespace {

/// Hosts and scripts of old shows look for these texts. All other tests read them from the table.
TEST(TextsOfADevice, AreTheseWordForWord) {
    EXPECT_STREQ(DeviceText::kUnreadableFile, "This file cannot be loaded.");
    EXPECT_STREQ(DeviceText::kNoFunctionName, "Script function name missing.");
    EXPECT_STREQ(DeviceText::kUnknownCommand, "Command not found");
    EXPECT_STREQ(DeviceText::kCommandTimeOut, "Command Timeout.");
    EXPECT_STREQ(DeviceText::kAnalysed, "Evaluation Ok");
    EXPECT_EQ(ScriptFailure(QStringLiteral("x")), QStringLiteral("Script: x"));
    EXPECT_EQ(UncaughtAtLine(3, QStringLiteral("Error: x")),
              QStringLiteral("Script: Uncaught exception at line 3, Error: x"));
    EXPECT_EQ(NoSuchFunction(QStringLiteral("Play")), QStringLiteral("Play function is not defined"));
    EXPECT_EQ(FailedMember(QStringLiteral("Play"), QStringLiteral("x")), QStringLiteral("Play: x"));
    EXPECT_EQ(UncaughtForLog(QStringLiteral("3"), QStringLiteral("x")),
              QStringLiteral("Uncaught Exception - line:3, message: x"));
}

} // namespace
