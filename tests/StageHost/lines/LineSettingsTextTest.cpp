#include "LineSettingsText.h"

#include <gtest/gtest.h>

using namespace stagehost;

TEST(LineSettingsTexts, AreReadAsTheyAreUsuallyWritten) {
    SerialSettings settings;
    EXPECT_EQ(ReadLineSettings(QStringLiteral("19200"), settings).toStdString(), "");
    EXPECT_EQ(settings.Get(SerialSetting::BaudRate), 19200U);
    EXPECT_FALSE(settings.Get(SerialSetting::Parity));
    EXPECT_EQ(ReadLineSettings(QStringLiteral("115200,7E2,rts"), settings).toStdString(), "");
    EXPECT_EQ(settings.Get(SerialSetting::DataSize), 7U);
    EXPECT_EQ(settings.Get(SerialSetting::Parity), 2U);
    EXPECT_EQ(settings.Get(SerialSetting::StopBits), 2U);
    EXPECT_EQ(settings.Get(SerialSetting::CtsOutFlow), 1U);
}

TEST(LineSettingsTexts, OthersAreToldWithAnExample) {
    SerialSettings settings;
    for (const char* wrong : {"", "fast", "9600,8x1", "9600,9n1", "0", "9600 8n1"})
        EXPECT_NE(ReadLineSettings(QString::fromLatin1(wrong), settings).toStdString(), "") << wrong;
}
