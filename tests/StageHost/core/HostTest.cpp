#include "Host.h"

#include <cstring>

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "BorderText.h"
#include "HostCodes.h"
#include "UserDialogs.h"
#include "ValueFactory.h"

using namespace stagehost;

namespace {

HostSettings With(Link link) {
    HostSettings settings;
    settings.link = link;
    return settings;
}

constexpr const char* kAlways[] = {"IMInterface",    "IObjectFactoryManager", "IManagerRuntimeInfo",
                                   "IFolderManager", "IVariableManager",      "IObjectNameTools"};

/// An object factory that is only ever pointed at.
IObjectFactory* SomeFactory() {
    static int place = 0;
    return reinterpret_cast<IObjectFactory*>(&place);
}

} // namespace

TEST(Host, AnswersForEveryServiceOnEveryFace) {
    Host host(With(Link::Newer));
    for (const char* from : kAlways) {
        auto* face = QueryFace<IMInterface>(host.Root(), from);
        ASSERT_NE(face, nullptr) << from;
        for (const char* to : kAlways)
            EXPECT_EQ(QueryFace<IMInterface>(face, to), QueryFace<IMInterface>(host.Root(), to)) << from << " " << to;
        EXPECT_EQ(face->Release(), KXP_OK);
    }
    void* out = &out;
    EXPECT_EQ(host.Root()->QueryInterface("INothing", &out), KXP_NO_INTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(host.Root()->QueryInterface(nullptr, &out), KXP_BAD_INTERFACE_ARG);
    EXPECT_EQ(host.Root()->QueryInterface("IMInterface", nullptr), KXP_BAD_INTERFACE_ARG);
}

TEST(Host, OffersTheLinkThatWasChosen) {
    const auto offers = [](Link link, const char* name) {
        Host host(With(link));
        return QueryFace<IMInterface>(host.Root(), name) != nullptr;
    };
    EXPECT_TRUE(offers(Link::Both, "IManagerRemoteManager2"));
    EXPECT_TRUE(offers(Link::Both, "IManagerRemoteManager"));
    EXPECT_TRUE(offers(Link::Newer, "IManagerRemoteManager2"));
    EXPECT_FALSE(offers(Link::Newer, "IManagerRemoteManager"));
    EXPECT_TRUE(offers(Link::Older, "IManagerRemoteManager"));
    EXPECT_FALSE(offers(Link::Older, "IManagerRemoteManager2"));
    EXPECT_FALSE(offers(Link::None, "IManagerRemoteManager"));
    EXPECT_FALSE(offers(Link::None, "IManagerRemoteManager2"));
}

TEST(Host, LetsTheUserChooseADateWhenItHasAWindow) {
    class User final : public UserDialogs {
    public:
        std::optional<CalendarDay> day;
        CalendarDay shown;
        std::optional<std::size_t> ChooseName(const std::string&, const std::vector<std::string>&, int,
                                              KXPWindow) override {
            return std::nullopt;
        }
        std::optional<CalendarDay> ChooseDay(const CalendarDay& chosen, KXPWindow) override {
            shown = chosen;
            return day;
        }
    } user;
    Host silent{HostSettings()};
    EXPECT_EQ(QueryFace<IDialogManager2>(silent.Root(), "IDialogManager2"), nullptr);
    HostSettings settings;
    settings.dialogs = &user;
    Host host(settings);
    auto* dialogs = QueryFace<IDialogManager2>(host.Root(), "IDialogManager2");
    ASSERT_NE(dialogs, nullptr);
    IDateDialog* dialog = dialogs->CreateDateDialog();
    dialog->SetDate(2026, 12, 24);
    EXPECT_EQ(dialog->Run(), 13u);
    EXPECT_EQ(user.shown.year * 10000 + user.shown.month * 100 + user.shown.day, 20261224);
    EXPECT_EQ(dialog->GetDay(), 24) << "cancelled keeps the date";
    user.day = CalendarDay{2027, 1, 2};
    EXPECT_EQ(dialog->Run(), 0u);
    EXPECT_EQ(dialog->GetYear() * 10000 + dialog->GetMonth() * 100 + dialog->GetDay(), 20270102);
    EXPECT_EQ(dialog->Release(), KXP_OK);
}

TEST(Host, TellsItsNameAndVersionInTheRecord) {
    HostSettings settings;
    settings.appName = "a name that is longer than the record's field";
    settings.userMode = 3;
    Host host(settings);
    auto* info = QueryFace<IManagerRuntimeInfo>(host.Root(), "IManagerRuntimeInfo");
    KXPRuntimeInfo record{};
    EXPECT_EQ(info->GetRuntimeInfo(&record), 0u) << "the caller has to say the size";
    record.size = sizeof(record);
    EXPECT_NE(info->GetRuntimeInfo(&record), 0u);
    EXPECT_STREQ(record.version, "6.7.2");
    EXPECT_EQ(std::strlen(record.appName), 27u);
    EXPECT_EQ(info->GetRuntimeInfo(nullptr), 0u);
    EXPECT_EQ(info->GetUserMode(), 3u);
    EXPECT_EQ(info->GetMainWindow(), 0u);
}

TEST(Host, OffersALogWhenItHasOne) {
    std::uint32_t enabled = 0;
    std::uint32_t writer = 0;
    std::uint32_t levels = 0;
    std::uint32_t option = 7;
    char path[KXP_LOG_PATH_SIZE] = {};
    Host silent{HostSettings()};
    auto* info = QueryFace<IManagerRuntimeInfo>(silent.Root(), "IManagerRuntimeInfo");
    EXPECT_EQ(info->GetLogSettings(&enabled, &writer, path, &levels, &option), 0xFFFFFFFFu);
    HostSettings settings;
    settings.log.path = "some.log";
    Host logging(settings);
    info = QueryFace<IManagerRuntimeInfo>(logging.Root(), "IManagerRuntimeInfo");
    EXPECT_LT(info->GetLogSettings(&enabled, &writer, path, &levels, &option), 0xFFFFFFFFu);
    EXPECT_STREQ(path, "some.log");
    EXPECT_EQ(enabled, 1u);
    EXPECT_EQ(levels, 0xF0u);
    EXPECT_LT(info->GetLogSettings(nullptr, nullptr, nullptr, nullptr, nullptr), 0xFFFFFFFFu);
}

TEST(Host, MakesAFolderWhenItIsAskedFor) {
    const QTemporaryDir place;
    const QString folder = place.filePath(QStringLiteral("made"));
    HostSettings settings;
    settings.folders[33] = ToBorderText(folder);
    Host host(settings);
    auto* folders = QueryFace<IFolderManager>(host.Root(), "IFolderManager");
    EXPECT_FALSE(QDir(folder).exists());
    EXPECT_STREQ(folders->GetFolder(33), ToBorderText(folder).c_str());
    EXPECT_TRUE(QDir(folder).exists());
    EXPECT_EQ(folders->GetFolder(1), nullptr);
}

TEST(Host, FindsVariablesByTheirName) {
    Host host{HostSettings()};
    ValueSpec spec;
    spec.name = "level";
    ASSERT_TRUE(host.Variables().Add(MakeValue(spec)));
    EXPECT_FALSE(host.Variables().Add(MakeValue(spec))) << "a name is given once";
    spec.name.clear();
    EXPECT_FALSE(host.Variables().Add(MakeValue(spec)));
    auto* manager = QueryFace<IVariableManager>(host.Root(), "IVariableManager");
    ASSERT_NE(manager->FindVariable("level"), nullptr);
    EXPECT_NE(manager->FindVariable("level")->GetInstanceID(), 0u);
    EXPECT_EQ(manager->FindVariable("Level"), nullptr);
    EXPECT_EQ(manager->FindVariable(nullptr), nullptr);
    EXPECT_EQ(manager->Reserved1(nullptr), KXP_NOT_IMPLEMENTED);
}

TEST(Host, KeepsTheFactoriesOfTheModule) {
    Host host{HostSettings()};
    auto* factories = QueryFace<IObjectFactoryManager>(host.Root(), "IObjectFactoryManager");
    EXPECT_EQ(factories->RegisterFactory(nullptr, SomeFactory()), KXP_NULL_ARGUMENT);
    EXPECT_EQ(factories->RegisterFactory("a", nullptr), KXP_NULL_ARGUMENT);
    EXPECT_EQ(factories->RegisterFactory("a", SomeFactory()), KXP_OK);
    EXPECT_EQ(static_cast<FactoryManager*>(factories)->Find("a"), SomeFactory());
    EXPECT_EQ(factories->UnregisterFactory("a"), KXP_OK);
    EXPECT_EQ(factories->UnregisterFactory("a"), KXPCode{kUnknownFactory});
    EXPECT_EQ(factories->UnregisterFactory(nullptr), KXP_NULL_ARGUMENT);
}

TEST(Host, AllowsNamesByItsRule) {
    for (const char* name : {"a", "Desk 1", "_x", "L\xE4mpchen", "a-b", "1"})
        EXPECT_TRUE(IsObjectName(name)) << name;
    for (const char* name : {"", " a", "a ", "a.b", "a;b", "a/b", "a\\b", "a\"b", "<a", "a>", "a&b", "a\nb", "a\x85"})
        EXPECT_FALSE(IsObjectName(name)) << name;
    EXPECT_FALSE(IsObjectName(nullptr));
    EXPECT_TRUE(IsObjectName(std::string(128, 'a').c_str()));
    EXPECT_FALSE(IsObjectName(std::string(129, 'a').c_str()));
    Host host{HostSettings()};
    auto* tools = QueryFace<IObjectNameTools>(host.Root(), "IObjectNameTools");
    EXPECT_NE(tools->IsValidName("a"), 0u);
    EXPECT_EQ(tools->IsValidName("a.b"), 0u);
}
