#include "NewerLink.h"

#include <condition_variable>
#include <deque>
#include <thread>

#include "RemoteShow.h"

using namespace stagehost;
using Remote = IManagerRemote2;

namespace {

/// A handler that keeps what it hears.
class Listener final : public IManagerRemoteHandler {
public:
    virtual ~Listener() = default;
    KXPCode QueryInterface(const char*, void**) override { return KXP_BAD_INTERFACE_ARG; }
    KXPCode Release() override { return KXP_BAD_INTERFACE_ARG; }
    KXPCode Reserved2(void*, void*, void*) override { return KXP_OK; }

    KXPCode OnPropertyChange(const char* object, const char* property, const char* value, std::uint32_t,
                             std::uint32_t) override {
        const std::lock_guard<std::mutex> hold(lock);
        heard.push_back(std::string(object) + "." + property + "=" + value);
        thread = std::this_thread::get_id();
        changed.notify_all();
        return KXP_OK;
    }

    std::vector<std::string> WaitFor(std::size_t count) {
        std::unique_lock<std::mutex> hold(lock);
        changed.wait_for(hold, kLong, [&] { return heard.size() >= count; });
        return heard;
    }

    std::mutex lock;
    std::condition_variable changed;
    std::vector<std::string> heard;
    std::thread::id thread;
};

constexpr const char* kEvents = R"(<Options><Option name="acceptevents" value="true" /></Options>)";

} // namespace

using NewerLinkTest = NewerShow;

TEST_F(NewerLinkTest, EndsWhatItTakesOnOnAnotherThread) {
    std::thread::id thread;
    auto* context = new ExecContext([&] { thread = std::this_thread::get_id(); });
    ASSERT_EQ(link->StartTask("Overture", context, nullptr), KXP_PENDING);
    ASSERT_TRUE(context->WaitEnded(kLong));
    host.Pool().Close(kLong);
    EXPECT_EQ(context->ErrorCode(), KXP_OK);
    EXPECT_NE(thread, std::this_thread::get_id());
    EXPECT_NE(thread, std::thread::id());
    context->Release();
}

TEST_F(NewerLinkTest, WorksTasks) {
    EXPECT_EQ(Ask(&Remote::PauseTask, "Overture").code, KXPCode{kNotRunning});
    EXPECT_EQ(Ask(&Remote::StartTask, "Overture").code, KXP_OK);
    EXPECT_EQ(Ask(&Remote::GetProperty, "Overture", "Status").text, "Running");
    EXPECT_EQ(Ask(&Remote::PauseTask, "Overture").code, KXP_OK);
    EXPECT_EQ(Ask(&Remote::GetProperty, "Overture", "Status").text, "Paused");
    EXPECT_EQ(Ask(&Remote::GotoTime, "Overture", 1500).code, KXP_OK);
    EXPECT_EQ(Ask(&Remote::GetProperty, "Overture", "Time").text, "1500");
    EXPECT_EQ(Ask(&Remote::GotoLabel, "Overture", "begin").code, KXP_OK);
    EXPECT_EQ(Ask(&Remote::GetProperty, "Overture", "Time").text, "0");
    EXPECT_EQ(Ask(&Remote::GotoLine, "Overture", 2).code, KXP_OK);
    EXPECT_EQ(Ask(&Remote::GetProperty, "Overture", "Time").text, "86400000");
    EXPECT_EQ(Ask(&Remote::StopTask, "Overture", 0).code, KXP_OK);
    EXPECT_EQ(Ask(&Remote::GetProperty, "Overture", "Status").text, "Stopped");
}

TEST_F(NewerLinkTest, RefusesPlacesThatATaskDoesNotHave) {
    for (const std::int32_t line : {-1, 0, 3})
        EXPECT_EQ(Ask(&Remote::GotoLine, "Overture", line).code, KXPCode{kNoSuchPlace}) << line;
    for (const std::int32_t time : {-1, 86400001})
        EXPECT_EQ(Ask(&Remote::GotoTime, "Overture", time).code, KXPCode{kNoSuchPlace}) << time;
    EXPECT_EQ(Ask(&Remote::GotoLabel, "Overture", "nowhere").code, KXPCode{kNoSuchPlace});
    EXPECT_EQ(Ask(&Remote::GotoLabel, "Overture", "").code, KXPCode{kNoSuchPlace});
    EXPECT_EQ(Ask(&Remote::StopTask, "Overture", 2).code, KXPCode{kBadValue});
}

TEST_F(NewerLinkTest, OpensClosesAndTurnsUserScreens) {
    EXPECT_EQ(Ask(&Remote::CloseUserScreen, "Panel").code, KXPCode{kNotRunning});
    EXPECT_EQ(Ask(&Remote::OpenUserScreen, "Panel", 1, 20, 30).code, KXP_OK);
    EXPECT_EQ(Ask(&Remote::GetProperty, "Panel", "Left").text, "20");
    EXPECT_EQ(Ask(&Remote::GetProperty, "Panel", "Open").text, "true");
    EXPECT_EQ(Ask(&Remote::GotoPage, "Panel", "2").code, KXP_OK);
    EXPECT_EQ(Ask(&Remote::GetProperty, "Panel", "PageName").text, "Lights");
    for (const char* page : {"0", "3", "", "two", "-1"})
        EXPECT_EQ(Ask(&Remote::GotoPage, "Panel", page).code, KXPCode{kNoSuchPlace}) << page;
    EXPECT_EQ(Ask(&Remote::OpenUserScreen, "Panel", 5, 0, 0).code, KXPCode{kBadValue});
    EXPECT_EQ(Ask(&Remote::CloseUserScreen, "Panel").code, KXP_OK);
    EXPECT_EQ(Ask(&Remote::GetProperty, "Panel", "Page").text, "2") << "the page stays while the screen is closed";
}

TEST_F(NewerLinkTest, LoadsShows) {
    EXPECT_EQ(Ask(&Remote::LoadShow, "Matinee", -1).code, KXPCode{kBadValue});
    EXPECT_EQ(Ask(&Remote::GetProperty, "Matinee", "Loaded").text, "false");
    EXPECT_EQ(Ask(&Remote::LoadShow, "Matinee", 700).code, KXP_OK);
    EXPECT_EQ(Ask(&Remote::GetProperty, "Matinee", "Time").text, "700");
    EXPECT_EQ(TextOf("Mood"), "noon");
}

TEST_F(NewerLinkTest, ReadsAndSetsProperties) {
    EXPECT_EQ(Ask(&Remote::GetProperty, "Level", "Value").text, "5");
    EXPECT_EQ(Ask(&Remote::SetProperty, "Level", "Value", "9").code, KXP_OK);
    EXPECT_EQ(TextOf("Level"), "9");
    EXPECT_EQ(Ask(&Remote::SetPropertyAsInt, "Level", "Value", 12).code, KXP_OK);
    EXPECT_EQ(TextOf("Level"), "12");
    EXPECT_EQ(Ask(&Remote::SetProperty, "Level", "Value", "many").code, KXPCode{kBadValue});
    EXPECT_EQ(Ask(&Remote::SetProperty, "Level", "Type", "x").code, KXPCode{kReadOnly});
    EXPECT_EQ(Ask(&Remote::GetProperty, "Level", "Colour").code, KXPCode{kNoSuchProperty});
    EXPECT_EQ(Ask(&Remote::SetProperty, "Level", "Colour", "x").code, KXPCode{kNoSuchProperty});
    EXPECT_EQ(Ask(&Remote::SetProperty, "Hall.Door", "Locked", "yes").code, KXP_OK);
    EXPECT_EQ(Ask(&Remote::GetProperty, "Hall.Door", "Locked").text, "yes");
    EXPECT_EQ(Ask(&Remote::SetPropertyAsInt, "Panel", "Page", 2).code, KXP_OK);
    EXPECT_EQ(Ask(&Remote::SetPropertyAsInt, "Overture", "Time", 2).code, KXPCode{kReadOnly});
}

TEST_F(NewerLinkTest, PerformsActionsOfEveryKindOfObject) {
    EXPECT_EQ(Ask(&Remote::Perform, "Overture", "Start", "").text, "Running");
    AwaitMood("first");
    EXPECT_EQ(Ask(&Remote::Perform, "Overture", "Stop", "<parameters/>").text, "Stopped");
    EXPECT_EQ(
        Ask(&Remote::Perform, "Overture", "GotoLine", "<parameters><parameter name='Line' value='2'/></parameters>")
            .code,
        KXP_OK);
    EXPECT_EQ(Ask(&Remote::Perform, "Thunder", "Go", "").code, KXP_OK);
    EXPECT_EQ(TextOf("Mood"), "thunder");
    EXPECT_EQ(Ask(&Remote::GetProperty, "Thunder", "Count").text, "1");
    EXPECT_EQ(Ask(&Remote::Perform, "Panel", "Open", "").code, KXP_OK);
    EXPECT_EQ(
        Ask(&Remote::Perform, "Level", "SetValue", "<parameters><parameter name=\"Value\" value=\"7\"/></parameters>")
            .text,
        "7");
    EXPECT_EQ(Ask(&Remote::Perform, "Level", "GetValue", "").text, "7");
    EXPECT_EQ(Ask(&Remote::Perform, "Matinee", "Load", "").code, KXP_OK);
    EXPECT_EQ(TextOf("Mood"), "noon");
}

TEST_F(NewerLinkTest, RefusesActionsAndParametersThatDoNotFit) {
    constexpr const char* kOdd = "<parameters><parameter name='Odd' value='1'/></parameters>";
    for (const char* object : {"Overture", "Thunder", "Panel", "Level", "Matinee", "House", "Hall"})
        EXPECT_EQ(Ask(&Remote::Perform, object, "Explode", "").code, KXPCode{kNoSuchAction}) << object;
    const std::pair<const char*, const char*> actions[] = {
        {"Overture", "Start"}, {"Thunder", "Go"}, {"Panel", "Open"}, {"Panel", "Close"}, {"Level", "GetValue"}};
    for (const auto& [object, action] : actions)
        EXPECT_EQ(Ask(&Remote::Perform, object, action, kOdd).code, KXPCode{kBadParameters}) << object;
    EXPECT_EQ(
        Ask(&Remote::Perform, "Overture", "GotoLine", "<parameters><parameter name='Line' value='two'/></parameters>")
            .code,
        KXPCode{kBadParameters});
    EXPECT_EQ(Ask(&Remote::Perform, "Overture", "Start", "no parameters").code, KXPCode{kBadParameters});
    EXPECT_EQ(Ask(&Remote::Perform, "Level", "SetValue", "").code, KXPCode{kBadParameters});
}

TEST_F(NewerLinkTest, FailsAtOnceForObjectsThatDoNotExist) {
    const Asked all[] = {Ask(&Remote::OpenUserScreen, "s", 0, 0, 0),
                         Ask(&Remote::CloseUserScreen, "s"),
                         Ask(&Remote::GotoPage, "s", "1"),
                         Ask(&Remote::StartTask, "t"),
                         Ask(&Remote::PauseTask, "t"),
                         Ask(&Remote::StopTask, "t", 0),
                         Ask(&Remote::GotoLabel, "t", "l"),
                         Ask(&Remote::GotoLine, "t", 1),
                         Ask(&Remote::GotoTime, "t", 1),
                         Ask(&Remote::LoadShow, "s", 0),
                         Ask(&Remote::GetObjectList, "o", 0u),
                         Ask(&Remote::SetProperty, "o", "p", "v"),
                         Ask(&Remote::SetPropertyAsInt, "o", "p", 1),
                         Ask(&Remote::GetProperty, "o", "p"),
                         Ask(&Remote::GetObject, "o", std::uint16_t{1}),
                         Ask(&Remote::Perform, "o", "a", "<p/>"),
                         Ask(&Remote::RegisterGroup, "g", ""),
                         Ask(&Remote::StartTask, "Panel"),
                         Ask(&Remote::StartTask, "")};
    for (const Asked& asked : all)
        EXPECT_EQ(asked.firstCode, KXPCode{kNoSuchObject});
    EXPECT_EQ(link->Perform(nullptr, "a", "", nullptr, nullptr), KXP_NULL_ARGUMENT);
    EXPECT_EQ(link->StartTask("Overture", nullptr, nullptr), KXP_NULL_ARGUMENT) << "nobody could be told of the end";
}

TEST_F(NewerLinkTest, TakesNullTextsBehindTheNameAsEmptyOnes) {
    EXPECT_EQ(Ask(&Remote::GotoLabel, "Overture", static_cast<const char*>(nullptr)).code, KXPCode{kNoSuchPlace});
    EXPECT_EQ(Ask(&Remote::GotoPage, "Panel", static_cast<const char*>(nullptr)).code, KXPCode{kNoSuchPlace});
    EXPECT_EQ(Ask(&Remote::Perform, "Thunder", "Go", static_cast<const char*>(nullptr)).code, KXP_OK);
    EXPECT_EQ(Ask(&Remote::SetProperty, "Mood", "Value", static_cast<const char*>(nullptr)).code, KXP_OK);
    EXPECT_EQ(TextOf("Mood"), "");
}

TEST_F(NewerLinkTest, RefusesForAnObjectThatIsMarkedSo) {
    const Asked asked = Ask(&Remote::StartTask, "Stubborn");
    EXPECT_EQ(asked.firstCode, KXPCode{kRefused});
    EXPECT_EQ(Ask(&Remote::GetProperty, "Stubborn", "Status").code, KXPCode{kRefused});
    EXPECT_EQ(Ask(&Remote::RegisterGroup, "Closed", "").code, KXPCode{kRefused});
}

TEST_F(NewerLinkTest, EndsWhatNeverEndsWithTheLink) {
    auto* context = new ExecContext();
    ASSERT_EQ(link->StartTask("Endless", context, nullptr), KXP_PENDING);
    EXPECT_EQ(context->GetState(), ExecContext::kBegun);
    EXPECT_EQ(Ask(&Remote::StartTask, "Overture").code, KXP_OK) << "what never ends holds up no other request";
    EXPECT_EQ(context->GetState(), ExecContext::kBegun);
    host.CloseLink(Owner());
    EXPECT_TRUE(context->WaitEnded(kLong));
    EXPECT_EQ(context->ErrorCode(), KXPCode{kEnding});
    context->Release();
    EXPECT_EQ(Ask(&Remote::GetProperty, "Overture", "Status").text, "Running") << "the link itself serves on";
}

TEST_F(NewerLinkTest, KeepsAContextThatItsMakerHasGivenUp) {
    auto* context = new ExecContext();
    ASSERT_EQ(link->StartTask("Endless", context, nullptr), KXP_PENDING);
    context->Release();
    host.CloseLink(Owner());
    SUCCEED() << "the sanitizers tell";
}

TEST_F(NewerLinkTest, AnswersForItselfAndItsReservedPlaces) {
    auto* manager = QueryFace<IManagerRemoteManager2>(host.Root(), "IManagerRemoteManager2");
    EXPECT_EQ(manager->GetRemote(nullptr), nullptr);
    EXPECT_EQ(manager->GetRemote(Owner()), link) << "a device has one link";
    EXPECT_EQ(QueryFace<IManagerRemote2>(link, "IManagerRemote2"), link);
    for (const KXPCode code : {link->Reserved2(nullptr), link->Reserved16(nullptr), link->Reserved17(nullptr),
                               link->Reserved18(nullptr), manager->Reserved1(nullptr)})
        EXPECT_EQ(code, KXP_NOT_IMPLEMENTED);
}

TEST_F(NewerLinkTest, TellsEveryChangeOfARegisteredGroupInOrderOnAThreadOfTheHost) {
    Listener listener;
    link->SetHandler(&listener);
    EXPECT_EQ(Ask(&Remote::RegisterGroup, "House", kEvents).code, KXP_OK);
    std::vector<std::string> expected;
    for (int value = 100; value < 300; ++value) {
        host.Variables().Find("Level")->SetInt(value);
        expected.push_back("Level.Value=" + std::to_string(value));
        host.Variables().Find("Other")->SetInt(value);
    }
    host.Variables().Find("Mood")->SetText("of the inner group");
    expected.emplace_back("Mood.Value=of the inner group");
    EXPECT_EQ(listener.WaitFor(expected.size()), expected);
    EXPECT_NE(listener.thread, std::this_thread::get_id());
    host.CloseLink(Owner());
}

TEST_F(NewerLinkTest, LosesNoChangeOfManyThreads) {
    Listener listener;
    link->SetHandler(&listener);
    Ask(&Remote::RegisterGroup, kGrantedGroup, kEvents);
    constexpr int kEach = 500;
    const auto count = [&](const char* variable) {
        for (int value = 1; value <= kEach; ++value)
            host.Variables().Find(variable)->SetInt(1000 + value);
    };
    std::thread first(count, "Level");
    std::thread second(count, "Other");
    first.join();
    second.join();
    const auto heard = listener.WaitFor(2 * kEach);
    ASSERT_EQ(heard.size(), std::size_t{2 * kEach});
    for (const char* variable : {"Level.", "Other."}) {
        int next = 1001;
        for (const auto& change : heard) {
            if (change.rfind(variable, 0) != 0)
                continue;
            EXPECT_EQ(change, std::string(variable) + "Value=" + std::to_string(next++));
        }
    }
    host.CloseLink(Owner());
}

TEST_F(NewerLinkTest, TellsAValueOnceThoughTwoGroupsHaveIt) {
    Listener listener;
    link->SetHandler(&listener);
    Ask(&Remote::RegisterGroup, "House", kEvents);
    Ask(&Remote::RegisterGroup, "Inner", kEvents);
    Ask(&Remote::RegisterGroup, kGrantedGroup, kEvents);
    host.Variables().Find("Mood")->SetText("once");
    host.Variables().Find("Other")->SetText("end");
    EXPECT_EQ(listener.WaitFor(2), (std::vector<std::string>{"Mood.Value=once", "Other.Value=end"}));
    host.CloseLink(Owner());
}

TEST_F(NewerLinkTest, TellsNothingWithoutTheOptionOrBeforeTheRegistrationOrBehindItsEnd) {
    Listener listener;
    link->SetHandler(&listener);
    Ask(&Remote::RegisterGroup, "House", "");
    host.Variables().Find("Level")->SetInt(1);
    Ask(&Remote::RegisterGroup, "House", kEvents);
    Ask(&Remote::RegisterGroup, "House", "");
    host.Variables().Find("Level")->SetInt(2);
    EXPECT_EQ(listener.WaitFor(1), std::vector<std::string>{"Level.Value=2"}) << "once asked for, changes are told";
    EXPECT_EQ(Ask(&Remote::UnregisterGroup, "House").code, KXP_OK);
    host.Variables().Find("Level")->SetInt(3);
    Ask(&Remote::RegisterGroup, kGrantedGroup, kEvents);
    host.Variables().Find("Level")->SetInt(4);
    EXPECT_EQ(listener.WaitFor(2).back(), "Level.Value=4");
    EXPECT_EQ(Ask(&Remote::UnregisterGroup, static_cast<const char*>(nullptr)).code, KXP_OK);
    host.Variables().Find("Level")->SetInt(5);
    Ask(&Remote::RegisterGroup, "House", kEvents);
    Ask(&Remote::UnregisterGroup, "");
    host.Variables().Find("Level")->SetInt(6);
    Ask(&Remote::RegisterGroup, "House", kEvents);
    host.Variables().Find("Level")->SetInt(7);
    EXPECT_EQ(listener.WaitFor(3).back(), "Level.Value=7") << "an empty name ends all registrations";
    EXPECT_EQ(Ask(&Remote::UnregisterGroup, "never registered").code, KXP_OK);
    host.CloseLink(Owner());
}

TEST_F(NewerLinkTest, RefusesOptionsThatAreNone) {
    for (const char* options : {"acceptevents", "<Option/>", "<Options><Option", "<Options>"})
        EXPECT_EQ(Ask(&Remote::RegisterGroup, "House", options).code, KXPCode{kBadParameters}) << options;
    EXPECT_EQ(Ask(&Remote::RegisterGroup, "House", static_cast<const char*>(nullptr)).code, KXP_OK);
}

TEST_F(NewerLinkTest, CallsAHandlerNoMoreOnceItIsReplacedOrTheLinkIsClosed) {
    Listener former;
    Listener next;
    link->SetHandler(&former);
    EXPECT_EQ(static_cast<NewerLink*>(link)->Handler(), &former);
    Ask(&Remote::RegisterGroup, kGrantedGroup, kEvents);
    link->SetHandler(&next);
    host.Variables().Find("Level")->SetInt(1);
    next.WaitFor(1);
    host.CloseLink(Owner());
    link->SetHandler(&former);
    EXPECT_EQ(static_cast<NewerLink*>(link)->Handler(), nullptr);
    host.Variables().Find("Level")->SetInt(2);
    host.ForgetDevice(Owner());
    EXPECT_TRUE(former.heard.empty());
    EXPECT_EQ(next.heard.size(), 1u);
}
