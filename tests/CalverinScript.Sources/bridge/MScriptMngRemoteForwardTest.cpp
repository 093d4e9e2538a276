#include <climits>
#include <functional>
#include <thread>

#include <gtest/gtest.h>
#include <QVariant>

#include "FakeRemotes.h"
#include "FakeScriptDevice.h"
#include "MScriptMngRemote.h"

namespace {

enum class Gives { Code, ZeroOnTheOlderLink, Text, Number };

/// A method that goes through to the host, with the calls that each link then sees, joined with ";".
struct Forwarded {
    const char* name;
    std::function<QVariant(MScriptMngRemote&)> call;
    const char* newer;
    const char* older;
    Gives gives = Gives::Code;
};

const QString kA = QStringLiteral("A");
const QString kB = QStringLiteral("B");
const QString kC = QStringLiteral("C");
constexpr KXPCode kCodes[] = {1, 16, 19, 22, 48, 0x7FFFFFFF, 0xFFFFFFFF};

// clang-format off
const Forwarded kForwarded[] = {
    {"OpenUserScreen", [](auto& q) { return q.OpenUserScreen(kA, 1, -2, 3); }, "OpenUserScreen|A|1|-2|3", "OpenUserScreen|A|1|-2|3"},
    {"OpenUserScreenDefaults", [](auto& q) { return q.OpenUserScreen(); }, "OpenUserScreen||0|0|0", "OpenUserScreen||0|0|0"},
    {"CloseUserScreen", [](auto& q) { return q.CloseUserScreen(kA); }, "CloseUserScreen|A", "CloseUserScreen|A"},
    {"CloseUserScreenDefaults", [](auto& q) { return q.CloseUserScreen(); }, "CloseUserScreen|", "CloseUserScreen|"},
    {"GotoPage", [](auto& q) { return q.GotoPage(kA, 3); }, "GotoPage|A|3", "GotoPage|A|3"},
    {"GotoPageLowest", [](auto& q) { return q.GotoPage(kA, INT_MIN); }, "GotoPage|A|-2147483648", "GotoPage|A|-2147483648"},
    {"GotoPageDefaults", [](auto& q) { return q.GotoPage(); }, "GotoPage||0", "GotoPage||0"},
    {"StartTask", [](auto& q) { return q.StartTask(kA); }, "StartTask|A", "StartTask|A"},
    {"StartTaskDefaults", [](auto& q) { return q.StartTask(); }, "StartTask|", "StartTask|"},
    {"PauseTask", [](auto& q) { return q.PauseTask(kA); }, "PauseTask|A", "PauseTask|A"},
    {"PauseTaskDefaults", [](auto& q) { return q.PauseTask(); }, "PauseTask|", "PauseTask|"},
    {"StopTask", [](auto& q) { return q.StopTask(kA, -5); }, "StopTask|A|-5", "StopTask|A|-5"},
    {"StopTaskDefaults", [](auto& q) { return q.StopTask(); }, "StopTask||0", "StopTask||0"},
    {"GotoLabel", [](auto& q) { return q.GotoLabel(kA, kB); }, "GotoLabel|A|B", "GotoLabel|A|B"},
    {"GotoLabelDefaults", [](auto& q) { return q.GotoLabel(); }, "GotoLabel||", "GotoLabel||"},
    {"GotoLine", [](auto& q) { return q.GotoLine(kA, 12); }, "GotoLine|A|12", "GotoLine|A|12"},
    {"GotoLineDefaults", [](auto& q) { return q.GotoLine(); }, "GotoLine||0", "GotoLine||0"},
    {"GotoTime", [](auto& q) { return q.GotoTime(kA, INT_MAX); }, "GotoTime|A|2147483647", "GotoTime|A|2147483647"},
    {"GotoTimeDefaults", [](auto& q) { return q.GotoTime(); }, "GotoTime||0", "GotoTime||0"},
    {"LoadShow", [](auto& q) { return q.LoadShow(kA, 7); }, "LoadShow|A|7", "LoadShow|A|7"},
    {"LoadShowDefaults", [](auto& q) { return q.LoadShow(); }, "LoadShow||0", "LoadShow||0"},
    {"RegisterGroup", [](auto& q) { return q.RegisterGroup(kA); }, "SetHandler;RegisterGroup|A|", "RegisterGroup|A"},
    {"RegisterGroupForEvents", [](auto& q) { return q.RegisterGroup(kA, true); },
        "SetHandler;RegisterGroup|A|<Options><Option name=\"acceptevents\" value=\"true\" /></Options>", "RegisterGroup|A"},
    {"RegisterGroupDefaults", [](auto& q) { return q.RegisterGroup(); }, "SetHandler;RegisterGroup||", "RegisterGroup|"},
    {"UnregisterGroup", [](auto& q) { return q.UnregisterGroup(kA); }, "UnregisterGroup|A", "UnregisterGroup", Gives::ZeroOnTheOlderLink},
    {"UnregisterGroupDefaults", [](auto& q) { return q.UnregisterGroup(); }, "UnregisterGroup|", "UnregisterGroup", Gives::ZeroOnTheOlderLink},
    {"GetObjectList", [](auto& q) { return q.GetObjectList(kA, 30); }, "GetObjectList|A|30", "GetObjectList|A|30", Gives::Text},
    {"GetObjectListDefaults", [](auto& q) { return q.GetObjectList(); }, "GetObjectList||0", "GetObjectList||0", Gives::Text},
    {"GetObject", [](auto& q) { return q.GetObject(kA, 65535); }, "GetObject|A|65535", "GetObject|A|65535", Gives::Text},
    {"GetObjectDefaults", [](auto& q) { return q.GetObject(); }, "GetObject||0", "GetObject||0", Gives::Text},
    {"SetProperty", [](auto& q) { return q.SetProperty(kA, kB, kC); }, "SetProperty|A|B|C", "SetProperty|A|B|C"},
    {"SetPropertyDefaults", [](auto& q) { return q.SetProperty(); }, "SetProperty|||", "SetProperty|||"},
    {"SetPropertyAsInt", [](auto& q) { return q.SetPropertyAsInt(kA, kB, -1); }, "SetPropertyAsInt|A|B|-1", "SetPropertyAsInt|A|B|-1"},
    {"SetPropertyAsIntDefaults", [](auto& q) { return q.SetPropertyAsInt(); }, "SetPropertyAsInt|||0", "SetPropertyAsInt|||0"},
    {"GetProperty", [](auto& q) { return q.GetProperty(kA, kB); }, "GetProperty|A|B", "GetProperty|A|B", Gives::Text},
    {"GetPropertyDefaults", [](auto& q) { return q.GetProperty(); }, "GetProperty||", "GetProperty||", Gives::Text},
    {"GetPropertyAsInt", [](auto& q) { return q.GetPropertyAsInt(kA, kB); }, "GetProperty|A|B", "GetPropertyAsInt|A|B", Gives::Number},
    {"GetPropertyAsIntDefaults", [](auto& q) { return q.GetPropertyAsInt(); }, "GetProperty||", "GetPropertyAsInt||", Gives::Number},
    {"Perform", [](auto& q) { return q.Perform(kA, kB, QStringLiteral("xml"), kC, kA); }, "Perform|A|B|C", "Perform|A|B|C", Gives::Text},
    {"PerformWithAList", [](auto& q) { return q.Perform(kA, kB, QString()); }, "Perform|A|B|<parameters />\n", "Perform|A|B|<parameters />\n", Gives::Text},
    {"PerformDefaults", [](auto& q) { return q.Perform(); }, "Perform|||", "Perform|||", Gives::Text},
};
// clang-format on

std::string Joined(const std::vector<std::string>& calls) {
    std::string joined;
    for (const std::string& call : calls)
        joined += (joined.empty() ? "" : ";") + call;
    return joined;
}

class Forwarding : public testing::TestWithParam<Forwarded> {
protected:
    void SetUp() override {
        newer.text = older.text = "12";
        older.number = 12;
    }
    QVariant Call(IManagerRemote* olderLink, IManagerRemote2* newerLink, IScriptDevice* owner) {
        MScriptMngRemote remote(owner, olderLink, newerLink, nullptr, nullptr);
        return GetParam().call(remote);
    }
    bool IsCode() const { return GetParam().gives == Gives::Code || GetParam().gives == Gives::ZeroOnTheOlderLink; }
    /// What the method gives for a code of the host, and "12" as its text.
    QVariant Given(KXPCode code) const {
        if (IsCode())
            return code;
        const bool done = code == KXP_OK;
        return GetParam().gives == Gives::Text ? QVariant(done ? QStringLiteral("12") : QStringLiteral(""))
                                               : QVariant(done ? 12 : 0);
    }
    QVariant GivenByTheOlder(KXPCode code) const {
        return Given(GetParam().gives == Gives::ZeroOnTheOlderLink ? KXPCode{KXP_OK} : code);
    }

    FakeScriptDevice device;
    FakeRemote older;
    FakeRemote2 newer;
};

TEST_P(Forwarding, PrefersTheNewerLinkAndGivesItsAnswer) {
    EXPECT_EQ(Call(&older, &newer, &device), Given(KXP_OK));
    EXPECT_EQ(Joined(newer.calls), GetParam().newer);
    EXPECT_NE(newer.lastContext, nullptr);
    EXPECT_TRUE(older.calls.empty());
}

TEST_P(Forwarding, TakesTheOlderLinkWithoutTheNewerAndFreesItsText) {
    EXPECT_EQ(Call(&older, nullptr, &device), GivenByTheOlder(KXP_OK));
    const std::string freed = GetParam().gives == Gives::Text ? ";FreeText" : "";
    EXPECT_EQ(Joined(older.calls), GetParam().older + freed);
    EXPECT_EQ(older.textsOut, 0);
}

TEST_P(Forwarding, WithoutALinkGivesNineteenOrNothing) {
    EXPECT_EQ(Call(nullptr, nullptr, &device), Given(KXP_NOT_IMPLEMENTED));
}

TEST_P(Forwarding, PassesCodesThroughAndGivesNoTextWithThem) {
    for (const KXPCode code : kCodes) {
        newer.code = older.code = code;
        EXPECT_EQ(Call(nullptr, &newer, &device), Given(code)) << code;
        older.calls.clear();
        EXPECT_EQ(Call(&older, nullptr, &device), GivenByTheOlder(code)) << code;
        EXPECT_EQ(Joined(older.calls), GetParam().older);
    }
}

TEST_P(Forwarding, WaitsForAPendingAnswerAndTakesItFromTheContext) {
    for (const KXPCode code : {KXPCode{KXP_OK}, KXPCode{5}}) {
        newer.code = KXP_PENDING;
        newer.text = nullptr;
        std::thread host;
        newer.onCall = [&](IExecContext2* context) {
            context->Begin();
            host = std::thread([context, code] {
                context->SetResultText("12");
                context->SetErrorCode(code);
                context->End();
            });
        };
        EXPECT_EQ(Call(&older, &newer, &device), Given(code)) << code;
        host.join();
    }
}

TEST_P(Forwarding, OfTheOlderLinkKnowsNoPendingAnswer) {
    older.code = KXP_PENDING;
    EXPECT_EQ(Call(&older, nullptr, &device), GivenByTheOlder(KXP_PENDING));
}

TEST_P(Forwarding, WithoutATextGivesNothingAndFreesNothing) {
    newer.text = older.text = nullptr;
    const QVariant nothing = IsCode() ? Given(KXP_OK) : Given(KXP_NOT_IMPLEMENTED);
    EXPECT_EQ(Call(nullptr, &newer, &device), nothing);
    older.number = 0;
    EXPECT_EQ(Call(&older, nullptr, &device), nothing);
    EXPECT_EQ(Joined(older.calls), GetParam().older);
}

TEST_P(Forwarding, OfAnEndingDeviceNeverReachesTheHost) {
    device.ending = true;
    EXPECT_EQ(Call(&older, &newer, &device), Given(KXP_NOT_IMPLEMENTED));
    EXPECT_EQ(Call(&older, nullptr, &device), Given(KXP_NOT_IMPLEMENTED));
    EXPECT_TRUE(newer.calls.empty());
    EXPECT_TRUE(older.calls.empty());
}

TEST_P(Forwarding, NeedsNoDevice) {
    EXPECT_EQ(Call(nullptr, &newer, nullptr), Given(KXP_OK));
    EXPECT_EQ(Call(&older, nullptr, nullptr), GivenByTheOlder(KXP_OK));
}

INSTANTIATE_TEST_SUITE_P(Methods, Forwarding, testing::ValuesIn(kForwarded),
                         [](const auto& row) { return std::string(row.param.name); });

/// What the table does not say.
class HostCalls : public testing::Test {
protected:
    FakeRemote older;
    FakeRemote2 newer;
    MScriptMngRemote onNewer{nullptr, nullptr, &newer, nullptr, nullptr};
    MScriptMngRemote onOlder{nullptr, &older, nullptr, nullptr, nullptr};
};

TEST_F(HostCalls, OpenAUserScreenOnlyAtPositionsZeroAndOne) {
    for (const int position : {-1, 2, 3, INT_MIN, INT_MAX}) {
        EXPECT_EQ(onNewer.OpenUserScreen(kA, position), 19u) << position;
        EXPECT_EQ(onOlder.OpenUserScreen(kA, position), 19u) << position;
    }
    EXPECT_TRUE(newer.calls.empty());
    EXPECT_TRUE(older.calls.empty());
    EXPECT_EQ(onNewer.OpenUserScreen(kA, 0), KXP_OK);
    EXPECT_EQ(onNewer.OpenUserScreen(kA, 1), KXP_OK);
    EXPECT_EQ(newer.calls.size(), 2u);
}

TEST_F(HostCalls, ListObjectsOnlyOfKnownTypes) {
    newer.text = older.text = "list";
    for (const uint type : {31u, 32u, 99u, 101u, 999u, 1001u, UINT_MAX}) {
        EXPECT_EQ(onNewer.GetObjectList(QString(), type), QString()) << type;
        EXPECT_EQ(onOlder.GetObjectList(QString(), type), QString()) << type;
    }
    EXPECT_TRUE(newer.calls.empty());
    EXPECT_TRUE(older.calls.empty());
    for (const uint type : {0u, 1u, 30u, 100u, 1000u}) {
        EXPECT_EQ(onNewer.GetObjectList(QString(), type), QStringLiteral("list")) << type;
        EXPECT_EQ(newer.calls.back(), "GetObjectList||" + std::to_string(type));
        EXPECT_EQ(onOlder.GetObjectList(QString(), type), QStringLiteral("list")) << type;
    }
}

TEST_F(HostCalls, ReadATextThatIsNoNumberAsZeroOnTheNewerLink) {
    const std::pair<const char*, int> rows[] = {{"abc", 0}, {"12abc", 0}, {"1.5", 0},        {"", 0},
                                                {"-7", -7}, {" 7 ", 7},   {"99999999999", 0}};
    for (const auto& [text, number] : rows) {
        newer.text = text;
        EXPECT_EQ(onNewer.GetPropertyAsInt(kA, kB), number) << text;
    }
}

TEST_F(HostCalls, DropTheNumberOfARefusedReadOnTheOlderLink) {
    older.number = 9;
    older.code = 48;
    EXPECT_EQ(onOlder.GetPropertyAsInt(kA, kB), 0);
}

TEST_F(HostCalls, BindTheHandlerWithEachGroup) {
    onNewer.RegisterGroup(kA);
    EXPECT_EQ(newer.handler, &onNewer);
    onOlder.RegisterGroup(kA, true);
    EXPECT_EQ(older.handler, &onOlder);
}

TEST_F(HostCalls, TravelAsLatinOneWithQuestionMarksBeyond) {
    newer.text = older.text = "\xe9";
    const QString text = QString::fromUtf8("\u00e9\u20ac");
    EXPECT_EQ(onNewer.Perform(text, text, QStringLiteral("XML"), text), QString(QChar(0xe9)));
    EXPECT_EQ(newer.calls.back(), "Perform|\xe9?|\xe9?|\xe9?");
    EXPECT_EQ(onOlder.GetProperty(text, text), QString(QChar(0xe9)));
    EXPECT_EQ(older.calls.front(), "GetProperty|\xe9?|\xe9?");
}

} // namespace
