#include <future>

#include "RemoteShow.h"

using namespace stagehost;
using Remote = IManagerRemote;

using OlderLinkTest = OlderShow;

TEST_F(OlderLinkTest, WorksTasks) {
    EXPECT_EQ(link->PauseTask("Overture"), KXPCode{kNotRunning});
    EXPECT_EQ(link->StartTask("Overture"), KXP_OK);
    EXPECT_EQ(AskText(&Remote::GetProperty, "Overture", "Status").text, "Running");
    EXPECT_EQ(link->PauseTask("Overture"), KXP_OK);
    EXPECT_EQ(link->GotoLine("Overture", 2), KXP_OK);
    EXPECT_EQ(AskText(&Remote::GetProperty, "Overture", "Time").text, "86400000");
    EXPECT_EQ(link->GotoLabel("Overture", "begin"), KXP_OK);
    EXPECT_EQ(link->GotoTime("Overture", 5), KXP_OK);
    EXPECT_EQ(AskText(&Remote::GetProperty, "Overture", "Time").text, "5");
    EXPECT_EQ(link->GotoTime("Overture", -5), KXPCode{kNoSuchPlace});
    EXPECT_EQ(link->StopTask("Overture", 1), KXP_OK);
    EXPECT_EQ(AskText(&Remote::GetProperty, "Overture", "Time").text, "5") << "mode 1 stays where it stands";
}

TEST_F(OlderLinkTest, WorksUserScreensWithThePageAsANumber) {
    EXPECT_EQ(link->OpenUserScreen("Panel", 0, 1, 2), KXP_OK);
    EXPECT_EQ(link->GotoPage("Panel", 2), KXP_OK);
    EXPECT_EQ(AskText(&Remote::GetProperty, "Panel", "PageName").text, "Lights");
    EXPECT_EQ(link->GotoPage("Panel", 3), KXPCode{kNoSuchPlace});
    EXPECT_EQ(link->CloseUserScreen("Panel"), KXP_OK);
}

TEST_F(OlderLinkTest, ReadsAndSetsProperties) {
    std::int32_t number = 1;
    EXPECT_EQ(link->GetPropertyAsInt("Level", "Value", &number), KXP_OK);
    EXPECT_EQ(number, 5);
    EXPECT_EQ(link->GetPropertyAsInt("Mood", "Value", &number), KXP_OK);
    EXPECT_EQ(number, 0) << "text that is no number";
    number = 1;
    EXPECT_EQ(link->GetPropertyAsInt("Level", "Colour", &number), KXPCode{kNoSuchProperty});
    EXPECT_EQ(number, 0);
    EXPECT_EQ(link->SetProperty("Level", "Value", "8"), KXP_OK);
    EXPECT_EQ(link->SetPropertyAsInt("Mood", "Value", 3), KXP_OK);
    EXPECT_EQ(TextOf("Mood"), "3");
    EXPECT_EQ(AskText(&Remote::GetProperty, "Level", "Colour").code, KXPCode{kNoSuchProperty});
}

TEST_F(OlderLinkTest, PerformsAndTellsObjects) {
    EXPECT_EQ(AskText(&Remote::Perform, "Overture", "Start", "").text, "Running");
    AwaitMood("first");
    EXPECT_EQ(AskText(&Remote::Perform, "Overture", "Fly", "").code, KXPCode{kNoSuchAction});
    EXPECT_NE(AskText(&Remote::GetObjectList, "", 3u).text.find("Name=\"Overture\""), std::string::npos);
    EXPECT_NE(AskText(&Remote::GetObject, "Hall", std::uint16_t{0}).text.find("Temperature"), std::string::npos);
    EXPECT_EQ(link->LoadShow("Matinee", 3), KXP_OK);
    EXPECT_EQ(TextOf("Mood"), "noon");
}

TEST_F(OlderLinkTest, RegistersForGroupsThatExistAndTellsNothing) {
    EXPECT_EQ(link->RegisterGroup(nullptr, "House"), KXP_OK);
    EXPECT_EQ(link->RegisterGroup(nullptr, kGrantedGroup), KXP_OK);
    EXPECT_EQ(link->RegisterGroup(nullptr, "Nowhere"), KXPCode{kNoSuchObject});
    EXPECT_EQ(link->RegisterGroup(nullptr, "Closed"), KXPCode{kRefused});
    EXPECT_EQ(link->RegisterGroup(nullptr, nullptr), KXP_NULL_ARGUMENT);
    EXPECT_EQ(link->UnregisterGroup(), KXP_OK);
}

TEST_F(OlderLinkTest, AnswersThatTheShowHasNoSuchObject) {
    std::int32_t number = 5;
    const KXPCode codes[] = {link->OpenUserScreen("s", 0, 0, 0),
                             link->CloseUserScreen("s"),
                             link->GotoPage("s", 1),
                             link->StartTask("t"),
                             link->PauseTask("t"),
                             link->StopTask("t", 0),
                             link->GotoLabel("t", "l"),
                             link->GotoLine("t", 1),
                             link->GotoTime("t", 1),
                             link->LoadShow("s", 0),
                             link->SetProperty("o", "p", "v"),
                             link->SetPropertyAsInt("o", "p", 1),
                             link->GetPropertyAsInt("o", "p", &number),
                             AskText(&Remote::GetObjectList, "o", 0u).code,
                             AskText(&Remote::GetProperty, "o", "p").code,
                             AskText(&Remote::GetObject, "o", std::uint16_t{1}).code,
                             AskText(&Remote::Perform, "o", "a", "<p/>").code};
    for (const KXPCode code : codes)
        EXPECT_EQ(code, KXPCode{kNoSuchObject});
    EXPECT_EQ(link->StartTask("Stubborn"), KXPCode{kRefused});
    EXPECT_EQ(link->StartTask(nullptr), KXP_NULL_ARGUMENT);
    EXPECT_EQ(link->GetProperty("Level", "Value", nullptr), KXP_NULL_ARGUMENT);
    EXPECT_EQ(link->GetPropertyAsInt("Level", "Value", nullptr), KXP_NULL_ARGUMENT);
    EXPECT_EQ(link->Reserved14(nullptr), KXP_NOT_IMPLEMENTED);
    EXPECT_EQ(link->Reserved15(nullptr), KXP_NOT_IMPLEMENTED);
    EXPECT_EQ(QueryFace<IManagerRemote>(link, "IManagerRemote"), link);
    link->FreeText(nullptr);
}

TEST_F(OlderLinkTest, KeepsACallerOfWhatNeverEndsUntilTheWaitingIsEnded) {
    auto waiting = std::async(std::launch::async, [this] { return link->StartTask("Endless"); });
    EXPECT_EQ(link->StartTask("Overture"), KXP_OK) << "others are served";
    EXPECT_EQ(waiting.wait_for(std::chrono::milliseconds(0)), std::future_status::timeout);
    host.EndWaitingOfOlderLink();
    ASSERT_EQ(waiting.wait_for(kLong), std::future_status::ready);
    EXPECT_EQ(waiting.get(), KXPCode{kEnding});
    EXPECT_EQ(link->StartTask("Endless"), KXPCode{kEnding}) << "from then on nobody is kept";
    EXPECT_EQ(link->StartTask("Overture"), KXP_OK) << "what is quick is served to the end";
}
