#include <clocale>

#include <QApplication>

#include "ModuleFixture.h"

namespace {

class EntryPoint : public ModuleFixture {};

TEST_F(EntryPoint, RefusesANullPlace) {
    EXPECT_EQ(MCalverinScript_Module::GetEntryPoint(nullptr), KXP_NULL_ARGUMENT);
}

TEST_F(EntryPoint, GivesTheSameObjectAgainAndKeepsTheFolderThatItFound) {
    Initialize();
    const char* folder = module->GetScriptsFolder();
    const std::string before = folder;
    EXPECT_NE(before, "");
    IKXPModule* again = nullptr;
    EXPECT_EQ(MCalverinScript_Module::GetEntryPoint(&again), KXP_OK);
    EXPECT_EQ(again, static_cast<IKXPModule*>(module));
    EXPECT_EQ(folder, before);
    host.folders[KXP_FOLDER_SCRIPTS] = PathOf("elsewhere");
    EXPECT_EQ(module->GetScriptsFolder(), before);
}

TEST_F(EntryPoint, GivesAnObjectThatLooksForItsFolderAnewAfterARelease) {
    Initialize();
    const std::string before = module->GetScriptsFolder();
    Renew();
    host.folders[KXP_FOLDER_SCRIPTS] = PathOf("elsewhere");
    Initialize();
    EXPECT_EQ(module->GetScriptsFolder(), PathOf("elsewhere/Script Drivers"));
    EXPECT_NE(module->GetScriptsFolder(), before);
}

TEST_F(EntryPoint, MakesAnApplicationInAHostThatHasNoneAndEndsItWithTheModule) {
    EXPECT_NE(qobject_cast<QApplication*>(QCoreApplication::instance()), nullptr);
    EXPECT_TRUE(QCoreApplication::arguments().isEmpty());
    module->Release();
    EXPECT_EQ(QCoreApplication::instance(), nullptr);
    IKXPModule* made = nullptr;
    ASSERT_EQ(MCalverinScript_Module::GetEntryPoint(&made), KXP_OK);
    module = static_cast<MCalverinScript_Module*>(made);
    EXPECT_NE(QCoreApplication::instance(), nullptr);
}

TEST_F(EntryPoint, LeavesTheApplicationOfItsHostAlone) {
    module->Release();
    int count = 0;
    char* arguments[] = {nullptr};
    {
        const QCoreApplication application(count, arguments);
        IKXPModule* made = nullptr;
        ASSERT_EQ(MCalverinScript_Module::GetEntryPoint(&made), KXP_OK);
        EXPECT_EQ(QCoreApplication::instance(), &application);
        made->Release();
        EXPECT_EQ(QCoreApplication::instance(), &application);
    }
    IKXPModule* made = nullptr;
    ASSERT_EQ(MCalverinScript_Module::GetEntryPoint(&made), KXP_OK);
    module = static_cast<MCalverinScript_Module*>(made);
}

TEST_F(EntryPoint, LeavesTheLocaleOfItsHostAlone) {
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
}

TEST_F(EntryPoint, GivesAnObjectWithTwoFaces) {
    void* out = nullptr;
    EXPECT_EQ(module->QueryInterface("IKXPModule", &out), KXP_OK);
    EXPECT_EQ(out, static_cast<IKXPModule*>(module));
    auto* drivers = QueryFace<IKXPModuleDriverManager>(static_cast<IKXPModule*>(module), "IKXPModuleDriverManager");
    EXPECT_EQ(drivers, static_cast<IKXPModuleDriverManager*>(module));
    EXPECT_EQ(QueryFace<IKXPModule>(drivers, "IKXPModule"), static_cast<IKXPModule*>(module));
}

TEST_F(EntryPoint, GivesAnObjectThatRefusesOtherFaces) {
    for (const char* name : {"", "IMInterface", "IKXPDevice", "ikxpmodule", "IKXPModule "}) {
        void* out = module;
        EXPECT_EQ(module->QueryInterface(name, &out), KXP_NO_INTERFACE) << name;
        EXPECT_EQ(out, nullptr) << name;
    }
    void* out = module;
    EXPECT_EQ(module->QueryInterface(nullptr, &out), KXP_BAD_INTERFACE_ARG);
    EXPECT_EQ(module->QueryInterface("IKXPModule", nullptr), KXP_BAD_INTERFACE_ARG);
}

} // namespace
