#include <future>

#include "Device.h"
#include "HostedModule.h"
#include "MainWait.h"
#include "NoMoreThreads.h"
#include "RemoteShow.h"

using namespace stagehost;
using Remote = IManagerRemote2;

namespace {

/// The show with a device "desk" whose script behaves as its lines say.
class DeviceObjectTest : public NewerShow {
protected:
    DeviceObjectTest()
        : module(host) {
        EXPECT_EQ(module.Load(QStringLiteral(STAGEHOST_BIN "/fakemodule.kxp6")), QString());
        desk = std::make_unique<Device>(module, "desk");
        EXPECT_FALSE(desk->Create({}).has_value());
    }
    ~DeviceObjectTest() override { desk.reset(); }

    void GivenARunningScript(const std::string& script) {
        ASSERT_TRUE(desk->Start(kLong));
        const auto definition = desk->Variables().Definition();
        desk->Send(*definition->FindCommand("1"), {{"Script Text", script, {}}}, kLong);
    }

    static std::string Parameters(const std::string& function, const std::string& more = {}) {
        return "<parameters><parameter name=\"Script Function Name\" value=\"" + function + "\"/>" + more +
               "</parameters>";
    }

    Asked Execute(const std::string& function, const std::string& more = {}) {
        return Ask(&Remote::Perform, "desk", "Execute Function With Params", Parameters(function, more).c_str());
    }

    /// A request that is not waited for.
    ExecContext* Request(const std::string& function, const char* command = "3") {
        auto* context = new ExecContext();
        EXPECT_EQ(link->Perform("desk", command, Parameters(function).c_str(), context, nullptr), KXP_PENDING);
        return context;
    }

    HostedModule module;
    std::unique_ptr<Device> desk;
};

} // namespace

TEST_F(DeviceObjectTest, CarriesTheResultOfACommandBack) {
    GivenARunningScript("function hello say hello\nfunction echo echo\nfunction quiet nothing\n");
    EXPECT_EQ(Execute("hello").text, "hello");
    EXPECT_EQ(Execute("echo", "<parameter name='Param1' value='a'/><parameter name='3' value='b'/>").text, "a|b||||||");
    const Asked quiet = Execute("quiet");
    EXPECT_EQ(quiet.code, KXP_OK);
    EXPECT_EQ(quiet.text, "");
    EXPECT_EQ(Ask(&Remote::Perform, "desk", "2", Parameters("hello").c_str()).code, KXP_OK)
        << "a command that ends no context is over when the device is ready again";
}

TEST_F(DeviceObjectTest, FailsWithItsCodes) {
    EXPECT_EQ(Execute("hello").code, KXPCode{kNotRunning});
    GivenARunningScript("function bad fail boom\nfunction refuse refuse 7\n");
    EXPECT_EQ(Ask(&Remote::Perform, "desk", "Fly", "").code, KXPCode{kNoSuchAction});
    EXPECT_EQ(Execute("bad", "<parameter name='Odd' value=''/>").code, KXPCode{kBadParameters});
    const Asked bad = Execute("bad");
    EXPECT_EQ(bad.code, KXPCode{kActionFailed});
    EXPECT_EQ(bad.text, "") << "an error is no result";
    EXPECT_EQ(Execute("refuse").code, KXPCode{kActionFailed});
    EXPECT_EQ(Execute("nothing").code, KXPCode{kActionFailed});
}

TEST_F(DeviceObjectTest, TakesAnEndFromAnyThreadAtAnyTimeAndOftenerThanOnce) {
    GivenARunningScript("function elsewhere elsewhere\nfunction early early\nfunction twice twice\n");
    EXPECT_EQ(Execute("elsewhere").text, "elsewhere");
    EXPECT_EQ(Execute("early").text, "early");
    EXPECT_EQ(Execute("twice").code, KXP_OK);
}

TEST_F(DeviceObjectTest, IsNotHeldUpByACommandThatDoesNotEnd) {
    GivenARunningScript("function never never\nfunction hello say hello\n");
    ExecContext* never = Request("never");
    EXPECT_EQ(Execute("hello").text, "hello");
    EXPECT_EQ(never->GetState(), ExecContext::kBegun);
    EXPECT_TRUE(desk->Shutdown(kLong));
    EXPECT_TRUE(never->WaitEnded(kLong));
    EXPECT_EQ(never->ErrorCode(), KXPCode{kEnding});
    never->Release();
}

TEST_F(DeviceObjectTest, EndsRequestsOfAllKindsWithTheDevice) {
    GivenARunningScript("function hang hang\nfunction block block\nfunction hello say hello\n");
    ExecContext* contexts[] = {Request("hang"), Request("hello", "2"), Request("block"), Request("hello")};
    EXPECT_TRUE(desk->Shutdown(std::chrono::milliseconds(100)));
    for (ExecContext* context : contexts) {
        EXPECT_TRUE(context->WaitEnded(kLong));
        context->Release();
    }
    EXPECT_EQ(Execute("hello").firstCode, KXPCode{kNoSuchObject});
}

TEST_F(DeviceObjectTest, EndsARequestThatIsAcceptedWhileTheDeviceGoes) {
    for (int i = 0; i < 200; ++i) {
        GivenARunningScript("function never never\n");
        ExecContext* context = Request("never");
        EXPECT_TRUE(desk->Shutdown(kLong));
        ASSERT_TRUE(context->WaitEnded(kLong)) << "device " << i;
        context->Release();
        desk = std::make_unique<Device>(module, "desk");
        ASSERT_FALSE(desk->Create({}).has_value());
    }
}

TEST_F(DeviceObjectTest, AnswersInTheOrderOfTheCommands) {
    GivenARunningScript("function echo echo\n");
    constexpr int kCount = 100;
    std::vector<ExecContext*> contexts;
    for (int number = 0; number < kCount; ++number) {
        contexts.push_back(new ExecContext());
        const std::string more = "<parameter name='Param1' value='" + std::to_string(number) + "'/>";
        link->Perform("desk", "3", Parameters("echo", more).c_str(), contexts.back(), nullptr);
    }
    for (int number = 0; number < kCount; ++number) {
        EXPECT_TRUE(contexts[number]->WaitEnded(kLong));
        EXPECT_EQ(contexts[number]->ResultText(), std::to_string(number) + "|||||||");
        contexts[number]->Release();
    }
}

TEST_F(DeviceObjectTest, ShowsItsVariablesAsProperties) {
    EXPECT_EQ(Ask(&Remote::GetProperty, "desk", "Running").text, "false");
    GivenARunningScript("function hello say hello\n");
    EXPECT_EQ(Ask(&Remote::GetProperty, "desk", "Running").text, "true");
    EXPECT_EQ(Ask(&Remote::GetProperty, "desk", "Status").text, "Ready");
    EXPECT_EQ(Ask(&Remote::GetProperty, "desk", "ScriptFunctions").text, "hello\n");
    EXPECT_EQ(Ask(&Remote::SetProperty, "desk", "Error", "own").code, KXP_OK);
    EXPECT_EQ(desk->ErrorText(), "own");
    EXPECT_EQ(Ask(&Remote::SetPropertyAsInt, "desk", "Status", 9).code, KXPCode{kBadValue});
    EXPECT_EQ(Ask(&Remote::SetProperty, "desk", "Running", "x").code, KXPCode{kReadOnly});
    EXPECT_EQ(Ask(&Remote::GetProperty, "desk", "Colour").code, KXPCode{kNoSuchProperty});
}

TEST_F(DeviceObjectTest, IsToldByItsDefinitionAndListedWithItsVariables) {
    const std::string text = Ask(&Remote::GetObject, "desk", std::uint16_t{0}).text;
    EXPECT_EQ(text, desk->Variables().DefinitionText());
    EXPECT_NE(text.find("<Commands><Command ID=\"0\" Name=\"Load From File\""), std::string::npos);
    EXPECT_EQ(Ask(&Remote::GetObjectList, kGrantedGroup, 1u).text,
              "<Objects Parent=\"GrantedRootGroup\" Type=\"1\"><Object Name=\"desk\" Type=\"Device\" Value=\"\"/>"
              "</Objects>");
    const std::string variables = Ask(&Remote::GetObjectList, "desk", 6u).text;
    EXPECT_NE(variables.find("<Object Name=\"desk.Status\" Type=\"Variable\" Value=\"EnumData\"/>"), std::string::npos);
    EXPECT_EQ(variables.find("Level"), std::string::npos);
}

TEST_F(DeviceObjectTest, PlaysTheCommandsOfATaskAndNotesWhatFails) {
    GivenARunningScript("function hello say hello\nfunction bad fail boom\n");
    ActionSpec command;
    command.device = "desk";
    command.command = "3";
    command.parameters = {{"Script Function Name", "hello", false}, {"Result", "Mood", true}};
    host.Model().Run(command, [](const std::string& what) { ADD_FAILURE() << what; });
    AwaitMood("hello");
    command.parameters = {{"Script Function Name", "bad", false}};
    std::promise<std::string> failure;
    host.Model().Run(command, [&](const std::string& what) { failure.set_value(what); });
    EXPECT_EQ(failure.get_future().get(), "desk, 3: boom");
}

TEST_F(DeviceObjectTest, IsNotCalledOnceItIsReleasedByACallThatHadToWaitForAThread) {
    GivenARunningScript("function hello say hello\n");
    const NoMoreThreads none;
    std::promise<void> gate;
    const auto open = gate.get_future().share();
    constexpr int kMoreThanThereAreThreads = 100;
    for (int number = 0; number < kMoreThanThereAreThreads; ++number)
        host.Pool().Run([open] { open.wait(); });
    const auto definition = desk->Variables().Definition();
    constexpr std::chrono::milliseconds kShort(50);
    EXPECT_EQ(desk->Send(*definition->FindCommand("3"), {{"Script Function Name", "hello", {}}}, kShort).kind,
              CommandOutcome::Kind::NoAnswer);
    EXPECT_TRUE(desk->Shutdown(kShort)) << "nothing of it runs: neither the command nor the stop has begun";
    const auto last = host.Pool().Run([] {});
    gate.set_value();
    EXPECT_TRUE(MainWait::Until([&] { return last->IsDone(); }, kLong));
}
