#pragma once

#include <cstdint>
#include <string>
#include <vector>

class IManagerRemoteManager;
class QStandardItemModel;

/// @file
/// The table that completion and the insertion dialogs show: the calls of `QCalverin`, then the host's objects by their kinds.
///
/// It has one column. The text of a row is what is shown and matched; its Qt::UserRole is what is inserted, for calls alone, while
/// objects insert their name. The tool tip of a call is its signature, that of an object its category. Rows stand in the order in
/// which they were found: whoever shows them sorts them.   [all: host main]

/// One kind of the host's objects, as a list of the host tells it and as the table shows it.
struct CompletionKind {
    std::uint32_t listType; ///< number in GetObjectList
    const char* typeName;   ///< what "Type" has to be
    const char* valueName;  ///< what "Value" has to be, null for any
    const char* picture;    ///< of a row
    const char* category;   ///< tool tip of a row
};

/// Numbers of the lists.
struct ObjectListType {
    static constexpr std::uint32_t kDevices = 1;
    static constexpr std::uint32_t kTasks = 3;
    static constexpr std::uint32_t kVariables = 6;
    static constexpr std::uint32_t kUserScreens = 8;
    static constexpr std::uint32_t kUserGroups = 27;
    static constexpr std::uint32_t kCues = 28;
};

/// In the order of the table. Kinds of one list stand together, and their rows as the list has them.
inline constexpr CompletionKind kCompletionKinds[] = {
    {ObjectListType::kUserGroups, "UserGroup", nullptr, ":/userGroupIcon", "User Group name"},
    {ObjectListType::kDevices, "Device", nullptr, ":/devIcon", "Device name"},
    {ObjectListType::kTasks, "Task", nullptr, ":/taskIcon", "Task name"},
    {ObjectListType::kCues, "Cue", nullptr, ":/cueIcon", "Cue name"},
    {ObjectListType::kUserScreens, "UserScreen", nullptr, ":/userscreenIcon", "User Screen name"},
    {ObjectListType::kVariables, "Variable", "StringData", ":/stringIcon", "String variable"},
    {ObjectListType::kVariables, "Variable", "IntegerData", ":/integerIcon", "Integer variable"},
    {ObjectListType::kVariables, "Variable", "RealData", ":/realIcon", "Real variable"},
    {ObjectListType::kVariables, "Variable", "EnumData", ":/enumIcon", "Enum variable"},
    {ObjectListType::kVariables, "Variable", "TimeData", ":/timeIcon", "Time variable"},
    {ObjectListType::kVariables, "Variable", "DateData", ":/dateIcon", "Date variable"},
};

/// Picture of the calls' rows.
inline constexpr const char* kCallPicture = ":/deviceIcon";

/// One list as the host gave it.
struct ObjectListText {
    std::uint32_t listType;
    std::string text;
};

/// Asks the host for its six lists. They hold what the group granted to the device holds.
/// @param links may be null. @return nothing without a link; a list that the host refuses is left out.
std::vector<ObjectListText> ReadObjectLists(IManagerRemoteManager* links);

/// Empties the table and fills it with the calls and with the objects of the lists. A list that is no XML adds nothing.
void FillCompletionTable(QStandardItemModel& table, const std::vector<ObjectListText>& lists);
