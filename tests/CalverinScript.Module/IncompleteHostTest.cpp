#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "FakeRemotes.h"
#include "LoadedModule.h"
#include "PlainHost.h"

namespace {

using namespace plain;

/// A host that offers everything, from which a test takes away.
struct CompleteHost {
    CompleteHost() {
        host.offerRemoteManager = true;
        host.offerRemoteManager2 = true;
        host.remote = &older;
        host.remote2 = &newer;
        host.variableManager = &variableManager;
        host.nameTools = &nameTools;
        host.folders[KXP_FOLDER_SCRIPTS] = "/nonexistent/scripts";
    }

    class NoVariables : public IVariableManager {
    public:
        virtual ~NoVariables() = default;
        KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
        KXPCode Release() override { return KXP_OK; }
        KXPCode Reserved1(void*) override { return KXP_OK; }
        IData* FindVariable(const char*) override { return nullptr; }
    };
    class AnyName : public IObjectNameTools {
    public:
        virtual ~AnyName() = default;
        KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
        KXPCode Release() override { return KXP_OK; }
        KXPCode Reserved1(void*) override { return KXP_OK; }
        KXPCode Reserved2(void*) override { return KXP_OK; }
        KXPCode Reserved3(void*) override { return KXP_OK; }
        KXPCode Reserved4(void*) override { return KXP_OK; }
        std::uint32_t IsValidName(const char*) override { return 1; }
    };

    Host host;
    FakeRemote older;
    FakeRemote2 newer;
    NoVariables variableManager;
    AnyName nameTools;
};

const std::vector<std::string> kServices = {"IManagerRemoteManager", "IManagerRemoteManager2", "IFolderManager",
                                            "IVariableManager",      "IObjectNameTools",       "IManagerRuntimeInfo",
                                            "IObjectFactoryManager"};

void TakeAway(CompleteHost& complete, const std::string& service) {
    Host& host = complete.host;
    host.offerRemoteManager &= service != "IManagerRemoteManager";
    host.offerRemoteManager2 &= service != "IManagerRemoteManager2";
    host.offerFolders &= service != "IFolderManager";
    host.offerRuntimeInfo &= service != "IManagerRuntimeInfo";
    host.offerFactories &= service != "IObjectFactoryManager";
    if (service == "IVariableManager")
        host.variableManager = nullptr;
    if (service == "IObjectNameTools")
        host.nameTools = nullptr;
}

/// Loads the module, runs a script's function on a device and ends everything.
void RunAShow(IMInterface* root, IDeviceVariables* variables, const char* what) {
    const LoadedModule loaded;
    ASSERT_NE(loaded.module, nullptr) << what;
    IKXPModule* module = loaded.module;
    EXPECT_EQ(module->Initialize(root, nullptr, nullptr), KXP_OK) << what;
    EXPECT_NE(module->GetDefinition(), nullptr) << what;
    int deviceHost = 0;
    module->SetDeviceHost(&deviceHost);
    auto* drivers = QueryFace<IKXPModuleDriverManager>(module, "IKXPModuleDriverManager");
    ASSERT_NE(drivers, nullptr) << what;
    char* list = nullptr;
    std::uint32_t size = 99;
    EXPECT_EQ(drivers->GetDriverList(&list, &size), KXP_OK) << what;
    EXPECT_NE(list, nullptr) << what;
    IKXPDevice* device = nullptr;
    ASSERT_EQ(module->CreateDevice(nullptr, &device), KXP_OK) << what;
    device->SetDeviceVariables(variables);
    device->SetName("Desk");
    EXPECT_NE(device->GetDefinition(), nullptr) << what;
    EXPECT_EQ(device->Start(), KXP_OK) << what;
    Params load({"({ Twice: function(a) { return 2 * a; } })"});
    EXPECT_EQ(device->ExecuteCommand(1, &load, nullptr), KXP_OK) << what;
    auto call = Params::ForFunction("Twice", {"21"});
    Context context;
    // The function is known once the load is over, which a host without variables can only find out by asking again.
    KXPCode code = KXP_SCRIPT_FAILED;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kDeadlineMs);
    while (code == KXP_SCRIPT_FAILED && std::chrono::steady_clock::now() < deadline)
        code = device->ExecuteCommand(3, call.get(), &context);
    EXPECT_EQ(code, KXP_OK) << what;
    EXPECT_TRUE(context.WaitForEnd()) << what;
    EXPECT_EQ(context.Begun(), 1) << what;
    EXPECT_EQ(context.Ended(), 1) << what;
    EXPECT_EQ(call->At(1).Text(), "42") << what;
    EXPECT_EQ(device->Stop(), KXP_OK) << what;
    EXPECT_EQ(device->Release(), KXP_OK) << what;
    EXPECT_EQ(module->Terminate(nullptr), KXP_OK) << what;
    EXPECT_EQ(module->Release(), KXP_OK) << what;
    EXPECT_EQ(Value::OutstandingTexts(), 0) << what;
}

TEST(IncompleteHost, OfNothingMissingRegistersTheRootGroupOnTheNewerLink) {
    CompleteHost complete;
    Variables variables;
    RunAShow(complete.host.Root(), &variables, "complete");
    EXPECT_EQ(complete.newer.handler == nullptr, false);
    EXPECT_EQ(std::count(complete.newer.calls.begin(), complete.newer.calls.end(), "RegisterGroup|GrantedRootGroup|"),
              2);
    EXPECT_TRUE(complete.older.calls.empty());
    for (const std::string& service : kServices)
        EXPECT_GT(std::count(complete.host.asked.begin(), complete.host.asked.end(), service), 0) << service;
}

TEST(IncompleteHost, RunsAShowWithoutAnyOneOfItsServices) {
    for (const std::string& service : kServices) {
        CompleteHost complete;
        Variables variables;
        TakeAway(complete, service);
        RunAShow(complete.host.Root(), &variables, service.c_str());
    }
}

TEST(IncompleteHost, RunsAShowWhenAServiceIsFoundButNull) {
    for (const std::string& service : kServices) {
        CompleteHost complete;
        Variables variables;
        complete.host.nullFaces = {service};
        RunAShow(complete.host.Root(), &variables, service.c_str());
    }
}

TEST(IncompleteHost, RunsAShowWithoutAnyService) {
    CompleteHost complete;
    Variables variables;
    for (const std::string& service : kServices)
        TakeAway(complete, service);
    RunAShow(complete.host.Root(), &variables, "none");
    complete.host.nullFaces = {kServices.begin(), kServices.end()};
    RunAShow(complete.host.Root(), &variables, "all null");
}

TEST(IncompleteHost, RunsAShowWhenItsManagersHandOutNoLinks) {
    CompleteHost complete;
    Variables variables;
    complete.host.remote = nullptr;
    complete.host.remote2 = nullptr;
    RunAShow(complete.host.Root(), &variables, "no links");
}

TEST(IncompleteHost, UsesTheOlderLinkWithoutTheNewer) {
    CompleteHost complete;
    Variables variables;
    complete.host.remote2 = nullptr;
    RunAShow(complete.host.Root(), &variables, "older link");
    EXPECT_NE(complete.older.handler, nullptr);
}

TEST(IncompleteHost, RunsAShowWithoutARoot) {
    Variables variables;
    RunAShow(nullptr, &variables, "no root");
}

TEST(IncompleteHost, RunsAShowWithoutVariables) {
    CompleteHost complete;
    RunAShow(complete.host.Root(), nullptr, "no variables");
}

/// Knows none of a device's variables.
class EmptyVariables : public Variables {
public:
    IData* GetVariable(const char*) override { return nullptr; }
};

TEST(IncompleteHost, RunsAShowWithVariablesThatItDoesNotKnow) {
    CompleteHost complete;
    EmptyVariables variables;
    RunAShow(complete.host.Root(), &variables, "empty variables");
}

TEST(IncompleteHost, RunsAShowWithNothingAtAll) {
    RunAShow(nullptr, nullptr, "nothing");
}

TEST(IncompleteHost, ThatFailsToTellOfItselfIsAsked) {
    CompleteHost complete;
    Variables variables;
    complete.host.runtimeInfoResult = 0;
    RunAShow(complete.host.Root(), &variables, "no runtime info");
    complete.host.runtimeInfoResult = 1;
    complete.host.version = std::string(40, '6');
    complete.host.appName = std::string(40, 'h');
    RunAShow(complete.host.Root(), &variables, "texts without an end");
}

} // namespace
