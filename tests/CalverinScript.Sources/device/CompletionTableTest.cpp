#include "CompletionTable.h"

#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <QStandardItemModel>

#include "ListingRemote.h"
#include "ScriptCalls.h"

namespace {

constexpr int kCalls = static_cast<int>(std::size(kScriptCalls));

class OneLink : public IManagerRemoteManager {
public:
    virtual ~OneLink() = default;
    IManagerRemote* link = nullptr;
    KXPCode QueryInterface(const char*, void**) override { return KXP_NO_INTERFACE; }
    KXPCode Release() override { return KXP_OK; }
    IManagerRemote* GetRemote() override { return link; }
};

/// The completion table over a host that lists its objects.
class TheCompletionTable : public testing::Test {
protected:
    void SetUp() override { manager.link = &link; }
    void Fill() { FillCompletionTable(table, ReadObjectLists(&manager)); }
    /// "name: category" of the rows behind the calls.
    std::vector<std::string> Objects() const {
        std::vector<std::string> rows;
        for (int row = kCalls; row < table.rowCount(); ++row)
            rows.push_back(Text(row, Qt::DisplayRole) + ": " + Text(row, Qt::ToolTipRole));
        return rows;
    }
    std::string Text(int row, int role) const { return table.item(row)->data(role).toString().toStdString(); }

    ListingRemote link;
    OneLink manager;
    QStandardItemModel table;
};

using Rows = std::vector<std::string>;

TEST_F(TheCompletionTable, BeginsWithTheCallsInTheirOrder) {
    Fill();
    ASSERT_EQ(table.columnCount(), 1);
    ASSERT_EQ(table.rowCount(), kCalls);
    for (int row = 0; row < kCalls; ++row) {
        EXPECT_EQ(Text(row, Qt::DisplayRole), kScriptCalls[row].name);
        EXPECT_EQ(Text(row, Qt::UserRole), kScriptCalls[row].insertion);
        EXPECT_EQ(Text(row, Qt::ToolTipRole), kScriptCalls[row].signature);
    }
}

TEST_F(TheCompletionTable, HoldsTheCallsAloneWithoutALink) {
    manager.link = nullptr;
    Fill();
    EXPECT_EQ(table.rowCount(), kCalls);
    FillCompletionTable(table, ReadObjectLists(nullptr));
    EXPECT_EQ(table.rowCount(), kCalls) << "it was emptied before";
}

TEST_F(TheCompletionTable, AsksForTheSixListsOfTheGrantedGroupAndGivesEverythingBack) {
    link.lists[6] = "<Objects/>";
    link.lists[27] = "<Objects/>";
    Fill();
    EXPECT_EQ(link.calls, (Rows{"RegisterGroup|GrantedRootGroup", "GetObjectList|GrantedRootGroup|27", "FreeText",
                                "GetObjectList|GrantedRootGroup|1", "GetObjectList|GrantedRootGroup|3",
                                "GetObjectList|GrantedRootGroup|28", "GetObjectList|GrantedRootGroup|8",
                                "GetObjectList|GrantedRootGroup|6", "FreeText", "UnregisterGroup"}));
    EXPECT_EQ(link.handler, nullptr);
    EXPECT_EQ(link.textsOut, 0);
    EXPECT_EQ(link.released, 1);
}

TEST_F(TheCompletionTable, ShowsTheObjectsByTheirKindsWithTheirCategoryAndInsertsTheirNames) {
    link.lists[6] = "<Objects><Object Name='v' Type='Variable' Value='StringData'/></Objects>";
    link.lists[8] = "<Objects><Object Name='s' Type='UserScreen' Value=''/></Objects>";
    link.lists[28] = "<Objects><Object Name='c' Type='Cue' Value=''/></Objects>";
    link.lists[3] = "<Objects><Object Name='t' Type='Task' Value=''/></Objects>";
    link.lists[1] = "<Objects><Object Name='d' Type='Device' Value=''/></Objects>";
    link.lists[27] = "<Objects><Object Name='g' Type='UserGroup'/></Objects>";
    Fill();
    EXPECT_EQ(Objects(), (Rows{"g: User Group name", "d: Device name", "t: Task name", "c: Cue name",
                               "s: User Screen name", "v: String variable"}));
    for (int row = kCalls; row < table.rowCount(); ++row)
        EXPECT_FALSE(table.item(row)->data(Qt::UserRole).isValid()) << row;
}

TEST_F(TheCompletionTable, ShowsVariablesOfSixTypesInTheOrderOfTheList) {
    link.lists[6] = "<Objects><Object Name='a' Type='Variable' Value='DateData'/>"
                    "<Object Name='b' Type='Variable' Value='StringData'/>"
                    "<Object Name='c' Type='Variable' Value='TimeData'/>"
                    "<Object Name='d' Type='Variable' Value='RealData'/>"
                    "<Object Name='e' Type='Variable' Value='EnumData'/>"
                    "<Object Name='f' Type='Variable' Value='IntegerData'/>"
                    "<Object Name='g' Type='Variable' Value='BlobData'/>"
                    "<Object Name='h' Type='Variable' Value='stringData'/></Objects>";
    Fill();
    EXPECT_EQ(Objects(), (Rows{"a: Date variable", "b: String variable", "c: Time variable", "d: Real variable",
                               "e: Enum variable", "f: Integer variable"}));
}

TEST_F(TheCompletionTable, LeavesOutWhatLacksAnAttributeOrIsOfAnotherType) {
    link.lists[1] = "<Objects><Object Type='Device' Value=''/><Object Name='b' Value=''/>"
                    "<Object Name='c' Type='Device'/><Object Name='d' Type='device' Value=''/>"
                    "<Device Name='e' Type='Device' Value=''/><Object Name='f' Type='Device' Value='x'/></Objects>";
    Fill();
    EXPECT_EQ(Objects(), Rows{"f: Device name"});
}

TEST_F(TheCompletionTable, WalksIntoGroupsAndIntoTheGroupOfAllGroupsThoughThatOneIsNotShown) {
    link.lists[27] = "<Objects><Object Name='User Groups' Type='UserGroup' Value=''>"
                     "<Object Name='Stage' Type='UserGroup'><Object Name='Left' Type='UserGroup'/>"
                     "<Object Name='Lamp' Type='Device' Value=''/></Object>"
                     "<Object Name='user groups' Type='UserGroup'/></Object></Objects>";
    Fill();
    EXPECT_EQ(Objects(), (Rows{"Stage: User Group name", "Left: User Group name", "user groups: User Group name"}));
}

TEST_F(TheCompletionTable, LeavesOutTheGroupsBelowAGroupWithoutAName) {
    link.lists[27] = "<Objects><Object Type='UserGroup'><Object Name='Lost' Type='UserGroup'/></Object>"
                     "<Object Name='Found' Type='UserGroup'/></Objects>";
    Fill();
    EXPECT_EQ(Objects(), Rows{"Found: User Group name"});
}

TEST_F(TheCompletionTable, WalksIntoNoObjectButGroups) {
    link.lists[3] = "<Objects><Object Name='a' Type='Task' Value=''><Object Name='b' Type='Task' Value=''/></Object>"
                    "</Objects>";
    Fill();
    EXPECT_EQ(Objects(), Rows{"a: Task name"});
}

TEST_F(TheCompletionTable, AListThatIsNoXmlAddsNothingAndTheOthersStay) {
    link.lists[1] = "<Objects><Object Name='d' Type='Device' Value=''/>";
    link.lists[3] = "";
    link.lists[28] = "<Objects><Object Name='c' Type='Cue' Value=''/></Objects>";
    Fill();
    EXPECT_EQ(Objects(), Rows{"c: Cue name"});
}

TEST_F(TheCompletionTable, ReadsNamesOfHostsWithPlain8BitText) {
    link.lists[1] = "<Objects><Object Name='B\xFChne' Type='Device' Value=''/></Objects>";
    link.lists[3] = "<Objects><Object Name='B&#252;hne' Type='Task' Value=''/></Objects>";
    Fill();
    EXPECT_EQ(Objects(), (Rows{"B\xC3\xBChne: Device name", "B\xC3\xBChne: Task name"}));
}

TEST_F(TheCompletionTable, HoldsNothingOfTheLastTimeWhenItIsFilledAgain) {
    link.lists[1] = "<Objects><Object Name='old' Type='Device' Value=''/></Objects>";
    Fill();
    link.lists[1] = "<Objects><Object Name='new' Type='Device' Value=''/></Objects>";
    Fill();
    EXPECT_EQ(Objects(), Rows{"new: Device name"});
}

} // namespace
