#include <filesystem>

#include <QImage>

#include "ForeignDevice.h"
#include "ModuleFixture.h"

namespace {

class ModuleDrivers : public ModuleFixture {
protected:
    void SetUp() override {
        ModuleFixture::SetUp();
        host.folders[KXP_FOLDER_SCRIPTS] = PathOf("scripts");
        Initialize();
    }
    std::string DriverList() {
        EXPECT_EQ(module->GetDriverList(&list, &size), KXP_OK);
        EXPECT_NE(list, nullptr);
        EXPECT_EQ(std::string(list).size(), size);
        return list;
    }

    char* list = nullptr;
    std::uint32_t size = 99;
};

TEST_F(ModuleDrivers, AreNamedWithTheirExtensionAndSemicolonsBetween) {
    for (const char* name : {"b.js", "A.js", "c.js.txt", "d.txt", "js", "E.JS"})
        Write(std::string("scripts/Script Drivers/") + name, "");
    EXPECT_EQ(DriverList(), "A.js;b.js;E.JS");
}

TEST_F(ModuleDrivers, OfAnEmptyLibraryAreTheEmptyTextOfSizeZero) {
    std::filesystem::create_directories(PathOf("scripts/Script Drivers"));
    EXPECT_EQ(DriverList(), "");
    EXPECT_EQ(size, 0u);
}

TEST_F(ModuleDrivers, OfALibraryThatDoesNotExistAreTheEmptyText) {
    EXPECT_EQ(DriverList(), "");
    EXPECT_EQ(size, 0u);
}

TEST_F(ModuleDrivers, AreListedAnewAtEachCall) {
    Write("scripts/Script Drivers/one.js", "");
    EXPECT_EQ(DriverList(), "one.js");
    Write("scripts/Script Drivers/two.js", "");
    EXPECT_EQ(DriverList(), "one.js;two.js");
}

TEST_F(ModuleDrivers, AreNotWrittenWhenAPlaceIsNull) {
    EXPECT_EQ(module->GetDriverList(nullptr, &size), KXP_OK);
    EXPECT_EQ(size, 99u);
    EXPECT_EQ(module->GetDriverList(&list, nullptr), KXP_OK);
    EXPECT_EQ(list, nullptr);
}

TEST_F(ModuleDrivers, HaveNamesInTheHosts8BitText) {
    Write("scripts/Script Drivers/caf\xC3\xA9.js", "");
    Write("scripts/Script Drivers/\xE2\x82\xAC.js", "");
    EXPECT_EQ(DriverList(), "caf\xE9.js;?.js");
}

TEST_F(ModuleDrivers, LieInFoldersWithNamesInTheHosts8BitText) {
    host.folders[KXP_FOLDER_SCRIPTS] = PathOf("f\xE9");
    Write("f\xC3\xA9/Script Drivers/lamp.js", "");
    EXPECT_EQ(DriverList(), "lamp.js");
}

TEST_F(ModuleDrivers, AreNotSetUpWithoutADeviceOrAThirdValue) {
    ForeignDevice foreign;
    EXPECT_EQ(module->ShowDriverSetup("a.js", nullptr, &host), KXP_NULL_ARGUMENT);
    EXPECT_EQ(module->ShowDriverSetup("a.js", &foreign, nullptr), KXP_NULL_ARGUMENT);
    EXPECT_EQ(module->ShowDriverSetup(nullptr, nullptr, nullptr), KXP_NULL_ARGUMENT);
}

TEST_F(ModuleDrivers, AreNotSetUpOnAForeignDevice) {
    ForeignDevice foreign;
    EXPECT_EQ(module->ShowDriverSetup("a.js", &foreign, &host), KXP_CANCELLED);
}

TEST_F(ModuleDrivers, HaveAnIconThatIsLoadedOnce) {
    KXPBitmap bitmap = module->GetDriverBitmap();
    ASSERT_NE(bitmap, nullptr);
    EXPECT_EQ(static_cast<QImage*>(bitmap)->size(), QSize(16, 16));
    EXPECT_EQ(module->GetDriverBitmap(), bitmap);
    IKXPDevice* device = MakeDevice();
    EXPECT_NE(device->GetBitmap(), nullptr);
    EXPECT_NE(device->GetBitmap(), bitmap) << "a device has an icon of its own";
    device->Release();
}

TEST_F(ModuleDrivers, LieInTheFallbackFolderOfAHostWithoutFolders) {
    host.offerFolders = false;
    EXPECT_EQ(module->GetScriptsFolder(), PathOf("home/Documents/Calverin/Scripts"));
}

TEST_F(ModuleDrivers, LieInTheOldFolderOfAHostWithoutAScriptsFolder) {
    host.folders = {{KXP_FOLDER_PROGRAM_DATA, PathOf("data")}};
    EXPECT_EQ(module->GetScriptsFolder(), PathOf("data/Script Drivers"));
}

TEST_F(ModuleDrivers, LieInAFolderThatIsCutAtThePathSize) {
    host.folders[KXP_FOLDER_SCRIPTS] = "/" + std::string(2000, 'x');
    EXPECT_EQ(std::string(module->GetScriptsFolder()), "/" + std::string(1022, 'x'));
    EXPECT_EQ(DriverList(), "");
}

} // namespace
