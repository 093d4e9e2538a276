#include "IObjectFactory.h"
#include "IPropertySelector.h"
#include "ModuleFile.h"
#include "ModuleFixture.h"
#include "ModuleResources.h"

namespace {

class ModuleHost : public ModuleFixture {
protected:
    struct Version {
        std::int32_t major = 0, minor = 0, build = 0;
        bool operator==(const Version& o) const { return major == o.major && minor == o.minor && build == o.build; }
    };
    Version HostVersion() const {
        Version version;
        EXPECT_TRUE(module->GetHostVersion(&version.major, &version.minor, &version.build));
        return version;
    }
};

TEST_F(ModuleHost, AlwaysInitializesWithZero) {
    EXPECT_EQ(module->Initialize(nullptr, nullptr, nullptr), KXP_OK);
    host.offerRuntimeInfo = host.offerFactories = host.offerFolders = false;
    EXPECT_EQ(module->Initialize(host.Root(), &host, &host), KXP_OK);
    EXPECT_EQ(module->GetHost(), host.Root());
}

TEST_F(ModuleHost, RegistersItsThreeSelectors) {
    Initialize();
    ASSERT_EQ(host.factories.size(), 3u);
    for (const char* name : {"IScriptSelector", "IScriptTextSelector", "IFunctionSelector"}) {
        IObjectFactory* factory = host.factories[name];
        ASSERT_NE(factory, nullptr) << name;
        EXPECT_EQ(QueryFace<IObjectFactory>(factory, "IObjectFactory"), factory) << name;
        IMInterface* selector = factory->CreateObject(name);
        EXPECT_NE(QueryFace<IPropertySelector>(selector, "IPropertySelector"), nullptr) << name;
        ASSERT_NE(selector, nullptr) << name;
        EXPECT_EQ(selector->Release(), KXP_OK);
    }
}

TEST_F(ModuleHost, UnregistersTwoSelectorsAndLeavesTheTextSelectorAsIsMeant) {
    Initialize();
    EXPECT_EQ(module->Terminate(nullptr), KXP_OK);
    ASSERT_EQ(host.factories.size(), 1u);
    EXPECT_EQ(host.factories.begin()->first, "IScriptTextSelector");
}

TEST_F(ModuleHost, TerminatesBeforeItsInitializationAndTwice) {
    EXPECT_EQ(module->Terminate(nullptr), KXP_OK);
    Initialize();
    EXPECT_EQ(module->Terminate(&host), KXP_OK);
    EXPECT_EQ(module->Terminate(&host), KXP_OK);
}

TEST_F(ModuleHost, TerminatesWhenTheFactoriesAreGone) {
    Initialize();
    host.offerFactories = false;
    EXPECT_EQ(module->Terminate(nullptr), KXP_OK);
    EXPECT_EQ(host.factories.size(), 3u);
}

struct VersionCase {
    const char* text;
    std::int32_t major, minor, build;
    bool atLeast642, atLeast643;
};

constexpr VersionCase kVersions[] = {
    {"6.7.2", 6, 7, 2, true, false},
    {"6.7.3", 6, 7, 3, true, true},
    {"6.4.2", 6, 4, 2, true, false},
    {"6.4.3", 6, 4, 3, true, true},
    {"6.4.1", 6, 4, 1, false, false},
    {"6.3.9", 6, 3, 9, false, false},
    {"5.9.9", 5, 9, 9, false, false},
    {"7.0.0", 7, 0, 0, false, false},
    {"7.4.3", 7, 4, 3, true, true},
    {"10.11.12", 10, 11, 12, true, true},
    {"6.7", 6, 7, -1, false, false},
    {"6", 6, -1, -1, false, false},
    {"", -1, -1, -1, false, false},
    {"6.7.2.1", 6, 7, 2, true, false},
    {"6.7.2 beta", 6, 7, 2, true, false},
    {"x.y.z", 0, 0, 0, false, false},
    {"1234567890.1.2.3.4.5.6.7.8.9.0.1", 1234567890, 1, 2, false, false},
};

TEST_F(ModuleHost, ReadsTheFirstThreeNumbersOfTheVersionAndTestsEachByItself) {
    for (const VersionCase& row : kVersions) {
        Renew();
        host.version = row.text;
        Initialize();
        EXPECT_EQ(HostVersion(), (Version{row.major, row.minor, row.build})) << row.text;
        EXPECT_EQ(module->IsHostAtLeast642(), row.atLeast642) << row.text;
        EXPECT_EQ(module->IsHostAtLeast643(), row.atLeast643) << row.text;
    }
}

TEST_F(ModuleHost, KeepsTheVersionThatItReadFirst) {
    host.version = "6.7";
    Initialize();
    host.version = "9.9.9";
    Initialize();
    EXPECT_EQ(HostVersion(), (Version{6, 7, 9}));
}

TEST_F(ModuleHost, HasNoVersionBeforeItsInitializationAndFromAHostThatTellsNone) {
    EXPECT_EQ(HostVersion(), (Version{-1, -1, -1}));
    host.runtimeInfoResult = 0;
    host.appName = "hostq";
    Initialize();
    EXPECT_EQ(HostVersion(), (Version{-1, -1, -1}));
    EXPECT_TRUE(module->IsDebuggerAllowed());
    host.offerRuntimeInfo = false;
    Initialize();
    EXPECT_EQ(HostVersion(), (Version{-1, -1, -1}));
    EXPECT_FALSE(module->IsHostAtLeast642());
    EXPECT_FALSE(module->IsHostAtLeast643());
}

TEST_F(ModuleHost, GivesNoVersionIntoANullPlace) {
    std::int32_t number = 5;
    EXPECT_FALSE(module->GetHostVersion(nullptr, &number, &number));
    EXPECT_FALSE(module->GetHostVersion(&number, nullptr, &number));
    EXPECT_FALSE(module->GetHostVersion(&number, &number, nullptr));
    EXPECT_EQ(number, 5);
}

TEST_F(ModuleHost, AllowsTheDebuggerUnlessTheHostIsTheRunTimeProgram) {
    const std::pair<const char*, bool> kNames[] = {
        {"hostq", false}, {"hostq.exe", false}, {"hostqueue", false}, {"hostqxxxxxxxxxxxxxxxxxxxxxxxxxxxx", false},
        {"host", true},   {"", true},           {"Hostq", true},      {"HOSTQ", true},
        {"xhostq", true}, {" hostq", true},     {"host q", true},     {"plainhost", true},
    };
    for (const auto& [name, allowed] : kNames) {
        Renew();
        host.appName = name;
        Initialize();
        EXPECT_EQ(module->IsDebuggerAllowed(), allowed) << name;
    }
}

TEST_F(ModuleHost, GivesItsDefinitionFromTheResource) {
    const char* definition = module->GetDefinition();
    ASSERT_NE(definition, nullptr);
    EXPECT_EQ(definition, FindModuleResource(ModuleResource::RawData, kDefinitionId).toStdString());
    const std::string text = definition;
    EXPECT_EQ(module->GetDefinitionTemplate(), text);
    EXPECT_EQ(module->GetDefinition(), text);
}

TEST_F(ModuleHost, GivesItsVersionAndIgnoresANullPlace) {
    std::uint32_t version = 0;
    EXPECT_EQ(module->GetModuleVersion(&version), KXP_OK);
    EXPECT_EQ(version, 999u);
    EXPECT_EQ(module->GetModuleVersion(nullptr), KXP_OK);
    EXPECT_EQ(module->GetDeviceCount(nullptr), KXP_OK);
}

TEST_F(ModuleHost, HasItsConfigurationFileBesideItself) {
    char path[1024];
    module->GetConfigFilePath(path);
    const std::string file = ExecutableFile();
    const std::size_t point = file.rfind('.');
    EXPECT_EQ(path, point == std::string::npos ? "kxpCalverinScript.cfg" : file.substr(0, point) + ".cfg");
}

} // namespace
