#include "../core/RemoteShow.h"

using namespace stagehost;

namespace {

class ShowModelTest : public RemoteShow {
protected:
    ShowModelTest()
        : RemoteShow(Link::None) {}

    std::vector<std::string> Failures(const ActionSpec& action) {
        std::vector<std::string> failures;
        host.Model().Run(action, [&](const std::string& what) { failures.push_back(what); });
        return failures;
    }
};

} // namespace

TEST_F(ShowModelTest, DoesEverythingThatAnActionNames) {
    ActionSpec action = Sets("Level", "77");
    action.task = "Overture";
    action.cue = "Thunder";
    EXPECT_EQ(Failures(action), std::vector<std::string>{});
    EXPECT_EQ(TextOf("Level"), "77");
    EXPECT_EQ(host.Model().FindTask("Overture")->Status(), "Running");
    EXPECT_EQ(host.Model().FindCue("Thunder")->Property("Count"), "1");
    action = {};
    action.task = "Overture";
    action.taskAction = TaskAction::Pause;
    EXPECT_EQ(Failures(action), std::vector<std::string>{});
    EXPECT_EQ(Failures(action), std::vector<std::string>{}) << "a paused task can be paused";
    action.taskAction = TaskAction::Stop;
    Failures(action);
    EXPECT_EQ(host.Model().FindTask("Overture")->Status(), "Stopped");
}

TEST_F(ShowModelTest, TellsEachPartOfAnActionThatFailsAndDoesTheRest) {
    ActionSpec action;
    action.sets = {{"Nothing", "1"}, {"Level", "many"}, {"Mood", "glad"}};
    action.device = "nobody";
    action.command = "go";
    action.task = "no task";
    action.cue = "no cue";
    EXPECT_EQ(Failures(action),
              (std::vector<std::string>{"Nothing: there is no such object", "Level: the value is not taken",
                                        "nobody, go: there is no such object", "no task: there is no such object",
                                        "no cue: there is no such object"}));
    EXPECT_EQ(TextOf("Mood"), "glad");
    host.Model().Run(action, {});
}

TEST_F(ShowModelTest, FindsANameThatMeansSeveralThingsInTheOrderOfKinds) {
    AddVariable("Overture", KXP_STRING_DATA, "");
    EXPECT_EQ(host.Model().FindAny("Overture")->Kind(), ObjectKind::Task);
    EXPECT_EQ(host.Model().Find(ObjectKind::Variable, "Overture")->Kind(), ObjectKind::Variable);
    EXPECT_EQ(host.Model().FindAny("Nobody"), nullptr);
    EXPECT_EQ(host.Model().Find(ObjectKind::Task, "Panel"), nullptr);
}

TEST_F(ShowModelTest, KnowsWhichVariablesAGroupHas) {
    EXPECT_TRUE(host.Model().GroupHas("House", "Level"));
    EXPECT_TRUE(host.Model().GroupHas("House", "Mood")) << "of a group in it";
    EXPECT_TRUE(host.Model().GroupHas("House", "Overture.Status")) << "of a member that is a device";
    EXPECT_FALSE(host.Model().GroupHas("House", "Other"));
    EXPECT_FALSE(host.Model().GroupHas("Inner", "Level"));
    EXPECT_FALSE(host.Model().GroupHas("Nowhere", "Level"));
    EXPECT_TRUE(host.Model().GroupHas(kGrantedGroup, "anything"));
}

TEST_F(ShowModelTest, StartsNoTaskAnyMoreOnceTheyHaveEnded) {
    host.Model().EndTasks();
    EXPECT_EQ(host.Model().FindTask("Overture")->Start(), KXPCode{kEnding});
    host.Model().EndTasks();
}

TEST_F(ShowModelTest, TellsWhatChangesOfEveryKind) {
    std::mutex lock;
    std::condition_variable changed;
    std::vector<std::string> told;
    const Subscription subscription = host.Model().Feed().Subscribe([&](const ShowChange& change) {
        const std::lock_guard<std::mutex> hold(lock);
        told.push_back(std::string(RowOf(change.kind).name) + " " + change.object + " " + change.property + " " +
                       change.value);
        changed.notify_all();
    });
    host.Variables().Find("Level")->SetInt(1);
    host.Variables().Find("Level")->SetInt(1);
    host.Model().FindScreen("Panel")->Open(0, 0, 0);
    host.Model().FindScreen("Panel")->GotoPage(2);
    host.Model().FindScreen("Panel")->GotoPage(2);
    host.Model().FindAny("Hall.Door")->SetProperty("Locked", "yes");
    host.Model().FindCue("Thunder")->Go();
    host.Model().FindShow("Matinee")->Load(5);
    const std::vector<std::string> expected{"Variable Level Value 1",  "UserScreen Panel Open true",
                                            "UserScreen Panel Page 2", "Object Hall.Door Locked yes",
                                            "Cue Thunder Count 1",     "Variable Mood Value thunder",
                                            "Show Matinee Loaded 5",   "Variable Mood Value noon"};
    std::unique_lock<std::mutex> hold(lock);
    changed.wait_for(hold, kLong, [&] { return told.size() >= expected.size(); });
    EXPECT_EQ(told, expected);
}
