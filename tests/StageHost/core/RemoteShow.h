#pragma once

#include <string>

#include <gtest/gtest.h>

#include "ExecContext.h"
#include "Host.h"
#include "HostCodes.h"
#include "MainWait.h"
#include "ValueFactory.h"

/// A show with one object of each kind, and the two links to it. Tests ask by a link and look at the answer.
namespace stagehost {

inline constexpr std::chrono::seconds kLong(20);

/// What a script sees of one request.
struct Asked {
    KXPCode code = 0;      ///< in the end
    KXPCode firstCode = 0; ///< of the call itself
    std::string text;
};

class RemoteShow : public testing::Test {
protected:
    explicit RemoteShow(Link link)
        : host(SettingsWith(link), Objects()) {
        AddVariable("Level", KXP_INTEGER_DATA, "5");
        AddVariable("Mood", KXP_STRING_DATA, "calm");
        AddVariable("Other", KXP_STRING_DATA, "");
    }

    void AddVariable(const char* name, std::uint32_t type, const char* text) {
        ValueSpec spec;
        spec.name = name;
        spec.type = type;
        spec.text = text;
        ASSERT_TRUE(host.Variables().Add(MakeValue(spec)));
    }

    std::string TextOf(const char* variable) { return host.Variables().Find(variable)->Text(); }

    /// Tasks set it when their thread gets to it.
    void AwaitMood(const char* text) {
        const auto mood = host.Variables().Find("Mood");
        const Observation look = mood->Observe(&MainWait::Wake);
        EXPECT_TRUE(MainWait::Until([&] { return mood->Text() == text; }, kLong)) << mood->Text();
    }

    static HostSettings SettingsWith(Link link) {
        HostSettings settings;
        settings.link = link;
        return settings;
    }

    static ActionSpec Sets(const char* variable, const char* value) {
        ActionSpec action;
        action.sets = {{variable, value}};
        return action;
    }

    /// A task whose lines set "Mood"; the second comes after a day.
    static TaskSpec Task(const char* name, Conduct conduct = Conduct::Normal) {
        constexpr std::int32_t kDay = 24 * 60 * 60 * 1000;
        return {name, {{0, "begin", Sets("Mood", "first")}, {kDay, "late", Sets("Mood", "second")}}, conduct};
    }

    static ShowSpec Objects() {
        ShowSpec spec;
        spec.tasks = {Task("Overture"), Task("Stubborn", Conduct::Refuses), Task("Endless", Conduct::NeverEnds)};
        spec.cues = {{"Thunder", Sets("Mood", "thunder"), Conduct::Normal}};
        spec.screens = {{"Panel", {"Main", "Lights"}, Conduct::Normal}};
        spec.groups = {{"House", {"Level", "Overture"}, {{"Inner", {"Mood"}, {}, Conduct::Normal}}, Conduct::Normal},
                       {"Closed", {}, {}, Conduct::Refuses}};
        spec.objects = {
            {"Hall", {{"Temperature", "21"}}, {{"Door", {{"Locked", "no"}}, {}, Conduct::Normal}}, Conduct::Normal}};
        spec.shows = {{"Matinee", Sets("Mood", "noon"), Conduct::Normal}};
        return spec;
    }

    Host host;
};

/// Asks by the newer link and waits for the end.
class NewerShow : public RemoteShow {
protected:
    NewerShow()
        : RemoteShow(Link::Newer)
        , link(QueryFace<IManagerRemoteManager2>(host.Root(), "IManagerRemoteManager2")->GetRemote(Owner())) {}

    /// A device that is only ever pointed at.
    IKXPDevice* Owner() { return reinterpret_cast<IKXPDevice*>(&host); }

    template <typename Operation, typename... Arguments>
    Asked Ask(Operation operation, Arguments... arguments) {
        auto* context = new ExecContext();
        Asked asked;
        asked.firstCode = (link->*operation)(arguments..., context, nullptr);
        asked.code = asked.firstCode;
        if (asked.firstCode == KXP_PENDING) {
            EXPECT_TRUE(context->WaitEnded(kLong));
            asked.code = context->ErrorCode();
        } else {
            EXPECT_EQ(context->GetState(), ExecContext::kCreated) << "what fails at once leaves the context alone";
        }
        asked.text = context->ResultText();
        context->Release();
        return asked;
    }

    IManagerRemote2* link;
};

/// Asks by the older link.
class OlderShow : public RemoteShow {
protected:
    OlderShow()
        : RemoteShow(Link::Older)
        , link(QueryFace<IManagerRemoteManager>(host.Root(), "IManagerRemoteManager")->GetRemote()) {}

    template <typename Operation, typename... Arguments>
    Asked AskText(Operation operation, Arguments... arguments) {
        char* text = nullptr;
        Asked asked;
        asked.code = (link->*operation)(arguments..., &text);
        EXPECT_EQ(text != nullptr, asked.code == KXP_OK) << "a text is given on success alone";
        asked.text = text == nullptr ? "" : text;
        link->FreeText(&text);
        EXPECT_EQ(text, nullptr);
        return asked;
    }

    IManagerRemote* link;
};

} // namespace stagehost
