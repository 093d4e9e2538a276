#include "ModuleResources.h"

#include <gtest/gtest.h>

#include <QImage>

namespace {

TEST(ModuleResources, HoldTheNameOfTheDeviceType) {
    EXPECT_EQ(FindModuleResource(ModuleResource::String, kDeviceTypeNameId), QByteArray("Calverin"));
    EXPECT_EQ(kDeviceTypeNameId, 1000u);
}

TEST(ModuleResources, HoldTheMarkOfTheDriverManager) {
    EXPECT_EQ(FindModuleResource(ModuleResource::String, kDriverManagerMarkId), QByteArray("KXP_DRIVER_MANAGER"));
    EXPECT_EQ(kDriverManagerMarkId, 1030u);
}

TEST(ModuleResources, HoldTheTemplateOfTheDefinition) {
    EXPECT_TRUE(FindModuleResource(ModuleResource::RawData, kDefinitionId).startsWith("<?xml"));
    EXPECT_EQ(kDefinitionId, 10000u);
}

TEST(ModuleResources, HoldAnIconOf16By16) {
    const QImage image = QImage::fromData(FindModuleResource(ModuleResource::Bitmap, kDeviceBitmapId));
    EXPECT_EQ(image.size(), QSize(16, 16));
    EXPECT_EQ(kDeviceBitmapId, 5u);
}

TEST(ModuleResources, GiveANullArrayForAnotherKindOrNumber) {
    EXPECT_TRUE(FindModuleResource(ModuleResource::RawData, kDeviceTypeNameId).isNull());
    EXPECT_TRUE(FindModuleResource(ModuleResource::String, 1001).isNull());
    EXPECT_TRUE(FindModuleResource(ModuleResource::Bitmap, 0).isNull());
}

} // namespace
